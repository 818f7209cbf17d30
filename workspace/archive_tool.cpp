#include "workspace/archive_tool.h"

#include <exception>
#include <string>
#include <string_view>
#include <vector>

#include "base/qv_conv_exception.h"
#include "platform/extracted_names.h"
#include "platform/file_system.h"
#include "platform/file_lock.h"
#include "platform/private_folder.h"
#include "platform/process.h"
#include "platform/system_info.h"
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

// How much of an archive the probe extracts.
enum class ProbeScope {
  kNothing,  // no entry can become the marker: the answer is no
  kEntries,  // the marker's own entries, by their exact names
  kWhole,    // an archive whose names cannot be judged from its listing
};

struct ProbeSelection {
  ProbeScope scope = ProbeScope::kWhole;
  std::vector<std::u16string> names;
};

bool EqualsAsciiNoCase(std::string_view name, std::string_view lower) {
  if (name.size() != lower.size()) return false;
  for (std::size_t i = 0; i < name.size(); ++i) {
    const char c = name[i] >= 'A' && name[i] <= 'Z' ? static_cast<char>(name[i] + 32) : name[i];
    if (c != lower[i]) return false;
  }
  return true;
}

// The parts of a name between "/" and "\", without the parts that the tool
// or the settling of names drops (empty, ".", "..") and without a drive
// ("C:") in front of any part.
std::vector<std::string_view> NameParts(std::string_view name) {
  std::vector<std::string_view> parts;
  std::size_t start = 0;
  for (std::size_t i = 0; i <= name.size(); ++i) {
    if (i < name.size() && name[i] != '/' && name[i] != '\\') continue;
    std::string_view part = name.substr(start, i - start);
    start = i + 1;
    if (part.size() >= 2 && part[1] == ':' &&
        ((part[0] | 0x20) >= 'a' && (part[0] | 0x20) <= 'z')) {
      part.remove_prefix(2);
    }
    if (part.empty() || part == "." || part == "..") continue;
    parts.push_back(part);
  }
  return parts;
}

// Can the entry, wherever the tool and the settling of names put it, stand
// for the folder QvFormat at the top or for anything at or below the
// marker's place?  Every entry with a part "QvFormat" that is its last part
// or is followed somewhere by a part "QvS.xml" counts, in any case: more
// than can matter, never less.  Names that are not UTF-8 are cut at every
// "\" byte, also where code page 932 reads it as the second byte of a
// character, which again gives more parts, never fewer.
bool MayTouchMarker(std::string_view name) {
  const std::vector<std::string_view> parts = NameParts(name);
  for (std::size_t i = 0; i < parts.size(); ++i) {
    if (!EqualsAsciiNoCase(parts[i], "qvformat")) continue;
    if (i + 1 == parts.size()) return true;
    for (std::size_t j = i + 1; j < parts.size(); ++j) {
      if (EqualsAsciiNoCase(parts[j], "qvs.xml")) return true;
    }
  }
  return false;
}

// The marker's plain form: "QvFormat/QvS.xml" or "QvFormat\QvS.xml", in any
// case of its letters.
bool IsPlainMarkerName(std::string_view name) {
  return name.size() == 16 && (name[8] == '/' || name[8] == '\\') &&
         EqualsAsciiNoCase(name.substr(0, 8), "qvformat") &&
         EqualsAsciiNoCase(name.substr(9), "qvs.xml");
}

// Reads the technical listing of a zip archive (7za l -slt): a header block
// naming the archive and then its type, a line of ten "-", then a block of
// "Key = value" lines for each entry: its Path, then whether it is a Folder,
// then the rest.  The tool prints a line feed or other control character in
// a name as "_", so a name cannot forge a line; a comment that could is read
// past: a forged Path line only adds an entry that the extraction then does
// not find, or sends the archive to a whole extraction, and an entry is a
// folder only by the line right behind its own Path.  The marker's own
// entries can be extracted alone when
// every entry that may touch its place is a file or link in its plain form,
// or the folder QvFormat itself (made anyway by the entries below it).
// Anything else, and any archive that is not a zip file (a tar file links
// entries to each other), is extracted whole.
ProbeSelection SelectMarkerEntries(const std::string& listing) {
  ProbeSelection whole;
  std::size_t at = 0;
  bool zip = false, typed = false, entries = false;
  std::string path;
  bool folder = false, have_path = false, after_path = false;
  ProbeSelection chosen;
  chosen.scope = ProbeScope::kNothing;
  // Judges the entry whose block has been read.
  const auto judge = [&]() {
    if (!have_path || !MayTouchMarker(path)) return true;
    if (folder && EqualsAsciiNoCase(path, "qvformat")) return true;
    if (folder || !IsPlainMarkerName(path)) return false;
    chosen.scope = ProbeScope::kEntries;
    chosen.names.emplace_back(path.begin(), path.end());
    return true;
  };
  while (at < listing.size()) {
    std::size_t end = listing.find('\n', at);
    if (end == std::string::npos) end = listing.size();
    std::string_view line(listing.data() + at, end - at);
    at = end + 1;
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    if (!entries) {
      if (!typed && line.starts_with("Type = ")) typed = true, zip = line == "Type = zip";
      if (line == "----------") entries = true;
      continue;
    }
    if (line.starts_with("Path = ")) {
      if (!judge()) return whole;
      path.assign(line.substr(7));
      have_path = true;
      folder = false;
      after_path = true;
      continue;
    }
    if (after_path && line == "Folder = +") folder = true;
    after_path = false;
  }
  if (!zip || !entries || !judge()) return whole;
  return chosen;
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

// A fixed name in a shared folder that is not ours alone, or cannot be made,
// ends the run before anything is done with it.
void RequireReady(platform::FixedName status) {
  if (status != platform::FixedName::kReady) ThrowCode(codes::kCannotCreate);
}

}  // namespace

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
    const std::u16string destination = folder.empty() ? folder : platform::PathAsFound(folder);
    if (!destination.empty()) DeleteTree(destination);
    run_log::Step("extract", archive, destination);
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
  const platform::SharedFolder temp(platform::TempDirectory());
  RequireReady(temp.status());
  // The probe folder has a fixed name: one run at a time fills, reads and
  // empties it.
  const platform::FileLock lock(temp, u"chktemp.lock");
  RequireReady(lock.status());
  platform::PrivateFolder probe(temp, u"chktemp");
  RequireReady(probe.status());
  // Only what may become the marker is extracted, when the listing tells it.
  ProbeSelection selection;
  bool started = false;
  try {
    started = SelectForProbe(archive, selection);
  } catch (const std::exception&) {
    probe.Remove();
    ThrowCode(codes::kUnpackFailed);
  }
  if (!started) {
    probe.Remove();
    ThrowCode(codes::kUnpackFailed);
  }
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
