#pragma once

#include <sys/types.h>

#include <string>

#include "tests/support/TempDir.h"

// A real FTP server on 127.0.0.1 for as long as this lives: it takes what anonymous users bring.
class FTPServer {
 public:
  FTPServer();
  ~FTPServer();
  FTPServer(const FTPServer&) = delete;
  FTPServer& operator=(const FTPServer&) = delete;

  // "127.0.0.1:PORT"; "" when the server did not start, which has failed the test by then.
  const std::string& GetHost() const { return fHost; }
  // What it serves.
  const TempDir& GetDir() const { return fDir; }

 private:
  TempDir fDir, fLogDir;
  std::string fHost;
  pid_t fPid;
};
