/* A libcurl.so that transfers nothing, writes down what it is asked for, and fails as it is told.
   It is built several times, each time with fewer functions. */

#define _POSIX_C_SOURCE 200809L

#include "tests/os/StubCurl.h"

#include <fcntl.h>
#include <stdarg.h>
#include <stdio.h>
#include <string.h>

#pragma GCC visibility push(default)

struct StubCurl stub_curl;

static const char kZeroes[256];
static char* fgError;
static FILE* fgStream;
static int fgDescriptor;

static void Note(const char* call) { strcat(strcat(stub_curl.calls, " "), call); }

int curl_global_init(long flags) {
  Note(flags == 3 ? "global_init(3)" : "global_init(?)");
  return 0;
}

void* curl_easy_init(void) {
  Note("easy_init");
  return stub_curl.withholdsTransfer ? NULL : &stub_curl;
}

int curl_easy_setopt(void* handle, int option, ...) {
  va_list arguments;
  va_start(arguments, option);
  switch (option) {
    case 10010:
      fgError = va_arg(arguments, char*);
      Note(memcmp(fgError, kZeroes, sizeof kZeroes) == 0 ? "setopt(10010,zeroes)"
                                                         : "setopt(10010)");
      break;
    case 46: Note(va_arg(arguments, long) == 1 ? "setopt(46,1)" : "setopt(46,?)"); break;
    case 10002:
      strncpy(stub_curl.url, va_arg(arguments, char*), sizeof stub_curl.url - 1);
      Note("setopt(10002)");
      break;
    case 10009:
      fgStream = va_arg(arguments, FILE*);
      fgDescriptor = fileno(fgStream);
      Note("setopt(10009)");
      break;
    default: Note("setopt(?)");
  }
  va_end(arguments);
  return handle != &stub_curl || option == stub_curl.refusedOption ? 48 : 0;
}

int curl_easy_perform(void* handle) {
  Note(handle == &stub_curl ? "perform" : "perform(?)");
  stub_curl.uploaded[fread(stub_curl.uploaded, 1, sizeof stub_curl.uploaded - 1, fgStream)] = '\0';
  if (stub_curl.text) strcpy(fgError, stub_curl.text);
  return stub_curl.result;
}

void curl_easy_cleanup(void* handle) {
  Note(handle == &stub_curl ? "easy_cleanup" : "easy_cleanup(?)");
}

void curl_global_cleanup(void) {
  const int closedTooEarly = fgStream && fcntl(fgDescriptor, F_GETFD) == -1;
  Note(closedTooEarly ? "global_cleanup(closed)" : "global_cleanup");
}
