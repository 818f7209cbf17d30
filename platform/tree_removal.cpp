#include "platform/tree_removal.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>
#include <vector>

#include "platform/file_system.h"
#include "platform/folder_descriptors.h"
#include "platform/folder_walk.h"
#include "platform/ntfs_names.h"
#include "platform/system_path.h"
#include "platform/win32_path.h"

namespace quorvane::platform {
namespace {

// The current folder of this process, which Windows does not let anyone
// remove while it is in use: its device and inode, and its parent's.
struct InUse {
  InUse() {
    struct stat st;
    if (::stat(".", &st) == 0) self = {st.st_dev, st.st_ino};
    if (::stat("..", &st) == 0) parent = {st.st_dev, st.st_ino};
  }
  std::pair<dev_t, ino_t> self{0, 0}, parent{0, 0};
};

bool Is(const struct stat& st, const std::pair<dev_t, ino_t>& folder) {
  return st.st_dev == folder.first && st.st_ino == folder.second;
}

// The removal of what one open folder holds, one level at a time.
class Walk {
 public:
  bool Run(int folder) {
    const int top = ::fcntl(folder, F_DUPFD_CLOEXEC, 0);
    if (top < 0 || !Enter(top)) return false;
    for (;;) {
      const FolderEntry* entry = walk_.Current();
      if (entry == nullptr) {
        if (walk_.depth() == 1) return true;
        if (!Leave()) return false;
        continue;
      }
      const int here = walk_.folder();
      const char* name = entry->name.c_str();
      if (!entry->folder) {
        if (::unlinkat(here, name, 0) == 0 || errno == ENOENT) {
          walk_.Pass();
          continue;
        }
        if (errno != EISDIR) return false;
      } else if (!holds_in_use_.back() &&
                 (::unlinkat(here, name, AT_REMOVEDIR) == 0 || errno == ENOENT)) {
        // An empty folder goes at once, without being opened and listed.
        walk_.Pass();
        continue;
      }
      const int child = OpenSubfolder(here, entry->name);
      if (child < 0) {
        // Gone meanwhile, or no longer a folder (a link to one included):
        // removed as the entry it is.
        if (errno == ENOENT ||
            ((errno == ELOOP || errno == ENOTDIR) && ::unlinkat(here, name, 0) == 0)) {
          walk_.Pass();
          continue;
        }
        return false;
      }
      if (!Enter(child)) return false;
    }
  }

 private:
  // Takes the open folder `fd` as the new deepest level, its owner given the
  // rights to empty it.
  bool Enter(int fd) {
    struct stat st {};
    const bool known = walk_.Down(fd, &st);
    in_use_.push_back(known && Is(st, current_.self));
    holds_in_use_.push_back(known && Is(st, current_.parent));
    if (!known) return false;
    if ((st.st_mode & S_IRWXU) != S_IRWXU) ::fchmod(fd, (st.st_mode & 07777) | S_IRWXU);
    std::vector<FolderEntry>& entries = walk_.entries();
    if (!ListOpenFolder(fd, &entries)) return false;
    // In the order of a listing on Windows, which decides what stays when the
    // removal stops.
    std::vector<std::pair<std::u16string, FolderEntry>> keyed;
    keyed.reserve(entries.size());
    for (FolderEntry& e : entries)
      keyed.emplace_back(NtfsUpper(PathFromNative(e.name)), std::move(e));
    std::sort(keyed.begin(), keyed.end(), [](const auto& a, const auto& b) {
      return a.first != b.first ? a.first < b.first : a.second.name < b.second.name;
    });
    for (std::size_t i = 0; i < keyed.size(); ++i) entries[i] = std::move(keyed[i].second);
    return true;
  }

  // The deepest folder is empty: back to its parent, which removes it, unless
  // it is the current folder, where the removal stops.
  bool Leave() {
    const bool in_use = in_use_.back();
    in_use_.pop_back();
    holds_in_use_.pop_back();
    if (!walk_.Up() || in_use) return false;
    if (::unlinkat(walk_.folder(), walk_.Current()->name.c_str(), AT_REMOVEDIR) != 0) {
      return false;
    }
    walk_.Pass();
    return true;
  }

  FolderWalk walk_;
  const InUse current_;
  std::vector<bool> in_use_;        // for each level: it is the current folder
  std::vector<bool> holds_in_use_;  // for each level: the current folder is in it
};

}  // namespace

bool EmptyFolder(int folder) { return Walk().Run(folder); }

bool RemoveTreeAt(int parent, const std::string& name) {
  const int folder = OpenSubfolder(parent, name);
  if (folder < 0) return false;
  const bool emptied = EmptyFolder(folder);
  struct stat st;
  const bool in_use = ::fstat(folder, &st) != 0 || Is(st, InUse().self);
  ::close(folder);
  return emptied && !in_use && ::unlinkat(parent, name.c_str(), AT_REMOVEDIR) == 0;
}

namespace {

// The last name of a path and the folder before it, trailing separators left
// out: "a/b/" is "a" and "b", "b" is "." and "b".
std::u16string_view LastName(std::u16string_view path, std::u16string* parent) {
  while (path.size() > 1 && path.back() == u'/') path.remove_suffix(1);
  const std::size_t cut = path.rfind(u'/');
  if (parent != nullptr) {
    *parent = cut == path.npos ? u"." : cut == 0 ? u"/" : std::u16string(path.substr(0, cut));
  }
  return cut == path.npos ? path : path.substr(cut + 1);
}

bool IsDots(std::u16string_view name) { return name == u"." || name == u".."; }

}  // namespace

bool RemoveTree(std::u16string_view path) {
  std::u16string parent;
  const std::u16string_view leaf = LastName(path, &parent);
  if (leaf.empty() || leaf == u"/") return false;
  if (IsDots(leaf)) {
    // "a/b/.." is "a" on the text, as Windows reads it.
    const Win32Path clean = CleanWin32Path(path);
    if (!clean.nameable) return false;
    if (!IsDots(LastName(clean.path, nullptr))) return RemoveTree(clean.path);
    // The current folder or one above it: emptied as far as Windows gets
    // (not the current folder itself, which is in use), never removed.
    const int folder = ::open(SystemPath(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0) return false;
    EmptyFolder(folder);
    ::close(folder);
    return false;
  }
  const int folder = ::open(SystemPath(parent).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
  if (folder < 0) return false;
  const bool gone = RemoveTreeAt(folder, NativePath(leaf));
  ::close(folder);
  return gone;
}

}  // namespace quorvane::platform
