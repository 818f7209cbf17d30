#include "platform/tree_removal.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/file_system.h"
#include "platform/folder_descriptors.h"
#include "platform/folder_walk.h"
#include "platform/system_path.h"

namespace quorvane::platform {
namespace {

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
      } else if (::unlinkat(here, name, AT_REMOVEDIR) == 0 || errno == ENOENT) {
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
    mode_t mode = 0;
    if (!walk_.Down(fd, &mode)) return false;
    if ((mode & S_IRWXU) != S_IRWXU) ::fchmod(fd, (mode & 07777) | S_IRWXU);
    return ListOpenFolder(fd, &walk_.entries());
  }

  // The deepest folder is empty: back to its parent, which removes it.
  bool Leave() {
    if (!walk_.Up()) return false;
    if (::unlinkat(walk_.folder(), walk_.Current()->name.c_str(), AT_REMOVEDIR) != 0) {
      return false;
    }
    walk_.Pass();
    return true;
  }

  FolderWalk walk_;
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
