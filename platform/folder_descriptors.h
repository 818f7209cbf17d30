// Folders reached through open descriptors, for the platform layer's walks
// over trees that someone else may have filled (the removal of a tree, the
// settling of an extracted archive's names): listing one open folder by the
// raw bytes of its names, and opening a subfolder without following a link.
#ifndef QV_PLATFORM_FOLDER_DESCRIPTORS_H_
#define QV_PLATFORM_FOLDER_DESCRIPTORS_H_

#include <string>
#include <vector>

namespace quorvane::platform {

struct FolderEntry {
  std::string name;     // raw bytes, as the folder lists it
  bool folder = false;  // listed as a folder; any other entry may still turn out to be one
};

// The entries of the open folder `folder`, "." and ".." left out, from its
// top (its own reading position is not used).  False if the listing broke off.
bool ListOpenFolder(int folder, std::vector<FolderEntry>* entries);

// Opens the folder `name` in `parent` for reading, never through a link.  A
// folder that may not be read is first given its owner's rights through a
// handle that reads nothing (the /proc name of that handle is the folder
// itself).  -1 when it cannot be opened.
int OpenSubfolder(int parent, const std::string& name);

}  // namespace quorvane::platform

#endif  // QV_PLATFORM_FOLDER_DESCRIPTORS_H_
