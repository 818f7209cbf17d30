// Delivery that is whole or nothing at the destination: a run that is killed
// at any moment, or whose disk fills, leaves there what was there before or
// the whole new result, never a package or a file cut short.
//
// A package is made by the archive tool under "<zip>.partial" beside the
// destination zip and renamed over it when the tool has ended well.  Since the
// tool adds to an archive that exists, an archive at the destination is first
// copied to the temporary, and stays untouched until the rename.  Runs of one
// output path take turns through a lock on "<zip>.partial.lock", and what a
// killed run left under these names is removed or taken over by the next run
// of the same output path.
//
// A tree is copied file by file, each file through a temporary name in its
// folder (platform/atomic_file.h): a killed copy leaves whole files, and
// possibly fewer of them.
#ifndef QV_WORKSPACE_ATOMIC_DELIVERY_H_
#define QV_WORKSPACE_ATOMIC_DELIVERY_H_

#include <string>

namespace quorvane::qvconv::converter {

// The path under which the archive tool stores a zip named `archive`: a file
// name without any "." gets ".zip", and one "." at its end is dropped
// ("out" is "out.zip", "out." is "out", "out.zip" stays).
std::u16string ZipPathOf(const std::u16string& archive);

// PackFolder (workspace/archive_tool.h) into ZipPathOf(archive) through
// "<zip>.partial".  The tool's exit status decides the rename only: the
// package is delivered when the tool ended without a fatal error (status 0
// or 1, its warnings), else the destination stays as it was and the
// temporary is removed.  Codes as PackFolder: -401 when the tool cannot be
// started.
void PackFolderWhole(const std::u16string& folder, const std::u16string& archive, bool compress);

}  // namespace quorvane::qvconv::converter

#endif  // QV_WORKSPACE_ATOMIC_DELIVERY_H_
