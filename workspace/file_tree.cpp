#include "workspace/file_tree.h"

#include <exception>

#include "base/qv_conv_exception.h"
#include "platform/file_system.h"
#include "platform/tree_removal.h"
#include "workspace/project_path.h"

namespace quorvane::qvconv::converter {
namespace {

std::u16string Join(const std::u16string& folder, const std::u16string& name) {
  return folder + u"/" + name;
}

void CopyEntries(const std::u16string& source, const std::u16string& destination,
                 const std::vector<platform::DirEntry>& entries) {
  for (const platform::DirEntry& entry : entries) {
    // What Windows could not name is no file there (the stream that a copy
    // of a downloaded file leaves beside it as "name:Zone.Identifier").
    if (!entry.windows_name) continue;
    const std::u16string from = Join(source, entry.name);
    const std::u16string to = Join(destination, entry.name);
    if (entry.is_directory) {
      platform::MakeDirectory(to);
      CopyTree(from, to);
    } else {
      // One file that does not arrive does not stop the others.
      platform::CopyFile(from, to);
    }
  }
}

}  // namespace

bool DeleteTree(const std::u16string& path) { return platform::RemoveTree(path); }

void CopyTree(const std::u16string& source, const std::u16string& destination) {
  Guarded(codes::kCopyFailed, [&] {
    if (!platform::PathExists(source)) return;
    // Whatever can be listed is a folder (the top one may be a link to one);
    // anything else is copied as one file.
    std::vector<platform::DirEntry> entries;
    if (!platform::ListDirectory(source, &entries)) {
      platform::CopyFile(source, destination);
      return;
    }
    CopyEntries(source, destination, entries);
  });
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
