#include "platform/folder_walk.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <utility>

namespace quorvane::platform {

FolderWalk::~FolderWalk() {
  for (const Level& level : levels_) {
    if (level.fd >= 0) ::close(level.fd);
  }
}

bool FolderWalk::Down(int fd, struct stat* info) {
  levels_.push_back({});
  Level& level = levels_.back();
  level.fd = fd;
  if (levels_.size() > kOpenFolders) {
    Level& far = levels_[levels_.size() - 1 - kOpenFolders];
    if (far.fd >= 0) ::close(std::exchange(far.fd, -1));
  }
  struct stat st;
  if (::fstat(fd, &st) != 0) return false;
  level.device = st.st_dev;
  level.inode = st.st_ino;
  if (info != nullptr) *info = st;
  return true;
}

bool FolderWalk::Up() {
  const Level done = std::move(levels_.back());
  levels_.pop_back();
  bool same = true;
  if (!levels_.empty() && levels_.back().fd < 0) {
    Level& parent = levels_.back();
    parent.fd = ::openat(done.fd, "..", O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    struct stat st;
    same = parent.fd >= 0 && ::fstat(parent.fd, &st) == 0 && st.st_dev == parent.device &&
           st.st_ino == parent.inode;
  }
  ::close(done.fd);
  return same;
}

const FolderEntry* FolderWalk::Current() const {
  const Level& level = levels_.back();
  return level.next < level.entries.size() ? &level.entries[level.next] : nullptr;
}

}  // namespace quorvane::platform
