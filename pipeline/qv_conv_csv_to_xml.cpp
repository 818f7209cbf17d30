#include "pipeline/qv_conv_csv_to_xml.h"

#include <exception>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "base/qv_conv_exception.h"
#include "csv/qv_csv_file.h"
#include "csv/qvf_read_csv.h"
#include "model/qvf_content_files.h"
#include "model/qvf_text.h"
#include "pipeline/pipeline_steps.h"
#include "pipeline/telop_copy.h"
#include "platform/file_system.h"
#include "platform/folders_ahead.h"
#include "workspace/file_tree.h"
#include "workspace/project_path.h"
#include "workspace/run_log.h"
#include "workspace/work_folder.h"
#include "xml/qvf_write_xml.h"
#include "xml/qvf_xml_document.h"

namespace quorvane::qvconv::converter {
namespace {

namespace fmt = qvformat::format;

constexpr const char16_t* kPaneFiles[] = {u"playlist_0.csv", u"playlist_1.csv", u"playlist_2.csv",
                                          u"playlist_3.csv", u"playlist_4.csv", u"playlist_5.csv",
                                          u"playlist_6.csv", u"playlist_7.csv", u"playlist_8.csv"};

bool CanOpenForReading(const std::u16string& path) {
  std::string nothing;
  return platform::ReadFilePrefix(path, 0, &nothing);
}

// The files of a folder whose name begins with `prefix`, exact case.
std::vector<std::u16string> FilesBeginningWith(const std::u16string& folder,
                                               std::u16string_view prefix) {
  std::vector<std::u16string> found;
  for (const std::u16string& path : ListFiles(folder)) {
    if (FileNameOf(path).starts_with(prefix)) found.push_back(path);
  }
  return found;
}

// The extension of a content path as the package names it: from the last
// "." on, A to Z in lower case, ".jpeg" as ".jpg"; empty without a ".".
std::u16string PackageExtension(const std::u16string& path) {
  const auto dot = path.rfind(u'.');
  if (dot == std::u16string::npos) return {};
  std::u16string ext = qvformat::format::AsciiLower(path.substr(dot));
  if (ext == fmt::kLongJpegExtension) ext = fmt::ImageExtension(0);
  return ext;
}

}  // namespace

void QvConvCsvToXml::Run() {
  std::u16string work;
  try {
    // One start of the XML library for the whole run; each document's own
    // start and end are then cheap.
    qvformat::format::io::xml::QvFXmlLibrary xml_library;
    // The checker and then the reader read each file: from disk once.
    io::csv::QvCsvFile::SharedReads shared_reads;
    auto reader = std::make_unique<Reader>();
    auto writer = std::make_unique<Writer>(config.OutputKind() == KindDebug);

    work = MakeWorkFolder(config.WorkRoot(), u"QvConv");
    if (work.empty()) run_log::Cause("cannot create a work folder in", config.WorkRoot());
    if (work.empty()) ThrowCode(codes::kCannotCreate);
    run_log::Step("work in", work);
    const std::u16string format = work + u"/QvFormat";
    MakeFolder(format, ExistingFolder::kFails);
    // The content copy's scratch folder: nothing writes into it, but it is
    // made all the same, and a run that stops leaves it with the work folder.
    MakeFolder(work + u"/Temp", ExistingFolder::kFails);

    Guarded(codes::kReportNotBegun, [&] { createReport(); });
    display_region = config.DisplayRegion();
    setSource(config.InputPath());
    check_only = config.CheckOnly();

    const std::u16string input = config.InputPath();
    ConvertSchedule(*reader, *writer, input, format);
    ConvertTimeTables(*reader, *writer, input, format);
    CheckInterrupts(input);
    ConvertPrograms(*reader, *writer, input, format);
    CopyContents(*reader, input, format);

    // The findings decide about the output here, and only here.
    if (has_result) {
      if (!config.CheckPath().empty()) {
        run_log::Step("write the report", config.CheckPath());
        Guarded(codes::kReportNotWritten, [&] { writeReport(config.CheckPath()); });
      }
      if (has_error) ThrowCode(codes::kErrorsFound);
    }

    if (!config.CheckOnly()) DeliverTree(format, config, config.OutputPath() + u"QvFormat");

    const bool found = has_result;
    writer.reset();
    reader.reset();
    DeleteTree(work);
    if (found) ThrowCode(codes::kWarningsFound);
  } catch (const QvConvException&) {
    // A check operation that failed (-500, thrown by value): the run stops
    // where it is, with no report and no output.
    run_log::Stopped("a check failed unexpectedly");
    if (!work.empty()) DeleteTree(work);
  } catch (const std::exception&) {
    run_log::Stopped("an unexpected failure");
    if (!work.empty()) DeleteTree(work);
  }
}

void QvConvCsvToXml::ConvertSchedule(Reader& reader, Writer& writer, const std::u16string& input,
                                     const std::u16string& format) {
  // Deliberate: a standard failure while the schedule is read or written ends the run with 0.
  Guarded(codes::kFinishedDespiteFailure, [&] {
    const std::vector<std::u16string> schedules = FilesBeginningWith(input, u"Schedule");
    if (schedules.empty()) run_log::Cause("no schedule file in", input);
    if (schedules.size() > 1) run_log::Cause("more than one schedule file in", input);
    if (schedules.empty()) ThrowCode(codes::kProjectFileMissing);
    if (schedules.size() > 1) ThrowCode(codes::kTwoSchedules);
    const std::u16string& path = schedules.front();
    run_log::Step("check", path);
    checkFile(checker::ChSchedule, path);
    run_log::Step("read", path);
    fmt::QvFSchedule schedule = reader.readSchedule(path);
    const std::u16string target = format + u"/QvS.xml";
    if (!check_only) run_log::Step("write", target);
    if (!check_only) writer.outputSchedule(target, schedule);
  });
}

void QvConvCsvToXml::ConvertTimeTables(Reader& reader, Writer& writer, const std::u16string& input,
                                       const std::u16string& format) {
  // Deliberate: a standard failure in a time table ends the run with 0.
  Guarded(codes::kFinishedDespiteFailure, [&] {
    const std::vector<std::u16string> names = reader.index().timetableFiles();
    MakeFolder(format + u"/QvT", ExistingFolder::kFails);
    for (const std::u16string& name : names) {
      const std::u16string path = JoinPath(input, name);
      // A time table that the schedule names and the project lacks is passed over.
      if (!CanOpenForReading(path)) {
        run_log::Loss("time table", path, "named by the schedule cannot be opened: skipped");
        continue;
      }
      const std::u16string id = reader.index().timetableId(name);
      run_log::Step("check", path);
      checkFile(checker::ChTimeTable, path);
      run_log::Step("read", path);
      std::unique_ptr<fmt::QvFTimeTable> table = reader.readTimeTable(path);
      if (!table) ThrowCode(codes::kProjectFileBad);
      if (!id.empty()) table->id.assign(id);
      const std::u16string target = format + u"/QvT/" + id + u".xml";
      if (!check_only) run_log::Step("write", target);
      if (!check_only) writer.outputTimeTable(target, *table);
    }
  });
}

void QvConvCsvToXml::CheckInterrupts(const std::u16string& input) {
  const std::vector<std::u16string> interrupts = FilesBeginningWith(input, u"Interrupt");
  if (interrupts.empty()) return;
  // Interrupt files are never converted: their presence alone is an error.
  run_log::Step("check", interrupts.front());
  addCheckFile(interrupts.front());
  beginCheckData(checker::ChInterrupt, interrupts.front());
  addResult(u"EP0000", true, -1, u"", u"msg.EP0000");
}

void QvConvCsvToXml::ConvertPrograms(Reader& reader, Writer& writer, const std::u16string& input,
                                     const std::u16string& format) {
  // Deliberate: a standard failure in a program, playlist or contents file ends the run with 0.
  Guarded(codes::kFinishedDespiteFailure, [&] {
    const std::vector<std::u16string> folders = reader.index().programFolders();
    MakeFolder(format + u"/QvP", ExistingFolder::kFails);
    std::vector<std::u16string> ids;
    ids.reserve(folders.size());
    for (const std::u16string& f : folders) ids.push_back(reader.index().programId(f));
    // A check-only run writes nothing into the program folders but makes them
    // all the same; it makes them beside the reading, and each one still
    // counts where it would have been made.  A run that stops takes back the
    // folders made ahead of it: the work folder it leaves is as it would be.
    std::optional<platform::FoldersAhead> ahead;
    if (check_only) ahead.emplace(format + u"/QvP", ids);
    std::size_t reached = 0;  // program folders made so far
    try {
      for (std::size_t i = 0; i < folders.size(); ++i) {
        const std::u16string target = format + u"/QvP/" + ids[i];
        if (ahead) {
          run_log::Attempt("make folder", target);
          if (!ahead->Wait(i)) ThrowCode(codes::kCannotCreate);
        } else {
          MakeFolder(target, ExistingFolder::kIsFine);
        }
        reached = i + 1;
        ConvertProgram(reader, writer, JoinPath(input, folders[i]), ids[i], target);
      }
    } catch (...) {
      if (ahead) ahead->Withdraw(reached);
      throw;
    }
  });
}

void QvConvCsvToXml::ConvertProgram(Reader& reader, Writer& writer, const std::u16string& folder,
                                    const std::u16string& id, const std::u16string& target) {
  pane_override = -1;
  const std::u16string csv = JoinPath(folder, u"program.csv");
  run_log::Step("check", csv);
  checkFile(checker::ChProgram, csv);
  run_log::Step("read", csv);
  std::unique_ptr<fmt::QvFProgram> program = reader.readProgram(csv);
  if (!program) ThrowCode(codes::kProjectFileBad);
  const std::u16string program_xml = target + u"/" + id + u".xml";
  if (!check_only) run_log::Step("write", program_xml);
  if (!check_only) writer.outputProgram(program_xml, *program);

  io::csv::QvFCsvProgramEntry& entry = reader.index().programEntry(id);
  const std::vector<std::u16string> playlists = io::csv::QvFCsvIndex::Keys(entry.playlist_ids);
  std::size_t next_item = 0;  // carried across the playlists of the program
  for (const std::u16string& p : playlists) {
    const std::u16string path = JoinPath(folder, p);
    pane_override = PaneOfPlaylist(path);
    run_log::Step("read", path);
    fmt::QvFPlaylist playlist = reader.readPlaylist(path);
    // Each playlist takes exactly the contents files that its own read added.
    const std::vector<std::u16string> contents = entry.contents_paths;
    while (next_item < contents.size()) {
      const std::u16string contents_path = JoinPath(folder, contents[next_item]);
      run_log::Step("check", contents_path);
      checkFile(checker::ChContentsInfo, contents_path);
      run_log::Step("read", contents_path);
      Guarded(codes::kProjectFileBad, [&] { reader.readContents(contents_path, playlist, entry); });
      ++next_item;
    }
    if (!check_only) {
      const std::u16string playlist_xml = target + u"/" + entry.playlistId(p) + u".xml";
      run_log::Step("write", playlist_xml);
      writer.outputPlaylist(playlist_xml, playlist);
    }
  }
}

void QvConvCsvToXml::CopyContents(Reader& reader, const std::u16string& input,
                                  const std::u16string& format) {
  if (check_only) return;
  MakeFolder(format + u"/QvC", ExistingFolder::kFails);
  // Each reference to a content file has its entry; a copy that was made
  // already from the same source to the same target would only make it again.
  std::set<std::pair<std::u16string, std::u16string>> copied;
  Guarded(codes::kCopyFailed, [&] {
    for (const io::csv::QvFCsvContentFile& file : reader.index().content_files) {
      // A path relative to a program folder becomes relative to the project
      // folder, keeping its leading separator.  One that climbs out of the
      // project ("..\..\media\logo.png") is taken from where this join puts
      // it, beside the project, as on Windows.
      std::u16string rel = file.path;
      const auto parent = rel.find(u"..");
      if (parent == 0) {
        rel.erase(0, 2);
      } else if (parent == 1) {
        rel.erase(0, 3);
      }
      const std::u16string src = input + rel;
      const std::u16string ext = PackageExtension(src);
      const std::u16string dst = format + u"/QvC/" + file.id + ext;
      if (!copied.emplace(src, dst).second) continue;
      run_log::Step("copy", src, dst);
      run_log::LossIfMissing("content file", src, "is missing: left out of the package");
      if (ext == fmt::kTelopExtension) {
        CopyTelopAsText(src, dst);
      } else {
        CopyTree(src, dst);
      }
    }
  });
}

int QvConvCsvToXml::PaneOfPlaylist(const std::u16string& path) {
  // The file name behind the last backslash; a "/" is part of the name.
  const auto cut = path.rfind(u'\\');
  const std::u16string name = cut == std::u16string::npos ? std::u16string() : path.substr(cut + 1);
  for (int i = 0; i < 9; ++i) {
    if (name == kPaneFiles[i]) return i;
  }
  return -1;
}

}  // namespace quorvane::qvconv::converter
