// Whole-tree file operations on paths: delete, copy, and a plain listing.
//
// None of them follows a symbolic link found inside a tree: a link is removed
// or listed as the entry it is, never descended into, so nothing outside the
// tree is touched.
#ifndef QV_WORKSPACE_FILE_TREE_H_
#define QV_WORKSPACE_FILE_TREE_H_

#include <string>
#include <vector>

namespace quorvane::qvconv::converter {

// Removes a folder with everything in it, read-only files and entries whose
// names are not UTF-8 included.  True if the folder is gone; false if it
// cannot be listed (it does not exist, is no folder, or is a link: a link is
// not followed here either) or something in it could not be removed.  Stops
// at the first entry that cannot be removed, leaving the rest in place.
bool DeleteTree(const std::u16string& path);

// Copies `source` to `destination`.
//   - A missing source: nothing happens.
//   - A single file: copied to the full target path `destination`, which is
//     overwritten if it exists.
//   - A folder: its files go into `destination`, which must exist already (it
//     is not made here, and if it is missing nothing of the first level
//     arrives); its subfolders are made below `destination` and copied in turn.
//     Entries whose names Windows could not hold are no files: not copied.
// Copies keep their source's last-write time and read-only flag.  A file that
// cannot be copied is passed over without a failure.  A standard exception
// along the way throws code -4.
void CopyTree(const std::u16string& source, const std::u16string& destination);

// As CopyTree, for a tree of the program's own that is removed afterwards:
// each file or folder whose name is not in use at the destination in any case
// is moved there by renaming it, where the file system allows; whatever is
// left (a name in use, another file system) is copied as CopyTree copies it.
// What arrives is what CopyTree would bring; the source tree loses what moved.
void MoveTree(const std::u16string& source, const std::u16string& destination);

// The full paths ("<folder>\<name>") of the plain files in one folder, in the
// order of a listing on Windows (NTFS order: names compared after
// upper-casing).  Names beginning with "." and folders are left out, and so
// are names that Windows could not hold; subfolders are not descended into.
// A folder that cannot be listed gives an empty list.
std::vector<std::u16string> ListFiles(const std::u16string& folder);

}  // namespace quorvane::qvconv::converter

#endif  // QV_WORKSPACE_FILE_TREE_H_
