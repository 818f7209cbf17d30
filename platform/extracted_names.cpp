#include "platform/extracted_names.h"

#include <dirent.h>
#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <string>
#include <utility>
#include <vector>

#include "platform/folder_descriptors.h"
#include "platform/folder_walk.h"
#include "platform/system_path.h"
#include "platform/text_codec.h"

namespace quorvane::platform {
namespace {

constexpr int kFolderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

// Each round over a folder takes one level of nameless folders apart (see
// Merge), so only a hostile tree needs more than three.
constexpr int kRounds = 4096;

enum class Kind {
  kMissing,  // no such name, or a link or special entry that was just removed
  kFolder,
  kFile,
  kBlocked,  // there, but it cannot be looked at or removed
};

// What `name` in `folder` is.  A link, pipe, socket or device is removed on
// sight.
Kind Settle(int folder, const std::string& name) {
  struct stat st;
  if (::fstatat(folder, name.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0) {
    return errno == ENOENT ? Kind::kMissing : Kind::kBlocked;
  }
  if (S_ISDIR(st.st_mode)) return Kind::kFolder;
  if (S_ISREG(st.st_mode)) return Kind::kFile;
  return ::unlinkat(folder, name.c_str(), 0) == 0 ? Kind::kMissing : Kind::kBlocked;
}

// The names in an open folder, "." and ".." left out, sorted by their bytes so
// that the outcome does not hang on the order of the listing.
bool ReadNames(int folder, std::vector<std::string>* names) {
  std::vector<FolderEntry> entries;
  const bool complete = ListOpenFolder(folder, &entries);
  for (FolderEntry& entry : entries) names->push_back(std::move(entry.name));
  std::sort(names->begin(), names->end());
  return complete;
}

// Opens the folder `name` in `parent`, never through a link, and gives its
// owner all rights on it: its entries are to be renamed, and it may move to
// another folder (which changes its "..").  A folder that may not be read is
// reached through a handle that reads nothing (the /proc name of that handle
// is the folder itself).
int OpenFolder(int parent, const std::string& name) {
  const int fd = OpenSubfolder(parent, name);
  struct stat st;
  if (fd >= 0 && ::fstat(fd, &st) == 0 && (st.st_mode & S_IRWXU) != S_IRWXU) {
    ::fchmod(fd, (st.st_mode & 07777) | S_IRWXU);
  }
  return fd;
}

// Well-formed UTF-8 is just what survives the way to UTF-16 and back.
bool IsUtf8(std::string_view bytes) { return Utf8FromUtf16(Utf16FromUtf8(bytes)) == bytes; }

bool IsAsciiLetter(char16_t c) { return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z'); }

// A name that Windows takes for a device (CON, PRN, AUX, NUL, COM0 to COM9,
// LPT0 to LPT9 in any case, alone, before spaces or before a "."): 7-Zip puts
// "_" in front of it.
bool IsDeviceName(std::u16string_view part) {
  const auto upper = [](char16_t c) { return c >= u'a' && c <= u'z' ? c - u'a' + u'A' : c; };
  for (const std::u16string_view device : {u"CON", u"PRN", u"AUX", u"NUL", u"COM", u"LPT"}) {
    if (part.size() < device.size()) continue;
    std::size_t i = 0;
    while (i < device.size() && upper(part[i]) == device[i]) ++i;
    if (i < device.size()) continue;
    if (device == u"COM" || device == u"LPT") {
      if (i == part.size() || part[i] < u'0' || part[i] > u'9') continue;
      ++i;
    }
    while (i < part.size() && part[i] == u' ') ++i;
    if (i == part.size() || part[i] == u'.') return true;
  }
  return false;
}

// The parts of the path that the name of an entry stands for, each a name in
// UTF-8 that neither is empty, "." or ".." nor holds a "\".  Empty for a
// folder that stands for its parent.  `top`: the entry is at the top of the
// extraction, where a drive may stand in front.
std::vector<std::string> Parts(const std::string& name, bool top, bool file) {
  std::u16string text = IsUtf8(name) ? Utf16FromUtf8(name) : Utf16FromCp932(name);
  if (top) {
    const std::size_t first = std::min(text.find_first_not_of(u'\\'), text.size());
    if (text.size() - first >= 2 && IsAsciiLetter(text[first]) && text[first + 1] == u':') {
      text.erase(first, 2);
    }
  }
  std::vector<std::string> parts;
  bool named = false;  // the last part is a name
  for (std::size_t start = 0;;) {
    const std::size_t end = text.find(u'\\', start);
    const std::u16string_view part = std::u16string_view(text).substr(start, end - start);
    named = !part.empty() && part != u"." && part != u"..";
    if (named) parts.push_back((IsDeviceName(part) ? "_" : "") + Utf8FromUtf16(part));
    if (end == std::u16string::npos) break;
    start = end + 1;
  }
  // A file keeps a name of its own: the archive tool calls a file "_" whose
  // last part is no name.
  if (file && !named) parts.push_back("_");
  return parts;
}

// A free name of the archive tool's renaming form ("a.txt", "a_1.txt",
// "a_2.txt", ...) in `folder` (or one that is a folder when `folder_will_do`):
// the name itself when it is free, else the number found as the tool finds
// it, by halving the range 1 to 2^30 on whether a number is taken, which is
// the first free one while the taken ones come first.  Empty when the name
// grows too long.
std::string Unoccupied(int folder, const std::string& name, bool folder_will_do) {
  std::size_t dot = name.rfind('.');
  if (dot == std::string::npos || dot == 0) dot = name.size();
  const auto candidate = [&](unsigned n) {
    return n == 0 ? name : name.substr(0, dot) + "_" + std::to_string(n) + name.substr(dot);
  };
  const auto taken = [&](const std::string& path) {
    if (path.size() > NAME_MAX) return false;
    const Kind kind = Settle(folder, path);
    return !(kind == Kind::kMissing || (folder_will_do && kind == Kind::kFolder));
  };
  unsigned found = 0;
  if (taken(name)) {
    unsigned left = 1, right = 1u << 30;
    while (left != right) {
      const unsigned mid = left + (right - left) / 2;
      if (taken(candidate(mid))) {
        left = mid + 1;
      } else {
        right = mid;
      }
    }
    found = left;
  }
  const std::string result = candidate(found);
  if (result.size() > NAME_MAX || taken(result)) return {};
  return result;
}

// A free name made of "\" alone, which stands for the folder it is in.
std::string FreeNameless(int folder) {
  for (std::size_t length = 1; length <= NAME_MAX; ++length) {
    std::string name(length, '\\');
    if (Settle(folder, name) == Kind::kMissing) return name;
  }
  return {};
}

// Renames `name` in `from` to the free name `target` in `to`, never replacing
// anything.
bool Move(int from, const std::string& name, Kind kind, int to, const std::string& target) {
  if (target.empty()) return false;
  for (int attempt = 0; attempt < 2; ++attempt) {
    if (::renameat2(from, name.c_str(), to, target.c_str(), RENAME_NOREPLACE) == 0) return true;
    if (errno == EINVAL) {
      // A file system that cannot rename without replacing: look first.
      struct stat st;
      if (::fstatat(to, target.c_str(), &st, AT_SYMLINK_NOFOLLOW) == 0 || errno != ENOENT) {
        return false;
      }
      if (::renameat(from, name.c_str(), to, target.c_str()) == 0) return true;
    }
    if (errno != EACCES || kind != Kind::kFolder) return false;
    const int fd = OpenFolder(from, name);  // its owner's rights, and again
    if (fd < 0) return false;
    ::close(fd);
  }
  return false;
}

// The folders `parts` but the last below `to`, made where missing, opened.  A
// file in the way is passed by: the next free name of the renaming form is
// used for the folder.  -1 on failure.
int MakeFolders(int to, const std::vector<std::string>& parts) {
  int folder = ::fcntl(to, F_DUPFD_CLOEXEC, 0);
  for (std::size_t i = 0; folder >= 0 && i + 1 < parts.size(); ++i) {
    const std::string name = Unoccupied(folder, parts[i], true);
    if (!name.empty()) ::mkdirat(folder, name.c_str(), 0777);
    const int next = name.empty() ? -1 : OpenFolder(folder, name);
    ::close(folder);
    folder = next;
  }
  return folder;
}

bool Merge(int from, const std::string& name, int to);

// Moves the entry `name` of `from` to the path `parts` below `to`.
bool Place(int from, const std::string& name, Kind kind, const std::vector<std::string>& parts,
           int to) {
  for (const std::string& part : parts) {
    if (part.size() > NAME_MAX) return false;  // keeps its bytes
  }
  if (parts.empty()) return Merge(from, name, to);
  const int folder = MakeFolders(to, parts);
  if (folder < 0) return false;
  const std::string& last = parts.back();
  bool moved = false;
  if (kind == Kind::kFolder && Settle(folder, last) == Kind::kFolder) {
    // Two folders of one name become one: the newcomer goes in without a name
    // of its own, and its entries join the others when that folder's turn
    // comes.
    const int inner = OpenFolder(folder, last);
    moved = inner >= 0 && Move(from, name, kind, inner, FreeNameless(inner));
    if (inner >= 0) ::close(inner);
  } else {
    moved = Move(from, name, kind, folder, Unoccupied(folder, last, false));
  }
  ::close(folder);
  return moved;
}

// Takes the folder `name` of `from` apart: its entries go to `to`, each where
// its own name says, and the folder goes.  A folder inside without a name of
// its own moves to `to` as it is, to be taken apart in the next round.
bool Merge(int from, const std::string& name, int to) {
  const int folder = OpenFolder(from, name);
  std::vector<std::string> names;
  bool settled = folder >= 0 && ReadNames(folder, &names);
  for (const std::string& entry : names) {
    const Kind kind = Settle(folder, entry);
    if (kind == Kind::kMissing) continue;
    if (kind == Kind::kBlocked) {
      settled = false;
      continue;
    }
    const std::vector<std::string> parts = Parts(entry, false, kind == Kind::kFile);
    settled = (parts.empty() ? Move(folder, entry, kind, to, FreeNameless(to))
                             : Place(folder, entry, kind, parts, to)) &&
              settled;
  }
  if (folder >= 0) ::close(folder);
  return settled && ::unlinkat(from, name.c_str(), AT_REMOVEDIR) == 0;
}

// Settles the names of one open folder, not those below its subfolders, in
// rounds until a round changes nothing.  When that last round has looked at
// every name, `folders` gets the subfolders it found (and `listed` is set).
bool SettleFolder(int folder, bool top, std::vector<FolderEntry>* folders, bool* listed) {
  std::vector<std::string> before;
  bool settled = true;
  *listed = false;
  for (int round = 0; round < kRounds; ++round) {
    std::vector<std::string> names;
    if (!ReadNames(folder, &names)) return false;
    if (round > 0 && names == before) return settled;
    settled = true;
    bool changing = false;  // something was removed or is to move
    folders->clear();
    for (const std::string& name : names) {
      const Kind kind = Settle(folder, name);
      if (kind == Kind::kMissing) {
        changing = true;
        continue;
      }
      if (kind == Kind::kBlocked) {
        settled = false;
        continue;
      }
      const std::vector<std::string> parts = Parts(name, top, kind == Kind::kFile);
      if (parts.size() == 1 && parts[0] == name) {
        if (kind == Kind::kFolder) folders->push_back({name, true});
        continue;
      }
      changing = true;
      settled = Place(folder, name, kind, parts, folder) && settled;
    }
    if (!changing) {
      *listed = true;
      return settled;
    }
    before = std::move(names);
  }
  return false;
}

// The settling of a whole tree, one folder at a time from the top: a folder's
// own names first, then each of its subfolders.  Whatever moves, moves within
// the folder that is being settled, so every name comes to be settled.
class Walk {
 public:
  bool Run(int folder) {
    const int top = ::fcntl(folder, F_DUPFD_CLOEXEC, 0);
    if (top < 0) return false;
    Enter(top);
    while (!walk_.empty()) {
      const FolderEntry* subfolder = walk_.Current();
      if (subfolder == nullptr) {
        if (!walk_.Up()) return false;
        continue;
      }
      walk_.Pass();
      const int child = OpenFolder(walk_.folder(), subfolder->name);
      if (child < 0) {
        settled_ = false;
        continue;
      }
      Enter(child);
    }
    return settled_;
  }

 private:
  // Takes the open folder `fd` as the new deepest level, settles its own
  // names and keeps its subfolders as the entries to visit.
  void Enter(int fd) {
    const bool top = walk_.empty();
    // A folder that cannot be looked at is settled all the same; only the
    // way back up to it fails, should it be closed meanwhile.
    walk_.Down(fd);
    std::vector<FolderEntry>& folders = walk_.entries();
    bool listed = false;
    settled_ = SettleFolder(fd, top, &folders, &listed) && settled_;
    if (!listed) {
      // The last round moved things: list what stands now.
      folders.clear();
      std::vector<std::string> names;
      settled_ = ReadNames(fd, &names) && settled_;
      for (std::string& name : names) {
        if (Settle(fd, name) == Kind::kFolder) folders.push_back({std::move(name), true});
      }
    }
  }

  FolderWalk walk_;
  bool settled_ = true;
};

bool SameIgnoringAsciiCase(std::string_view a, std::string_view b) {
  auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
  return a.size() == b.size() &&
         std::equal(a.begin(), a.end(), b.begin(), [&](char x, char y) {
           return lower(x) == lower(y);
         });
}

bool IsPlainFile(int folder, const std::string& name) {
  // Non-blocking, so that a pipe of that name cannot hold the run.
  const int file =
      ::openat(folder, name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  if (file < 0) return false;
  struct stat st;
  const bool plain = ::fstat(file, &st) == 0 && S_ISREG(st.st_mode);
  ::close(file);
  return plain;
}

}  // namespace

bool FixExtractedNamesAt(int folder) { return Walk().Run(folder); }

bool FixExtractedNames(std::u16string_view path) {
  const int folder = ::open(SystemPath(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (folder < 0) return false;
  const bool settled = FixExtractedNamesAt(folder);
  ::close(folder);
  return settled;
}

bool HasPlainFileAnyCase(int folder, std::string_view relative) {
  const std::size_t slash = relative.find('/');
  const std::string wanted(relative.substr(0, slash));
  std::vector<std::string> spellings = {wanted}, names;
  ReadNames(folder, &names);  // unreadable: the exact spelling alone
  for (std::string& name : names) {
    if (name != wanted && SameIgnoringAsciiCase(name, wanted)) spellings.push_back(std::move(name));
  }
  for (const std::string& name : spellings) {
    if (slash == std::string_view::npos) {
      if (IsPlainFile(folder, name)) return true;
      continue;
    }
    int next = ::openat(folder, name.c_str(), kFolderFlags);
    // A folder that may not be read is still passed through by its exact name.
    if (next < 0 && errno == EACCES) {
      next = ::openat(folder, name.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    }
    if (next < 0) continue;
    const bool found = HasPlainFileAnyCase(next, relative.substr(slash + 1));
    ::close(next);
    if (found) return true;
  }
  return false;
}

}  // namespace quorvane::platform
