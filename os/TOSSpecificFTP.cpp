// The part of TOSSpecific that uploads a file.

#include <dlfcn.h>
#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>

#include <memory>

#include "os/TDescriptor.h"
#include "zelcore/TOSSpecific.h"
#include "zelcore/detail/Fail.h"

using zelcore::detail::Fail;
using zelcore::detail::Text;

namespace {

// What is used of libcurl, which is neither linked nor included. Its ABI fixes the numbers.
constexpr const char* kCurlLibrary = "libcurl.so";
constexpr long kCurlGlobalAll = 3;
constexpr int kCurlOptUpload = 46;
constexpr int kCurlOptURL = 10002;
constexpr int kCurlOptInFile = 10009;
constexpr int kCurlOptErrorBuffer = 10010;
constexpr int kCurlOK = 0;
constexpr int kCurlCouldNotResolveHost = 6;
constexpr int kCurlCouldNotConnect = 7;
constexpr std::size_t kCurlErrorSize = 256;

std::string LoaderError() {
  const char* error = dlerror();
  return error ? error : "";
}

struct TCloseLibrary {
  void operator()(void* library) const { dlclose(library); }
};
struct TCloseStream {
  void operator()(FILE* stream) const { fclose(stream); }
};
using TStream = std::unique_ptr<FILE, TCloseStream>;

// libcurl, loaded for as long as this lives.
class TCurl {
 public:
  TCurl();

  int (*fGlobalInit)(long flags);
  void* (*fEasyInit)();
  int (*fEasySetOpt)(void* handle, int option, ...);
  int (*fEasyPerform)(void* handle);
  void (*fEasyCleanup)(void* handle);
  void (*fGlobalCleanup)();

 private:
  template <class TFunction>
  void Find(const char* name, TFunction*& function) const;

  std::unique_ptr<void, TCloseLibrary> fLibrary;
};

TCurl::TCurl() : fLibrary(dlopen(kCurlLibrary, RTLD_LAZY)) {
  if (!fLibrary) {
    Fail(zelStatusLibCurlFailure,
         "TOSSpecific|FTPFile: Error opening curl library: " + LoaderError());
  }
  Find("curl_global_init", fGlobalInit);
  Find("curl_easy_init", fEasyInit);
  Find("curl_easy_setopt", fEasySetOpt);
  Find("curl_easy_perform", fEasyPerform);
  Find("curl_easy_cleanup", fEasyCleanup);
  Find("curl_global_cleanup", fGlobalCleanup);
}

template <class TFunction>
void TCurl::Find(const char* name, TFunction*& function) const {
  function = reinterpret_cast<TFunction*>(dlsym(fLibrary.get(), name));
  if (!function) {
    Fail(zelStatusLibCurlFailure,
         "TOSSpecific|FTPFile: Error loading curl library: " + LoaderError());
  }
}

// libcurl's global state and one transfer.
class TTransfer {
 public:
  explicit TTransfer(const TCurl& curl) : fCurl(curl) {
    fCurl.fGlobalInit(kCurlGlobalAll);
    fHandle = fCurl.fEasyInit();
  }
  ~TTransfer() {
    if (fHandle) fCurl.fEasyCleanup(fHandle);
    fCurl.fGlobalCleanup();
  }
  TTransfer(const TTransfer&) = delete;
  TTransfer& operator=(const TTransfer&) = delete;

  bool IsReady() const { return fHandle != nullptr; }

  template <class TValue>
  void Set(int option, TValue value, const char* messageOnFailure) {
    if (fCurl.fEasySetOpt(fHandle, option, value) != kCurlOK) {
      Fail(zelStatusLibCurlFailure, messageOnFailure);
    }
  }
  int Perform() { return fCurl.fEasyPerform(fHandle); }

 private:
  const TCurl& fCurl;
  void* fHandle;
};

TStream OpenForReading(const std::string& path) {
  TDescriptor file(Uninterrupted([&] { return open(path.c_str(), O_RDONLY | O_CLOEXEC); }));
  struct stat status;
  // A directory opens, too, and would arrive as an empty file.
  if (!file.IsOpen() || fstat(file.Get(), &status) != 0 || S_ISDIR(status.st_mode)) {
    Fail(zelStatusFileSystemError, "TOSSpecific|FTPFile: Error getting file size");
  }
  TStream stream(fdopen(file.Get(), "rb"));
  if (!stream) Fail(zelStatusFileSystemError, "TOSSpecific|FTPFile: Error creating file stream");
  file.Release();
  return stream;
}

// Where uploads go, up to the name of the file.
std::string& TargetAddress() {
  static std::string address = Text("ftp://", ZEL_FTP_HOST, "/", ZEL_FTP_DIRECTORY);
  return address;
}

}  // namespace

void TOSSpecific::SetFTPTarget(const std::string& host, const std::string& directory) {
  const bool isOpen = !directory.empty() && directory.back() != '/';
  TargetAddress() = Text("ftp://", host, "/", directory, isOpen ? "/" : "");
}

void TOSSpecific::FTPFile(const std::string& localPath, const std::string& remoteName) {
  const std::string address = TargetAddress() + remoteName + ".xml.gz";
  const TCurl curl;
  const TStream file = OpenForReading(localPath);
  char error[kCurlErrorSize] = {};  // outlives the transfer, which may write to it to its end
  TTransfer transfer(curl);
  // sic: "initalizing".
  if (!transfer.IsReady()) {
    Fail(zelStatusLibCurlFailure, "TOSSpecific|FTPFile: Error initalizing curl");
  }
  transfer.Set(kCurlOptErrorBuffer, error,
               "TOSSpecific|FTPFile: Error configuring curl error buffer");
  transfer.Set(kCurlOptUpload, 1L, "TOSSpecific|FTPFile: Error setting curl upload");
  transfer.Set(kCurlOptURL, address.c_str(), "TOSSpecific|FTPFile: Error setting curl target");
  transfer.Set(kCurlOptInFile, file.get(), "TOSSpecific|FTPFile: Error setting curl upload file");
  switch (transfer.Perform()) {
    case kCurlOK: break;
    case kCurlCouldNotResolveHost:
    case kCurlCouldNotConnect:
      Fail(zelStatusConnectionFailed, "TOSSpecific|FTPFile: Error connecting to KVR Service");
    default:
      Fail(zelStatusLibCurlFailure,
           Text("TOSSpecific|FTPFile: Error performing upload command: ", error));
  }
  // To libcurl a file that cannot be read on has just ended.
  if (ferror(file.get())) {
    Fail(zelStatusFileSystemError, "TOSSpecific|FTPFile: Error reading file");
  }
}
