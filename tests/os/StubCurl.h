#pragma once

/* What the libcurl.so of the tests tells and is told, by the name "stub_curl". */
struct StubCurl {
  /* Every call with the plain numbers that it was given, each with a space before it. */
  char calls[512];
  char url[512];
  /* What the stream to upload held. */
  char uploaded[64];

  /* Whether there is no transfer to be had. */
  int withholdsTransfer;
  /* The number of the option that fails; 0 for none. */
  int refusedOption;
  /* What the transfer comes to, and what it leaves in the error buffer. */
  int result;
  const char* text;
};
