#include "workspace/archive_tool.h"

#include <exception>
#include <string>
#include <vector>

#include "base/qv_conv_exception.h"
#include "platform/extracted_names.h"
#include "platform/file_system.h"
#include "platform/file_lock.h"
#include "platform/private_folder.h"
#include "platform/process.h"
#include "platform/system_info.h"
#include "workspace/archive_listing.h"
#include "workspace/file_tree.h"
#include "workspace/run_log.h"

namespace quorvane::qvconv::converter {
namespace {

const char16_t kTool[] = u"7za";

// The tool reads an argument that begins with "-" as a switch; a relative
// path of that form is handed over as "./-name" so that it stays a path.
// The path is given as the file calls find it (Windows' rules, any case), since
// the tool looks names up by itself and knows nothing of them.
std::u16string AsOperand(const std::u16string& path) {
  std::u16string found = platform::PathAsFound(path);
  if (!found.empty() && found[0] == u'-') return u"./" + found;
  return found;
}

// Runs the tool and waits; false when it could not be started.  "-y" answers
// every question of the tool with yes (overwrite and the like), so that it
// never waits for input that cannot come.
bool RunTool(std::vector<std::u16string> arguments, int* status = nullptr) {
  arguments.insert(arguments.begin(), kTool);
  arguments.push_back(u"-y");
  const platform::ProcessResult result = platform::RunProcess(arguments);
  if (status != nullptr) *status = result.exit_status;
  return result.started;
}

// Lists the archive and picks what the probe extracts.  False when the tool
// could not be started.
bool SelectForProbe(const std::u16string& archive, ProbeSelection& selection) {
  std::string listing;
  const platform::ProcessResult listed =
      platform::RunProcess({kTool, u"l", u"-slt", AsOperand(archive)}, listing);
  if (!listed.started) return false;
  // A damaged archive is extracted as far as the tool gets.
  selection = listed.exit_status == 0 ? SelectMarkerEntries(listing) : ProbeSelection{};
  return true;
}

}  // namespace

void RequireReady(platform::FixedName status) {
  if (status != platform::FixedName::kReady) ThrowCode(codes::kCannotCreate);
}

int PackFolder(const std::u16string& folder, const std::u16string& archive, bool compress) {
  bool started = false;
  int status = -1;
  Guarded(codes::kPackFailed, [&] {
    std::vector<std::u16string> arguments = {u"a", u"-r", u"-tzip", AsOperand(archive),
                                             AsOperand(folder)};
    // The compressed form is the same zip package at the highest level.
    if (compress) arguments.push_back(u"-mx=9");
    started = RunTool(std::move(arguments), &status);
  });
  if (!started) ThrowCode(codes::kPackFailed);
  return status;
}

void UnpackArchive(const std::u16string& archive, const std::u16string& folder) {
  bool started = false;
  int status = -1;
  Guarded(codes::kUnpackFailed, [&] {
    // The destination is emptied first, whatever the extraction then does.
    // The tool then makes it again as typed (in the folders found for it).
    if (!folder.empty()) DeleteTree(platform::PathAsFound(folder));
    const std::u16string destination = folder.empty() ? folder : platform::PathAsFound(folder);
    run_log::Step("extract", archive, destination);
    if (platform::IsPipe(archive)) {
      // The tool would wait for the pipe's writer, and the run with it.
      started = true;
      return;
    }
    started = RunTool({u"x", AsOperand(archive), u"-o" + destination}, &status);
    // What the tool could not settle is settled here, as far as it goes.
    if (started) platform::FixExtractedNames(destination);
  });
  if (!started) ThrowCode(codes::kUnpackFailed);
  if (status != 0) {
    run_log::Loss("the archive", archive,
                  "could not be extracted whole: the archive tool ended with status " +
                      std::to_string(status));
  }
}

namespace {

// Extracts the archive, or only the entries named exactly (case and all),
// into the emptied private folder.
void UnpackInto(const std::u16string& archive, platform::PrivateFolder& folder,
                const std::vector<std::u16string>& only, bool empty_first) {
  if (empty_first && !folder.Empty()) ThrowCode(codes::kCannotCreate);
  bool started = false;
  int status = -1;
  Guarded(codes::kUnpackFailed, [&] {
    std::vector<std::u16string> arguments = {u"x", AsOperand(archive),
                                             u"-o" + folder.ChildPath()};
    if (!only.empty()) arguments.push_back(u"-ssc");
    for (const auto& name : only) arguments.push_back(u"-i!" + name);
    run_log::Step("extract", archive, folder.ChildPath());
    started = RunTool(std::move(arguments), &status);
    if (started) folder.FixExtractedNames();
  });
  if (!started) ThrowCode(codes::kUnpackFailed);
  if (status != 0) {
    run_log::Loss("the archive", archive,
                  "could not be extracted whole: the archive tool ended with status " +
                      std::to_string(status));
  }
}

}  // namespace

void UnpackArchive(const std::u16string& archive, platform::PrivateFolder& folder) {
  // Whatever an earlier run left there would be taken for part of this archive.
  UnpackInto(archive, folder, {}, true);
}

bool ProbeArchive(const std::u16string& archive) {
  // A pipe holds no package, and the tool would wait for its writer.
  if (platform::IsPipe(archive)) return false;
  // Only what may become the marker is extracted, when the listing tells it.
  // A tool that cannot be started is known before anything is made.
  ProbeSelection selection;
  bool started = false;
  Guarded(codes::kUnpackFailed, [&] { started = SelectForProbe(archive, selection); });
  if (!started) ThrowCode(codes::kUnpackFailed);
  // The tool makes the folder it extracts into, and the missing folders that
  // lead to it: a temporary folder that is not there yet comes into being.
  const platform::SharedFolder temp(platform::TempDirectory(),
                                    platform::SharedFolder::Missing::kMake);
  RequireReady(temp.status());
  // The probe folder has a fixed name: one run at a time fills, reads and
  // empties it.
  const platform::FileLock lock(temp, u"chktemp.lock");
  RequireReady(lock.status());
  platform::PrivateFolder probe(temp, u"chktemp");
  RequireReady(probe.status());
  // The probe folder is not cleared first: only its removal after each probe
  // keeps it empty between runs, so what a killed run left there still counts,
  // as it always has.
  try {
    if (selection.scope != ProbeScope::kNothing) {
      UnpackInto(archive, probe, selection.names, false);
    }
  } catch (...) {
    probe.Remove();
    throw;
  }
  // Only a plain file that opens counts, its name in any case as on NTFS; its
  // content is not read here.
  const bool package = probe.HasPlainFile(u"QvFormat/QvS.xml");
  probe.Remove();
  return package;
}

}  // namespace quorvane::qvconv::converter
