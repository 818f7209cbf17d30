#include "platform/file_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "platform/file_system.h"

namespace quorvane::platform {
namespace {

bool SameFile(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

// A lock file that is ours alone: a plain file with one name, owned by the
// effective user, that nobody else may write.
bool OwnLockFile(const struct stat& st) {
  return S_ISREG(st.st_mode) && st.st_nlink == 1 && st.st_uid == ::geteuid() &&
         (st.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

}  // namespace

FileLock::FileLock(const SharedFolder& folder, std::u16string_view name) : name_(NativePath(name)) {
  status_ = folder.status();
  if (status_ != FixedName::kReady) return;
  status_ = FixedName::kUnavailable;
  folder_ = ::fcntl(folder.descriptor(), F_DUPFD_CLOEXEC, 0);
  if (folder_ < 0) return;
  for (;;) {
    // O_NONBLOCK: a pipe planted under the name must not hold the run.
    fd_ = ::openat(folder_, name_.c_str(),
                   O_RDONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC,
                   S_IRUSR | S_IWUSR);
    struct stat held;
    if (fd_ < 0) {
      if (errno == ELOOP || errno == EISDIR) status_ = FixedName::kUnsafe;
      return;
    }
    if (::fstat(fd_, &held) != 0) break;
    if (!OwnLockFile(held)) {
      status_ = FixedName::kUnsafe;
      break;
    }
    int locked;
    while ((locked = ::flock(fd_, LOCK_EX)) != 0 && errno == EINTR) {
    }
    if (locked != 0) break;
    // The holder before us removed the file as it let go: a lock on that one
    // guards nothing, since the next run makes a new file.  Ours is the file
    // that the name still stands for.
    struct stat named;
    if (::fstatat(folder_, name_.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 &&
        SameFile(held, named)) {
      status_ = FixedName::kReady;
      return;
    }
    ::close(std::exchange(fd_, -1));
  }
  ::close(std::exchange(fd_, -1));
}

FileLock::~FileLock() {
  if (fd_ >= 0) {
    // Removed while still held, so that nothing is left behind in the shared
    // folder; closing the file then releases the lock.
    struct stat held, named;
    if (::fstat(fd_, &held) == 0 &&
        ::fstatat(folder_, name_.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 &&
        SameFile(held, named)) {
      ::unlinkat(folder_, name_.c_str(), 0);
    }
    ::close(fd_);
  }
  if (folder_ >= 0) ::close(folder_);
}

}  // namespace quorvane::platform
