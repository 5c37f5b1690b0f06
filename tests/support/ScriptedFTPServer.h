#pragma once

#include <map>
#include <string>
#include <thread>
#include <vector>

#include "os/TDescriptor.h"

// A port of 127.0.0.1 that is held, and that refuses connections until it listens.
class HeldPort {
 public:
  HeldPort();

  const std::string& GetNumber() const { return fNumber; }
  void Listen();
  // The next connection. Neither this nor reading from it waits for more than ten seconds.
  TDescriptor Accept() const;

 private:
  TDescriptor fSocket;
  std::string fNumber;
};

// Serves one session of FTP on 127.0.0.1, as a server does that takes everything, but for one
// answer.
class ScriptedFTPServer {
 public:
  static constexpr const char* kCut = "";  // ends the session in the place of an answer

  // `answer` is what the command `word` gets; the greeting goes by the word "HELLO", the end of an
  // upload by "DATA", where kCut ends the session before all has come.
  explicit ScriptedFTPServer(const std::string& word = "", const std::string& answer = "");
  ~ScriptedFTPServer() { Finish(); }
  ScriptedFTPServer(const ScriptedFTPServer&) = delete;
  ScriptedFTPServer& operator=(const ScriptedFTPServer&) = delete;

  // "127.0.0.1:PORT"
  std::string GetHost() const { return "127.0.0.1:" + fControl.GetNumber(); }

  // These wait for the end of the session: the commands and the bytes of the file that came.
  const std::vector<std::string>& GetCommands();
  const std::string& GetFile();

 private:
  void Finish();
  void Serve();
  bool Store(const TDescriptor& control);
  bool Answer(const TDescriptor& control, const std::string& word) const;

  HeldPort fControl, fData;
  std::map<std::string, std::string> fAnswers;
  std::vector<std::string> fCommands;
  std::string fFile;
  std::thread fThread;
};
