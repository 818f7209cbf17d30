#include "workspace/file_tree.h"

#include <exception>

#include "base/qv_conv_exception.h"
#include "platform/atomic_file.h"
#include "platform/file_system.h"
#include "platform/tree_removal.h"
#include "workspace/project_path.h"
#include "workspace/run_log.h"

namespace quorvane::qvconv::converter {
namespace {

std::u16string Join(const std::u16string& folder, const std::u16string& name) {
  return folder + u"/" + name;
}

void CopyEntries(const std::u16string& source, const std::u16string& destination,
                 const std::vector<platform::DirEntry>& entries, bool move) {
  for (const platform::DirEntry& entry : entries) {
    // What Windows could not name is no file there (the stream that a copy
    // of a downloaded file leaves beside it as "name:Zone.Identifier").
    if (!entry.windows_name) continue;
    const std::u16string from = Join(source, entry.name);
    const std::u16string to = Join(destination, entry.name);
    if (move) run_log::Step("deliver", from, to);
    if (move && platform::MoveToNew(from, to)) continue;
    // What stands in the destination as a link (or as something that is no
    // file) is not written through: the tree never reaches outside.
    const bool blocked = entry.is_directory
                             ? (platform::MakeDirectory(to), !platform::IsDirectory(to))
                             : platform::PathExists(to) && !platform::IsRegularFile(to);
    if (blocked) {
      run_log::Loss("the destination", to, "is a link or no folder: left out of the copy");
      continue;
    }
    if (entry.is_directory) {
      if (move) {
        MoveTree(from, to);
      } else {
        CopyTree(from, to);
      }
    } else if (move) {
      // A delivery: the file arrives whole or not at all.
      platform::CopyFileWhole(from, to);
    } else {
      // One file that does not arrive does not stop the others.
      platform::CopyFile(from, to);
    }
  }
}

// A top folder that cannot be listed is copied or moved as one file.
void CopyOrMoveTree(const std::u16string& source, const std::u16string& destination, bool move) {
  Guarded(codes::kCopyFailed, [&] {
    if (!platform::PathExists(source)) return;
    // Whatever can be listed is a folder (the top one may be a link to one);
    // anything else is copied as one file.
    std::vector<platform::DirEntry> entries;
    if (!platform::ListDirectory(source, &entries)) {
      if (!move) {
        platform::CopyFile(source, destination);
      } else if (!platform::MoveToNew(source, destination)) {
        platform::CopyFileWhole(source, destination);
      }
      return;
    }
    CopyEntries(source, destination, entries, move);
  });
}

}  // namespace

bool DeleteTree(const std::u16string& path) { return platform::RemoveTree(path); }

void CopyTree(const std::u16string& source, const std::u16string& destination) {
  CopyOrMoveTree(source, destination, false);
}

void MoveTree(const std::u16string& source, const std::u16string& destination) {
  CopyOrMoveTree(source, destination, true);
}

std::vector<std::u16string> ListFiles(const std::u16string& folder) {
  std::vector<std::u16string> files;
  std::vector<platform::DirEntry> entries;
  if (!platform::ListDirectory(folder, &entries)) return files;
  for (const platform::DirEntry& entry : entries) {
    if (!entry.windows_name || entry.is_directory || entry.name[0] == u'.') continue;
    std::u16string path = JoinPath(folder, entry.name);
    // A link to a folder is no plain file either.
    if (!platform::IsRegularFile(path)) {
      std::vector<platform::DirEntry> inside;
      if (platform::ListDirectory(path, &inside)) continue;
    }
    files.push_back(std::move(path));
  }
  return files;
}

}  // namespace quorvane::qvconv::converter
