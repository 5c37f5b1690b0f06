#pragma once

#include <string>
#include <string_view>

namespace zel {

// Where an upload goes.
struct TFTPTarget {
  std::string host;       // a name, an IPv4 address, or an IPv6 address in brackets
  std::string port;       // empty: the usual one
  std::string directory;  // decoded; empty, or with a '/' at its end
};

// Reads ftp://HOST[:PORT]/DIR/ strictly. Throws TCommandError (kExitUsage) that says what is wrong.
TFTPTarget ParseFTPTarget(const std::string& url);

// Throws TCommandError (kExitUsage) for what cannot be the name of a file on the server.
void RequireFileName(const std::string& name);

// `text` as it stands in a URL; slashes stay.
std::string PercentEncoded(std::string_view text);

}  // namespace zel
