#include "tests/support/ScriptedFTPServer.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>

namespace {

void LimitWaiting(const TDescriptor& socket) {
  const timeval limit{10, 0};
  setsockopt(socket.Get(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
}

// Whether something came.
bool Receive(const TDescriptor& socket, std::string& text) {
  char buffer[4096];
  const ssize_t size = recv(socket.Get(), buffer, sizeof buffer, 0);
  if (size > 0) text.append(buffer, size);
  return size > 0;
}

}  // namespace

HeldPort::HeldPort() : fSocket(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  const auto generic = reinterpret_cast<sockaddr*>(&address);
  EXPECT_EQ(0, bind(fSocket.Get(), generic, size));
  EXPECT_EQ(0, getsockname(fSocket.Get(), generic, &size));
  fNumber = std::to_string(ntohs(address.sin_port));
}

void HeldPort::Listen() {
  LimitWaiting(fSocket);
  EXPECT_EQ(0, listen(fSocket.Get(), 1));
}

TDescriptor HeldPort::Accept() const {
  TDescriptor connection(accept4(fSocket.Get(), nullptr, nullptr, SOCK_CLOEXEC));
  LimitWaiting(connection);
  return connection;
}

ScriptedFTPServer::ScriptedFTPServer(const std::string& word, const std::string& answer)
    : fAnswers{
          {"HELLO", "220 ready"                               },
          {"USER",  "331 password?"                           },
          {"PASS",  "230 welcome"                             },
          {"PWD",   "257 \"/\""                               },
          {"CWD",   "250 there"                               },
          {"EPSV",  "229 come (|||" + fData.GetNumber() + "|)"},
          {"TYPE",  "200 binary"                              },
          {"STOR",  "150 send"                                },
          {"DATA",  "226 stored"                              },
          {"QUIT",  "221 bye"                                 }
} {
  fAnswers[word] = answer;
  fControl.Listen();
  fData.Listen();
  fThread = std::thread([this] { Serve(); });
}

const std::vector<std::string>& ScriptedFTPServer::GetCommands() {
  Finish();
  return fCommands;
}

const std::string& ScriptedFTPServer::GetFile() {
  Finish();
  return fFile;
}

void ScriptedFTPServer::Finish() {
  if (fThread.joinable()) fThread.join();
}

void ScriptedFTPServer::Serve() {
  const TDescriptor control = fControl.Accept();
  std::string text;
  bool goesOn = Answer(control, "HELLO");
  while (goesOn) {
    const std::size_t end = text.find("\r\n");
    if (end == std::string::npos) {
      goesOn = Receive(control, text);
      continue;
    }
    fCommands.push_back(text.substr(0, end));
    text.erase(0, end + 2);
    const std::string word = fCommands.back().substr(0, fCommands.back().find(' '));
    goesOn = Answer(control, word) && (word != "STOR" || Store(control));
  }
}

// What follows the answer to STOR: nothing when that was a refusal.
bool ScriptedFTPServer::Store(const TDescriptor& control) {
  if (fAnswers.at("STOR").front() != '1') return true;
  const TDescriptor data = fData.Accept();
  if (fAnswers.at("DATA") == kCut) return Receive(data, fFile) && false;
  while (Receive(data, fFile)) {
  }
  return Answer(control, "DATA");
}

bool ScriptedFTPServer::Answer(const TDescriptor& control, const std::string& word) const {
  const auto found = fAnswers.find(word);
  const std::string answer = found == fAnswers.end() ? "502 unknown" : found->second;
  const std::string line = answer + "\r\n";
  return answer != kCut &&
         send(control.Get(), line.data(), line.size(), MSG_NOSIGNAL) == ssize_t(line.size());
}
