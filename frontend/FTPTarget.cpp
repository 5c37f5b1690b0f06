#include "frontend/FTPTarget.h"

#include <arpa/inet.h>
#include <fmt/format.h>

#include <algorithm>
#include <charconv>

#include "frontend/ExitCode.h"
#include "frontend/ValueText.h"

namespace zel {
namespace {

constexpr std::string_view kScheme = "ftp://";
constexpr std::size_t kMaxHost = 253;

[[noreturn]] void Refuse(std::string_view what, std::string_view why) {
  throw TCommandError(kExitUsage, Printable(fmt::format("'{}' is no place to upload to: {}; see "
                                                        "'zel upload --help'",
                                                        what, why)));
}

// What may be repeated of a URL: a password may stand before an '@', wherever the '@' stands.
std::string Repeatable(const std::string& url) {
  const std::size_t at = url.rfind('@');
  return at == std::string::npos ? url : "..." + url.substr(at);
}

bool IsDigit(char c) { return '0' <= c && c <= '9'; }
bool IsLetter(char c) { return ('a' <= c && c <= 'z') || ('A' <= c && c <= 'Z'); }
bool IsControl(char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }

// What a URL holds as it stands, whatever it means.
bool IsUnreserved(char c) {
  return IsDigit(c) || IsLetter(c) || c == '-' || c == '.' || c == '_' || c == '~';
}

bool IsHostName(std::string_view host) {
  return !host.empty() && host.size() <= kMaxHost && (IsDigit(host[0]) || IsLetter(host[0])) &&
         std::all_of(host.begin(), host.end(),
                     [](char c) { return IsDigit(c) || IsLetter(c) || c == '-' || c == '.'; });
}

bool IsIPv6(const std::string& address) {
  in6_addr ignored = {};
  return inet_pton(AF_INET6, address.c_str(), &ignored) == 1;
}

bool IsPort(std::string_view port) {
  unsigned number = 0;
  const char* const end = port.data() + port.size();
  const auto [stop, error] = std::from_chars(port.data(), end, number);
  return stop == end && error == std::errc() && number >= 1 && number <= 65535;
}

std::string Decoded(std::string_view text, const std::string& url) {
  std::string decoded;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%') {
      decoded += text[i];
      continue;
    }
    unsigned char byte = 0;
    const char* const digits = text.data() + i + 1;
    const bool hasDigits = i + 2 < text.size();
    if (!hasDigits || std::from_chars(digits, digits + 2, byte, 16).ptr != digits + 2) {
      Refuse(url, "'%' must be followed by two hexadecimal digits");
    }
    decoded += static_cast<char>(byte);
    i += 2;
  }
  return decoded;
}

// Why a name cannot be that of a file or directory; empty when it can.
std::string FaultOf(std::string_view name) {
  if (name.empty()) return "a name in it is empty";
  if (name == "." || name == "..") return "'.' and '..' are no names";
  if (name.find('/') != std::string_view::npos) return "a name in it holds a '/'";
  if (std::any_of(name.begin(), name.end(), IsControl)) {
    return "a name in it holds a control character";
  }
  return "";
}

std::string ParseDirectory(std::string_view path, const std::string& url) {
  std::string directory;
  while (!path.empty()) {
    const std::size_t end = std::min(path.find('/'), path.size());
    const std::string name = Decoded(path.substr(0, end), url);
    const std::string fault = FaultOf(name);
    if (!fault.empty()) Refuse(url, fault);
    directory += name + "/";
    path.remove_prefix(std::min(end + 1, path.size()));
  }
  return directory;
}

// HOST[:PORT]
void ParseAuthority(std::string_view authority, const std::string& url, TFTPTarget& target) {
  const bool isBracketed = !authority.empty() && authority[0] == '[';
  const std::size_t hostEnd = isBracketed ? std::min(authority.find(']'), authority.size() - 1) + 1
                                          : std::min(authority.find(':'), authority.size());
  target.host = authority.substr(0, hostEnd);
  const bool isHost = isBracketed ? target.host.size() > 2 && target.host.back() == ']' &&
                                        IsIPv6(target.host.substr(1, target.host.size() - 2))
                                  : IsHostName(target.host);
  if (!isHost) Refuse(url, "it names no host");
  authority.remove_prefix(hostEnd);
  if (authority.empty()) return;
  target.port = authority.substr(1);
  if (authority[0] != ':' || !IsPort(target.port)) {
    Refuse(url, "the port must be a number from 1 to 65535");
  }
}

}  // namespace

TFTPTarget ParseFTPTarget(const std::string& url) {
  std::string scheme = url.substr(0, kScheme.size());
  std::transform(scheme.begin(), scheme.end(), scheme.begin(),
                 [](char c) { return IsLetter(c) ? static_cast<char>(c | 0x20) : c; });
  const std::string shown = Repeatable(url);
  if (scheme != kScheme) Refuse(shown, "it must begin with ftp://");
  std::string_view rest = std::string_view(url).substr(kScheme.size());
  const std::size_t end = std::min(rest.find_first_of("/?#"), rest.size());
  const std::string_view authority = rest.substr(0, end);
  if (authority.find('@') != std::string_view::npos) {
    throw TCommandError(kExitUsage,
                        "uploads are anonymous: leave the user and the password out of --to");
  }
  if (rest.find_first_of("?#;") != std::string_view::npos) {
    Refuse(shown, "'?', '#' and ';' have no meaning in it; as part of a name write %3F, %23, %3B");
  }
  TFTPTarget target;
  ParseAuthority(authority, shown, target);
  rest.remove_prefix(std::min(end + 1, rest.size()));
  target.directory = ParseDirectory(rest, shown);
  return target;
}

void RequireFileName(const std::string& name) {
  const std::string fault = FaultOf(name);
  if (!fault.empty()) Refuse(name, fault);
}

std::string PercentEncoded(std::string_view text) {
  std::string encoded;
  for (const char c : text) {
    if (IsUnreserved(c) || c == '/') {
      encoded += c;
    } else {
      encoded += fmt::format("%{:02X}", static_cast<unsigned char>(c));
    }
  }
  return encoded;
}

}  // namespace zel
