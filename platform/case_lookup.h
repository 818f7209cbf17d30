// Finding, on this system, whose names differ by case, the entry that Windows
// finds on NTFS, whose names do not: a project made on Windows names its files
// in any case ("TimeTable_weekend.csv" for "timetable_WEEKEND.csv").
//
// Paths here are system paths in UTF-8 as CleanWin32Path leaves them ("/"
// between names, no "." or ".." but the leading ".." of a relative path).
// These calls are made only when the path as it stands failed, or to create
// an entry: a path that exists as it stands costs nothing more.
//
// To spare a listing for each entry made, the names of the folders that this
// process has made or listed for that purpose are remembered; any removal
// forgets them all.  One thread only.
#ifndef QV_PLATFORM_CASE_LOOKUP_H_
#define QV_PLATFORM_CASE_LOOKUP_H_

#include <string>

namespace quorvane::platform {

// The path of the existing entry that NTFS would find for `path`: from the
// deepest folder of the path that exists as spelled, each further name is
// looked for in its folder: the entry of exactly that name if there is one,
// else the first in NTFS order that is the same name to NTFS (ntfs_names.h),
// among the names Windows can hold.  Empty when a name matches nothing, or
// when the path runs through something that is no folder.
std::string FindIgnoringCase(const std::string& path);

// `path` with its folder found as FindIgnoringCase finds it and the last name
// as it stands, for an entry to be made there.  Empty when the folder exists
// as spelled (so it is not what is missing) or is not found at all.
std::string FindFolderIgnoringCase(const std::string& path);

// How to spell `path` to create it: as it stands, unless its folder already
// holds the last name in another case and not as it stands; then with that
// spelling, so that the entry is used (a file overwritten, a folder found to
// exist) and not made a second time beside it.
std::string SpellingForNew(const std::string& path);

// An entry was made at `path` (a file, or a new and so empty folder).
void NoteCreated(const std::string& path, bool new_folder);

// Something was removed: what is remembered of folders may be wrong now.
void ForgetFolders();

// The entry at `path` was moved away: what is remembered of its folder, and of
// it and the folders below it, is forgotten.
void NoteGone(const std::string& path);

}  // namespace quorvane::platform

#endif  // QV_PLATFORM_CASE_LOOKUP_H_
