#pragma once

#include <string>

// A new empty directory below TMPDIR or /tmp, removed with all it holds at the end. "lib" occurs
// nowhere in its path, so that plug-ins below it find their documents.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  const std::string& GetPath() const { return fPath; }
  std::string PathOf(const std::string& name) const { return fPath + "/" + name; }

  // Write a file, together with the directories in its name, and return its path.
  std::string WriteFile(const std::string& name, const std::string& contents) const;
  std::string WriteGzipFile(const std::string& name, const std::string& contents) const;

 private:
  std::string fPath;
};

// The whole file; "" when it cannot be read.
std::string ReadFile(const std::string& path);

// `contents` as one gzip member.
std::string Gzip(const std::string& contents);
