#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "zelcore/TCIMDateTime.h"
#include "zelcore/detail/Export.h"

// What the library asks of the operating system. All failures are TZELException; where a message is
// told it has gone to the core logger at zelLogError before the throw.
class ZEL_API TOSSpecific {
 public:
  static const std::string kPluginExtension;         // ".pi.so"
  static const std::string kSpecificationExtension;  // ".properties.xml"

  // Whether `path` can be examined and is, or is not, a directory. Links are followed.
  static bool FileExists(const std::string& path);
  static bool DirExists(const std::string& path);

  // In bytes. Throws zelStatusFileNotFound when FileExists() is false.
  static std::size_t GetFileSize(const std::string& path);

  // Makes the last component of `path`, with mode 0777 less the process's mask. Throws
  // zelStatusDirectoryAlreadyExists, zelStatusAccessDenied or zelStatusFileSystemError.
  static void CreateDir(const std::string& path);

  // The entries but "." and "..", in the system's order. Throws zelStatusFileSystemError.
  static std::vector<std::string> ListDir(const std::string& path);

  // Copies bytes and permission bits to a new file. Throws zelStatusFileSystemError when either
  // cannot be opened, an existing `to` included, or the copy fails.
  static void FileCopy(const std::string& from, const std::string& to);

  // Throws zelStatusFail where there is none, in a directory that was removed for example.
  static std::string GetCurrentDir();

  // Now, in milliseconds, as local time with its offset from UTC.
  static TCIMDateTime GetLocalTime();

  // The host name. Throws zelStatusFail.
  static std::string GetMachineName();
  // The same as GetMachineName(), not the name of a product.
  static std::string GetOperatingSystemName();
  // Whether the real user id is 0.
  static bool IsAdmin();
  // Does nothing: where lines go while there is no log file.
  static void OutputLogString(const std::string& text);
  static void USleep(unsigned int microseconds);

  // Whether a key waits on standard input, without taking it.
  static bool IsKeyWaiting();
  // The next character of standard input without waiting for a line end; -1 at its end.
  static int GetKeyboardChar();

  // Runs `command`, searched on PATH, with `args` and no standard input, and waits for its end;
  // `output` is what it wrote to standard output and error, in the order written. Returns its exit
  // code, 1 also when it could not be started. Throws zelStatusFail when a system call fails or a
  // signal ended it. A child that never ends blocks the caller.
  static int SpawnProcess(const std::string& command, const std::vector<std::string>& args,
                          std::string& output);
  // The output alone.
  static std::string SpawnProcess(const std::string& command, const std::vector<std::string>& args);
  static std::string SpawnProcess(const std::string& command);

  // Everything from the descriptor's position to its end; it stays open. Throws zelStatusFail.
  static std::string GetFileContents(int fd);
  // The whole file. Throws zelStatusFileSystemError when it cannot be opened.
  static std::string CaptureFile(const std::string& path);

  // Sets where FTPFile() stores: in `directory`, seen from where the server lets its users in, on
  // `host`, which may carry a port ("127.0.0.1:2121"). Until then the target is that of the build
  // (ZEL_FTP_HOST, ZEL_FTP_DIRECTORY).
  static void SetFTPTarget(const std::string& host, const std::string& directory);
  // Uploads the file as `remoteName` + ".xml.gz", anonymously and with no time limit. Both names
  // are parts of a URL as they stand, nothing is escaped. libcurl does it, loaded meanwhile by the
  // name "libcurl.so". Throws zelStatusLibCurlFailure without it or for a failed transfer,
  // zelStatusConnectionFailed when the host is not found or refuses, zelStatusFileSystemError for a
  // file that cannot be read.
  static void FTPFile(const std::string& localPath, const std::string& remoteName);

  // The paths of the plug-ins below `directory`: every file whose name contains ".pi.so" in a
  // subdirectory, in the system's order. Throws zelStatusFileSystemError when `directory` cannot be
  // read; a subdirectory that cannot is passed over with a warning.
  static std::vector<std::string> FindPlugins(const std::string& directory);
  // Loads the library for good, with global symbol visibility. Throws zelStatusFileSystemError.
  static void LoadPluginLibrary(const std::string& path);
  // `pluginPath` up to ".pi.so", less the first "lib" in it, and ".properties.xml". The first "lib"
  // counts wherever it stands, in a directory's name too. Throws zelStatusFail without either.
  static std::string BuildSpecificationPath(const std::string& pluginPath);
};
