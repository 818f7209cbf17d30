#include "platform/system_info.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <uuid/uuid.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "platform/file_system.h"
#include "platform/system_path.h"

namespace quorvane::platform {

std::u16string TempDirectory() {
  const char* tmp = std::getenv("TMPDIR");
  std::string dir = (tmp != nullptr && *tmp != '\0') ? tmp : "/tmp";
  if (dir.back() != '/') dir.push_back('/');
  return PathFromNative(dir);
}

std::tm LocalNow() {
  std::time_t now = std::time(nullptr);
  std::tm result{};
  ::localtime_r(&now, &result);
  return result;
}

std::u16string NewUuid() {
  uuid_t id;
  uuid_generate_random(id);
  char text[37];
  uuid_unparse_lower(id, text);
  return PathFromNative(text);
}

std::string MessageLocaleName() {
  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const char* value = std::getenv(name);
    if (value != nullptr && *value != '\0') return value;
  }
  return "C";
}

void WriteStandardError(const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), stderr);
  std::fflush(stderr);
}

FileLock::FileLock(std::u16string_view path) : path_(path) {
  const SystemPath native(path_);
  for (;;) {
    fd_ = ::open(native.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (fd_ < 0) return;
    while (::flock(fd_, LOCK_EX) != 0) {
      if (errno != EINTR) {
        ::close(fd_);
        fd_ = -1;
        return;
      }
    }
    // The holder before us removed the file as it let go: a lock on that one
    // guards nothing, since the next run makes a new file.  Ours is the file
    // that the name still stands for.
    struct stat held, named;
    if (::fstat(fd_, &held) == 0 && ::stat(native.c_str(), &named) == 0 &&
        held.st_dev == named.st_dev && held.st_ino == named.st_ino) {
      return;
    }
    ::close(fd_);
  }
}

FileLock::~FileLock() {
  if (fd_ < 0) return;
  // Removed while still held, so that nothing is left behind in the
  // temporary folder; closing the file then releases the lock.
  ::unlink(SystemPath(path_).c_str());
  ::close(fd_);
}

}  // namespace quorvane::platform
