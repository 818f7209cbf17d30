// Removing a folder with everything in it, without following a symbolic link
// at any depth.
//
// Every folder is opened from its parent's open descriptor with O_NOFOLLOW,
// and every entry is removed there (unlinkat) by the raw bytes of its name as
// the folder lists it, so a name that is not UTF-8 goes too.  A link is
// removed as the entry it is: what it points to is never opened, listed,
// changed or removed.  No path is resolved twice, so a folder that is swapped
// for a link half-way cannot lead the removal elsewhere.
//
// A read-only file needs nothing (removing it changes its folder, not the
// file); a folder whose owner may not read, write or search it is given those
// rights first, so that its entries can go.
//
// Only a bounded number of folders stay open on the way down: a folder far
// above is closed and opened again on the way back up through "..", which
// must then be the very folder that was left.  So a tree of any depth can be
// removed with a handful of descriptors.
//
// The current folder of this process is in use, and Windows removes no folder
// in use: it is emptied but stays, and the removal stops there.
//
// All three stop at the first entry that cannot be removed and leave the rest
// in place.
#ifndef QV_PLATFORM_TREE_REMOVAL_H_
#define QV_PLATFORM_TREE_REMOVAL_H_

#include <string>
#include <string_view>

namespace quorvane::platform {

// Removes the folder `path` with everything in it.  The folders on the way to
// it are found as usual; its last part must be a real folder: a link, a file
// or a missing name gives false and nothing is touched.  A last part "." or
// ".." names a folder that stays: it is emptied, and the result is false.
// True if the folder is gone.
bool RemoveTree(std::u16string_view path);

// For the platform layer's own folders: removes the folder `name` (raw bytes,
// no "/") in the open folder `parent`, as above.
bool RemoveTreeAt(int parent, const std::string& name);

// For the platform layer's own folders: removes everything in the open folder
// `folder`, which stays (and stays open).  True if it is empty now.
bool EmptyFolder(int folder);

}  // namespace quorvane::platform

#endif  // QV_PLATFORM_TREE_REMOVAL_H_
