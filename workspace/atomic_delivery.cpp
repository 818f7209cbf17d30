#include "workspace/atomic_delivery.h"

#include <exception>
#include <string>
#include <vector>

#include "base/qv_conv_exception.h"
#include "platform/atomic_file.h"
#include "platform/file_lock.h"
#include "platform/file_system.h"
#include "platform/private_folder.h"
#include "platform/system_info.h"
#include "workspace/archive_tool.h"
#include "workspace/run_log.h"

namespace quorvane::qvconv::converter {
namespace {

// The tool's exit statuses: 0 done, 1 done with warnings (a file it could
// not read); anything else is a fatal error or a killed tool.
bool ToolEndedWell(int status) { return status == 0 || status == 1; }

// The file system takes "\" and "/" alike: either ends the folder of a path.
std::size_t LastSeparator(const std::u16string& path) { return path.find_last_of(u"/\\"); }

std::u16string FileNameOf(const std::u16string& path) {
  const std::size_t cut = LastSeparator(path);
  return cut == std::u16string::npos ? path : path.substr(cut + 1);
}

std::u16string FolderOf(const std::u16string& path) {
  const std::size_t cut = LastSeparator(path);
  if (cut == std::u16string::npos) return u".";
  return cut == 0 ? path.substr(0, 1) : path.substr(0, cut);
}

}  // namespace

std::u16string ZipPathOf(const std::u16string& archive) {
  const std::u16string name = FileNameOf(archive);
  if (name.find(u'.') == std::u16string::npos) return archive + u".zip";
  if (name.back() == u'.') return archive.substr(0, archive.size() - 1);
  return archive;
}

void PackFolderWhole(const std::u16string& folder, const std::u16string& archive, bool compress) {
  const std::u16string name = FileNameOf(archive);
  if (name == u"." || name == u"..") {
    // No file can stand there: the tool is left to fail as it does.
    run_log::Step("pack", folder, archive);
    PackFolder(folder, archive, compress);
    return;
  }
  // The name as the tool completes it ("x" is "x.zip", "x." is "x"), then as
  // the file calls clean it ("x.." is "x.", which is "x").
  const std::u16string zip = platform::PathAsFound(ZipPathOf(archive));
  const std::u16string partial = zip + u".partial";
  // Runs of one output path take turns on its temporary.
  // (Best effort: a folder that refuses the lock file still gets its package.)
  const platform::SharedFolder place(FolderOf(zip));
  const platform::FileLock lock(place, FileNameOf(zip) + u".partial.lock");
  // What a killed run left behind: the temporary, and the tool's own
  // temporary of an archive that it was adding to.
  platform::RemoveFile(partial);
  platform::RemoveFile(partial + u".tmp");
  // The tool adds to an archive that is there already: it works on a copy
  // (of nothing, where there is none).
  platform::CopyFile(zip, partial);
  // 7-Zip replaces a read-only archive like any other.
  platform::MakeWritable(partial);

  run_log::Step("pack", folder, partial);
  int status = -1;
  try {
    status = PackFolder(folder, partial, compress);
  } catch (QvConvException*) {
    run_log::Cause("cannot pack (the archive tool did not start) into", zip);
    platform::RemoveFile(partial);
    throw;
  }
  std::string why = "the archive tool ended with status " + std::to_string(status);
  if (ToolEndedWell(status) && platform::IsRegularFile(partial)) {
    run_log::Step("deliver", partial, zip);
    platform::SyncFile(partial);
    if (platform::RenameOver(partial, zip)) return;
    why = "it could not be renamed over the destination";
  }
  run_log::Loss("the package", zip, "was not delivered: " + why + "; the destination is as it was");
  platform::RemoveFile(partial);
}

}  // namespace quorvane::qvconv::converter
