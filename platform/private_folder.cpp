#include "platform/private_folder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <utility>

#include "platform/extracted_names.h"
#include "platform/file_system.h"
#include "platform/system_path.h"
#include "platform/tree_removal.h"

namespace quorvane::platform {
namespace {

// Ours alone: owned by the effective user, and nobody else may write it.
bool Private(const struct stat& st) {
  return st.st_uid == ::geteuid() && (st.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

}  // namespace

SharedFolder::SharedFolder(std::u16string_view path, Missing missing) {
  // The shared folder is the user's choice: a link to it is followed, and it
  // is found in any case, as the other file calls find it.
  const SystemPath folder(PathAsFound(path));
  fd_ = ::open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
  if (fd_ < 0 && errno == ENOENT && missing == Missing::kMake && folder.nameable()) {
    const std::string& native = folder.native();
    for (std::size_t cut = native.find('/', 1); cut != std::string::npos;
         cut = native.find('/', cut + 1)) {
      ::mkdir(native.substr(0, cut).c_str(), 0777);
    }
    ::mkdir(native.c_str(), 0777);
    fd_ = ::open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
  }
  if (fd_ < 0) return;
  struct stat st;
  if (::fstat(fd_, &st) != 0) {
    status_ = FixedName::kUnavailable;
  } else if ((st.st_mode & S_IWOTH) != 0 && (st.st_mode & S_ISVTX) == 0) {
    status_ = FixedName::kUnsafe;
  } else {
    status_ = FixedName::kReady;
    return;
  }
  ::close(fd_);
  fd_ = -1;
}

SharedFolder::~SharedFolder() {
  if (fd_ >= 0) ::close(fd_);
}

PrivateFolder::PrivateFolder(const SharedFolder& shared, std::u16string_view name)
    : name_(NativePath(name)) {
  status_ = shared.status();
  if (status_ != FixedName::kReady) return;
  status_ = FixedName::kUnavailable;
  shared_ = ::fcntl(shared.descriptor(), F_DUPFD_CLOEXEC, 0);
  if (shared_ < 0) return;
  // Inheritable, so that the archive tool can reach the folder by ChildPath().
  constexpr int kFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW;
  for (int attempt = 0; attempt < 2 && fd_ < 0; ++attempt) {
    fd_ = ::openat(shared_, name_.c_str(), kFlags);
    if (fd_ >= 0) break;
    if (errno == ELOOP || errno == ENOTDIR) {
      status_ = FixedName::kUnsafe;  // a link (dangling or not) or a file
      return;
    }
    if (errno != ENOENT) return;
    // Made by someone else between the two calls: the next open checks it.
    if (::mkdirat(shared_, name_.c_str(), S_IRWXU) != 0 && errno != EEXIST) return;
  }
  if (fd_ < 0) return;
  struct stat st;
  if (::fstat(fd_, &st) != 0) return;
  status_ = Private(st) ? FixedName::kReady : FixedName::kUnsafe;
  if (status_ != FixedName::kReady) ::close(std::exchange(fd_, -1));
}

PrivateFolder::~PrivateFolder() {
  if (fd_ >= 0) ::close(fd_);
  if (shared_ >= 0) ::close(shared_);
}

bool PrivateFolder::Empty() { return fd_ >= 0 && EmptyFolder(fd_); }

bool PrivateFolder::Remove() {
  if (!Empty()) return false;
  struct stat held, named;
  if (::fstat(fd_, &held) != 0 ||
      ::fstatat(shared_, name_.c_str(), &named, AT_SYMLINK_NOFOLLOW) != 0 ||
      held.st_dev != named.st_dev || held.st_ino != named.st_ino) {
    return false;
  }
  return ::unlinkat(shared_, name_.c_str(), AT_REMOVEDIR) == 0;
}

std::u16string PrivateFolder::ChildPath() const {
  if (fd_ < 0) return {};
  return PathFromNative("/proc/self/fd/" + std::to_string(fd_));
}

bool PrivateFolder::FixExtractedNames() { return fd_ >= 0 && FixExtractedNamesAt(fd_); }

bool PrivateFolder::HasPlainFile(std::u16string_view relative) const {
  return fd_ >= 0 && HasPlainFileAnyCase(fd_, NativePath(relative));
}

}  // namespace quorvane::platform
