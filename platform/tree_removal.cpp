#include "platform/tree_removal.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>
#include <vector>

#include "platform/folder_descriptors.h"
#include "platform/file_system.h"
#include "platform/system_path.h"

namespace quorvane::platform {
namespace {

// So many folders of one walk stay open at most; those above are opened
// again on the way back.
constexpr std::size_t kOpenFolders = 16;

constexpr int kFolderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;


// One folder on the way down.
struct Level {
  int fd = -1;  // -1 while closed to spare descriptors
  dev_t device = 0;
  ino_t inode = 0;
  std::vector<FolderEntry> entries;
  std::size_t next = 0;  // entries before it are gone
};

// The removal of what one open folder holds, one level at a time.
class Walk {
 public:
  Walk() = default;
  ~Walk() {
    for (const Level& level : levels_) {
      if (level.fd >= 0) ::close(level.fd);
    }
  }
  Walk(const Walk&) = delete;
  Walk& operator=(const Walk&) = delete;

  bool Run(int folder) {
    const int top = ::fcntl(folder, F_DUPFD_CLOEXEC, 0);
    if (top < 0 || !Enter(top)) return false;
    for (;;) {
      Level& level = levels_.back();
      if (level.next == level.entries.size()) {
        if (levels_.size() == 1) return true;
        if (!Leave()) return false;
        continue;
      }
      const FolderEntry& entry = level.entries[level.next];
      const char* name = entry.name.c_str();
      if (!entry.folder) {
        if (::unlinkat(level.fd, name, 0) == 0 || errno == ENOENT) {
          ++level.next;
          continue;
        }
        if (errno != EISDIR) return false;
      } else if (::unlinkat(level.fd, name, AT_REMOVEDIR) == 0 || errno == ENOENT) {
        // An empty folder goes at once, without being opened and listed.
        ++level.next;
        continue;
      }
      const int child = OpenSubfolder(level.fd, entry.name);
      if (child < 0) {
        // Gone meanwhile, or no longer a folder (a link to one included):
        // removed as the entry it is.
        if (errno == ENOENT ||
            ((errno == ELOOP || errno == ENOTDIR) && ::unlinkat(level.fd, name, 0) == 0)) {
          ++level.next;
          continue;
        }
        return false;
      }
      if (!Enter(child)) return false;
    }
  }

 private:
  // Takes the open folder `fd` as the new deepest level.
  bool Enter(int fd) {
    levels_.push_back({});
    Level& level = levels_.back();
    level.fd = fd;
    struct stat st;
    if (::fstat(fd, &st) != 0) return false;
    level.device = st.st_dev;
    level.inode = st.st_ino;
    if ((st.st_mode & S_IRWXU) != S_IRWXU) ::fchmod(fd, (st.st_mode & 07777) | S_IRWXU);
    if (!ListOpenFolder(fd, &level.entries)) return false;
    if (levels_.size() > kOpenFolders) {
      Level& far = levels_[levels_.size() - 1 - kOpenFolders];
      if (far.fd >= 0) ::close(std::exchange(far.fd, -1));
    }
    return true;
  }

  // The deepest folder is empty: back to its parent, which removes it.
  bool Leave() {
    const Level done = std::move(levels_.back());
    levels_.pop_back();
    Level& parent = levels_.back();
    bool same = true;
    if (parent.fd < 0) {
      parent.fd = ::openat(done.fd, "..", kFolderFlags);
      struct stat st;
      same = parent.fd >= 0 && ::fstat(parent.fd, &st) == 0 && st.st_dev == parent.device &&
             st.st_ino == parent.inode;
    }
    ::close(done.fd);
    if (!same) return false;
    if (::unlinkat(parent.fd, parent.entries[parent.next].name.c_str(), AT_REMOVEDIR) != 0) {
      return false;
    }
    ++parent.next;
    return true;
  }

  std::vector<Level> levels_;
};

}  // namespace

bool EmptyFolder(int folder) { return Walk().Run(folder); }

bool RemoveTreeAt(int parent, const std::string& name) {
  const int folder = OpenSubfolder(parent, name);
  if (folder < 0) return false;
  const bool emptied = EmptyFolder(folder);
  ::close(folder);
  return emptied && ::unlinkat(parent, name.c_str(), AT_REMOVEDIR) == 0;
}

bool RemoveTree(std::u16string_view path) {
  std::u16string_view rest = path;
  while (rest.size() > 1 && rest.back() == u'/') rest.remove_suffix(1);
  const std::size_t cut = rest.rfind(u'/');
  const std::u16string_view leaf = cut == rest.npos ? rest : rest.substr(cut + 1);
  if (leaf.empty() || leaf == u"." || leaf == u"..") return false;
  const std::u16string parent(cut == rest.npos ? u"." : cut == 0 ? u"/" : rest.substr(0, cut));
  const int folder = ::open(SystemPath(parent).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
  if (folder < 0) return false;
  const bool gone = RemoveTreeAt(folder, NativePath(leaf));
  ::close(folder);
  return gone;
}

}  // namespace quorvane::platform
