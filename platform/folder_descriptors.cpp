#include "platform/folder_descriptors.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace quorvane::platform {

bool ListOpenFolder(int folder, std::vector<FolderEntry>* entries) {
  const int copy = ::fcntl(folder, F_DUPFD_CLOEXEC, 0);
  if (copy < 0) return false;
  DIR* dir = ::fdopendir(copy);
  if (dir == nullptr) {
    ::close(copy);
    return false;
  }
  // The copy shares its reading position with `folder`: start from the top.
  ::rewinddir(dir);
  errno = 0;
  while (const dirent* entry = ::readdir(dir)) {
    const std::string name = entry->d_name;
    if (name == "." || name == "..") continue;
    entries->push_back({name, entry->d_type == DT_DIR});
  }
  const bool complete = errno == 0;
  ::closedir(dir);
  return complete;
}

int OpenSubfolder(int parent, const std::string& name) {
  constexpr int kFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
  int fd = ::openat(parent, name.c_str(), kFlags);
  if (fd >= 0 || errno != EACCES) return fd;
  const int place = ::openat(parent, name.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  if (place < 0) return -1;
  ::chmod(("/proc/self/fd/" + std::to_string(place)).c_str(), S_IRWXU);
  fd = ::openat(place, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  ::close(place);
  return fd;
}

}  // namespace quorvane::platform
