// Files that reach their place whole or not at all.
//
// A file is copied under a temporary name in the folder of its destination
// and only then renamed over the destination.  Whoever looks at the
// destination, at any moment, finds what was there before or the whole new
// file, never a part of it, also when the process is killed half way or the
// disk fills.  The copy is not flushed to the disk one file at a time (that
// would double the time of a way back of many files): a file that must also
// outlive a power cut is flushed by its caller with SyncFile before the
// rename, as the package is.
//
// The temporary name is fixed for a destination: "<folder>/.<name>.partial".
// It is hidden, so that a listing of project files passes it over, and the
// same on every run, so that what a killed run left behind is taken over by
// the next run that delivers the same file.
#ifndef QV_PLATFORM_ATOMIC_FILE_H_
#define QV_PLATFORM_ATOMIC_FILE_H_

#include <string>
#include <string_view>

namespace quorvane::platform {

// The temporary path of a destination: "<folder>/.<name>.partial".  A name
// too long to take the two additions becomes a hash of it.
std::u16string PartialPathOf(std::u16string_view destination);

// Copies the plain file `source` (a link to one is followed) to `destination`
// through its temporary path, renamed when it is whole.  False if the source
// is no readable plain file or anything of the copy failed; the destination
// is then as it was, and the temporary is removed.
bool CopyFileWhole(std::u16string_view source, std::u16string_view destination);

// Flushes the data of a written file to the disk.
bool SyncFile(std::u16string_view path);

// Renames `from` over `to` in one step; both must be on one file system.
bool RenameOver(std::u16string_view from, std::u16string_view to);

}  // namespace quorvane::platform

#endif  // QV_PLATFORM_ATOMIC_FILE_H_
