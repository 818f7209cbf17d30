// What the program asks of its surroundings: the temporary folder, the local
// time, a fresh UUID, the language of the user's messages, and an exclusive
// lock on a named file for runs that share a folder.
#ifndef QV_PLATFORM_SYSTEM_INFO_H_
#define QV_PLATFORM_SYSTEM_INFO_H_

#include <ctime>
#include <string>
#include <string_view>

namespace quorvane::platform {

// $TMPDIR if set and not empty, else "/tmp"; always ending in "/".
std::u16string TempDirectory();

// The local time now, broken down.
std::tm LocalNow();

// A fresh random UUID in its standard text form: 36 lower-case characters.
std::u16string NewUuid();

// The name of the locale that messages are shown in, by the usual rules:
// LC_ALL, else LC_MESSAGES, else LANG, else "C".
std::string MessageLocaleName();

// Writes text to standard error exactly as given, no line end added (only for
// the XML library's start-up failure).
void WriteStandardError(const std::string& text);

// An exclusive advisory lock on a file, made if missing; at destruction the
// file is removed and the lock released (a process that ends releases it too,
// and may leave the empty file).  Lets runs side by side take turns on a
// shared fixed-name folder.
class FileLock {
 public:
  explicit FileLock(std::u16string_view path);  // blocks until the lock is had
  ~FileLock();
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;
  bool held() const { return fd_ >= 0; }

 private:
  std::u16string path_;
  int fd_ = -1;
};

}  // namespace quorvane::platform

#endif  // QV_PLATFORM_SYSTEM_INFO_H_
