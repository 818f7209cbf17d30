#include "platform/case_lookup.h"

#include <dirent.h>
#include <sys/stat.h>

#include <cerrno>
#include <ctime>
#include <map>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "platform/ntfs_names.h"
#include "platform/system_path.h"
#include "platform/text_codec.h"

namespace quorvane::platform {
namespace {

// The names of a path, and whether it begins at the root.
struct SplitPath {
  bool absolute = false;
  std::vector<std::string> names;
  bool trailing_separator = false;
};

SplitPath Split(const std::string& path) {
  SplitPath out;
  std::size_t pos = 0;
  if (!path.empty() && path[0] == '/') {
    out.absolute = true;
    pos = 1;
  }
  out.trailing_separator = path.size() > 1 && path.back() == '/';
  while (pos < path.size()) {
    std::size_t end = path.find('/', pos);
    if (end == std::string::npos) end = path.size();
    if (end > pos) out.names.push_back(path.substr(pos, end - pos));
    pos = end + 1;
  }
  return out;
}

// The path of the root and the first `count` names ("" is the current folder).
std::string Prefix(const SplitPath& split, std::size_t count) {
  std::string out(split.absolute ? 1 : 0, '/');
  for (std::size_t i = 0; i < count; ++i) {
    if (i > 0) out += '/';
    out += split.names[i];
  }
  return out;
}

std::string Child(const std::string& folder, const std::string& name) {
  if (folder.empty()) return name;
  return folder.back() == '/' ? folder + name : folder + '/' + name;
}

// The entries of a folder, as the system spells them ("" is the current folder).
std::optional<std::vector<std::string>> Entries(const std::string& folder) {
  DIR* dir = ::opendir(SystemPath(folder.empty() ? std::string(".") : folder).c_str());
  if (dir == nullptr) return std::nullopt;
  std::vector<std::string> names;
  errno = 0;
  while (const struct dirent* e = ::readdir(dir)) {
    const std::string name = e->d_name;
    if (name != "." && name != "..") names.push_back(name);
  }
  const bool whole = errno == 0;  // a listing that broke off is no listing
  ::closedir(dir);
  if (!whole) return std::nullopt;
  return names;
}

bool IsFolder(const std::string& path) {
  struct stat st;
  return ::stat(SystemPath(path.empty() ? std::string(".") : path).c_str(), &st) == 0 &&
         S_ISDIR(st.st_mode);
}

// The names of a folder that this process made or listed, by their NTFS
// upper-case form; for each, the first spelling in NTFS order.
using FolderNames = std::unordered_map<std::u16string, std::string>;

std::map<std::string, FolderNames>& Known() {
  static std::map<std::string, FolderNames> known;
  return known;
}

void Remember(FolderNames& names, const std::string& name) {
  const std::u16string wide = Utf16FromUtf8(name);
  if (!IsWindowsName(wide)) return;
  auto [it, added] = names.emplace(NtfsUpper(wide), name);
  if (!added && wide < Utf16FromUtf8(it->second)) it->second = name;
}

// What NTFS finds in one folder: each name's exact spelling, and the
// remembered names by their upper-case form.
struct Finder {
  std::unordered_set<std::string> exact;
  FolderNames by_upper;
};

Finder FinderOf(const std::vector<std::string>& entries) {
  Finder finder;
  for (const std::string& entry : entries) {
    finder.exact.insert(entry);
    Remember(finder.by_upper, entry);
  }
  return finder;
}

// Listings of folders that nothing has changed for a while, kept with the
// folder's identity and times: a change made later gives the folder a time
// of its own, later than the one kept, so a kept listing is never stale.  A
// folder changed in the last seconds is listed every time (a change in the
// same tick of the clock would not show).
struct KeptListing {
  dev_t device;
  ino_t inode;
  struct timespec modified;  // a folder's entries change only with this time
  Finder finder;
};
constexpr time_t kQuietSeconds = 2;

bool SameTime(const struct timespec& a, const struct timespec& b) {
  return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

// The entry of `folder` that NTFS finds for `name`; empty if none.
std::string Match(const std::string& folder, const std::string& name) {
  static std::unordered_map<std::string, KeptListing> kept;
  const std::string native = folder.empty() ? std::string(".") : folder;
  struct stat st;
  const bool known = ::stat(SystemPath(native).c_str(), &st) == 0;
  const Finder* finder = nullptr;
  Finder fresh;
  const auto it = kept.find(native);
  if (known && it != kept.end() && it->second.device == st.st_dev &&
      it->second.inode == st.st_ino && SameTime(it->second.modified, st.st_mtim)) {
    finder = &it->second.finder;
  } else {
    const std::optional<std::vector<std::string>> entries = Entries(folder);
    if (!entries) return {};
    fresh = FinderOf(*entries);
    finder = &fresh;
    struct timespec now;
    if (known && ::clock_gettime(CLOCK_REALTIME, &now) == 0 &&
        now.tv_sec - st.st_mtim.tv_sec > kQuietSeconds) {
      KeptListing& listing = kept[native];
      listing = {st.st_dev, st.st_ino, st.st_mtim, std::move(fresh)};
      finder = &listing.finder;
    }
  }
  if (finder->exact.count(name) != 0) return name;
  const auto found = finder->by_upper.find(NtfsUpper(Utf16FromUtf8(name)));
  return found == finder->by_upper.end() ? std::string() : found->second;
}

// The remembered names of a folder, listing it the first time.
FolderNames* NamesOf(const std::string& folder) {
  auto& known = Known();
  auto it = known.find(folder);
  if (it != known.end()) return &it->second;
  const std::optional<std::vector<std::string>> entries = Entries(folder);
  if (!entries) return nullptr;
  FolderNames names;
  for (const std::string& entry : *entries) Remember(names, entry);
  return &known.emplace(folder, std::move(names)).first->second;
}

// Splits "folder/name" at its last separator ("" for the current folder).
bool FolderAndName(const std::string& path, std::string* folder, std::string* name) {
  std::string trimmed = path;
  if (trimmed.size() > 1 && trimmed.back() == '/') trimmed.pop_back();
  const std::size_t cut = trimmed.rfind('/');
  if (cut == std::string::npos) {
    folder->clear();
    *name = trimmed;
  } else {
    *folder = cut == 0 ? std::string("/") : trimmed.substr(0, cut);
    *name = trimmed.substr(cut + 1);
  }
  return !name->empty() && *name != "/" && *name != "..";
}

}  // namespace

std::string FindIgnoringCase(const std::string& path) {
  const SplitPath split = Split(path);
  if (split.names.empty()) return {};
  // The deepest folder that exists as spelled: usually the one that holds
  // the last name.
  std::size_t start = split.names.size() - 1;
  while (start > 0) {
    struct stat st;
    if (::stat(SystemPath(Prefix(split, start)).c_str(), &st) == 0) {
      if (!S_ISDIR(st.st_mode)) return {};  // a file of exactly that name wins
      break;
    }
    --start;
  }
  std::string found = Prefix(split, start);
  for (std::size_t i = start; i < split.names.size(); ++i) {
    const std::string entry = Match(found, split.names[i]);
    if (entry.empty()) return {};
    found = Child(found, entry);
  }
  if (split.trailing_separator) found += '/';
  return found == path ? std::string() : found;
}

std::string FindFolderIgnoringCase(const std::string& path) {
  std::string folder, name;
  if (!FolderAndName(path, &folder, &name) || folder.empty() || folder == "/") return {};
  if (IsFolder(folder)) return {};  // the folder is not what is missing
  const std::string found = FindIgnoringCase(folder);
  if (found.empty()) return {};
  std::string out = Child(found, name);
  if (path.size() > 1 && path.back() == '/') out += '/';
  return out;
}

std::string SpellingForNew(const std::string& path) {
  std::string folder, name;
  if (!FolderAndName(path, &folder, &name)) return path;
  FolderNames* names = NamesOf(folder);
  if (names == nullptr) return path;
  const auto it = names->find(NtfsUpper(Utf16FromUtf8(name)));
  if (it == names->end() || it->second == name) return path;
  // Another spelling is known; the one asked for may stand beside it here.
  struct stat st;
  if (::lstat(SystemPath(path).c_str(), &st) == 0) return path;
  std::string out = Child(folder, it->second);
  if (path.size() > 1 && path.back() == '/') out += '/';
  return out;
}

void NoteCreated(const std::string& path, bool new_folder) {
  std::string folder, name;
  if (!FolderAndName(path, &folder, &name)) return;
  auto& known = Known();
  auto it = known.find(folder);
  if (it != known.end()) Remember(it->second, name);
  if (new_folder) {
    std::string trimmed = path;
    if (trimmed.size() > 1 && trimmed.back() == '/') trimmed.pop_back();
    known[trimmed] = FolderNames();
  }
}

void ForgetFolders() { Known().clear(); }

void NoteGone(const std::string& path) {
  std::string folder, name;
  if (!FolderAndName(path, &folder, &name)) return;
  auto& known = Known();
  known.erase(folder);
  std::string trimmed = path;
  if (trimmed.size() > 1 && trimmed.back() == '/') trimmed.pop_back();
  auto it = known.lower_bound(trimmed);
  while (it != known.end() && it->first.starts_with(trimmed) &&
         (it->first.size() == trimmed.size() || it->first[trimmed.size()] == '/')) {
    it = known.erase(it);
  }
}

}  // namespace quorvane::platform
