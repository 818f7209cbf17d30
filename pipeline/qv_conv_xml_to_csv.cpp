#include "pipeline/qv_conv_xml_to_csv.h"

#include <exception>
#include <memory>
#include <vector>

#include "base/qv_conv_exception.h"
#include "csv/qvf_write_csv.h"
#include "pipeline/package_names.h"
#include "pipeline/pipeline_steps.h"
#include "platform/file_system.h"
#include "workspace/file_tree.h"
#include "workspace/run_log.h"
#include "workspace/work_folder.h"
#include "xml/qvf_read_xml.h"
#include "xml/qvf_xml_document.h"

namespace quorvane::qvconv::converter {
namespace {

namespace fmt = qvformat::format;
using io::csv::QvFWriteCsv;
using qvformat::format::io::xml::QvFReadXml;

}  // namespace

void QvConvXmlToCsv::Run() {
  // Deliberate: a standard failure anywhere in the way back ends the run with 0.
  Guarded(codes::kFinishedDespiteFailure, [&] {
    std::u16string work;
    Convert(work);
  });
}

void QvConvXmlToCsv::Convert(std::u16string& work) {
  qvformat::format::io::xml::QvFXmlLibrary xml_library;
  auto reader = std::make_unique<QvFReadXml>(config.InputKind() == KindDebug);
  // Built first, so that its stamp is the start of the run.
  auto writer = std::make_unique<QvFWriteCsv>();

  work = MakeWorkFolder(config.ConversionRoot(), u"QvConv");
  if (work.empty()) run_log::Cause("cannot create a work folder in", config.ConversionRoot());
  if (work.empty()) ThrowCode(codes::kCannotCreate);
  run_log::Step("work in", work);
  const std::u16string out = work + u"/QvFormat";
  MakeFolder(out, ExistingFolder::kFails);
  const std::u16string src = config.InputPath() + u"/QvFormat";

  // The schedule names the time tables ...
  FirstReferenceList timetables;
  {
    const std::u16string schedule_xml = src + u"/QvS.xml";
    run_log::Step("read", schedule_xml);
    fmt::QvFSchedule schedule = reader->readSchedule(schedule_xml);
    writer->outputSchedule(out + u"/" + writer->scheduleFileName(), schedule);
    for (const fmt::QvFScheduleEntry& entry : schedule.schedule_list.schedules) {
      timetables.AddOnce(entry.ref_timetable.text);
    }
  }

  // ... the time tables name the programs ...
  FirstReferenceList programs;
  for (const std::u16string& id : timetables.items()) {
    const std::u16string table_xml = DocumentPath(src + u"/QvT", id);
    run_log::Step("read", table_xml);
    std::unique_ptr<fmt::QvFTimeTable> table = reader->readTimeTable(table_xml);
    writer->outputTimeTable(out + u"/" + writer->timetableFileName(id), *table);
    for (const fmt::QvFTable& row : table->table_list.tables) {
      // A command row names no program.
      if (row.program && !row.program->ref_program.text.empty()) {
        programs.AddOnce(row.program->ref_program.text);
      }
    }
  }

  // ... and the programs name their playlists, whose writing collects the
  // content files.
  io::csv::QvFNameMap content_names;
  for (const std::u16string& id : programs.items()) {
    if (!IsPlainName(id)) run_log::Cause("no program document can be named", id);
    if (!IsPlainName(id)) ThrowCode(codes::kXmlUnreadable);
    const std::u16string source = src + u"/QvP/" + id;
    const std::u16string target = out + u"/" + writer->programFolderName(id);
    MakeFolder(target, ExistingFolder::kIsFine);
    MakeFolder(target + u"/" + QvFWriteCsv::informationFolderName(), ExistingFolder::kIsFine);
    const std::u16string program_xml = DocumentPath(source, id);
    run_log::Step("read", program_xml);
    std::unique_ptr<fmt::QvFProgram> program = reader->readProgram(program_xml);
    writer->outputProgram(target + u"/" + QvFWriteCsv::programFileName(), *program);

    // Panes fill the numbers 1 to 5 in their order; 0, 6 and 7 stay empty,
    // and a sixth pane is dropped.
    std::size_t next_pane = 0;
    const auto& panes = program->pane_info.panes;
    for (std::int32_t i = 0; i <= 7; ++i) {
      if (i >= 1 && i <= 5 && next_pane < panes.size()) {
        const std::u16string& ref = panes[next_pane++].playlist_file.ref_playlist.text;
        const std::u16string playlist_xml = DocumentPath(source, ref);
        run_log::Step("read", playlist_xml);
        fmt::QvFPlaylist playlist = reader->readPlaylist(playlist_xml);
        writer->outputPlaylistFile(i, target, &playlist, content_names);
      } else {
        writer->outputPlaylistFile(i, target, nullptr, content_names);
      }
    }
  }

  // Content files come last: their names are known only now.
  MakeFolder(out + u"/" + QvFWriteCsv::contentsFolderName(), ExistingFolder::kIsFine);
  for (const auto& [id, name] : content_names) {
    // A name that could lead out of the package or the project is left out,
    // and so is anything but a plain file (a link is never followed).
    const std::u16string from = src + u"/QvC/" + name;
    if (!IsPlainName(name) || !platform::IsRegularFile(from)) {
      run_log::Loss("content file", from, "is missing from the package: left out of the project");
      continue;
    }
    const std::u16string to = out + u"/" + QvFWriteCsv::contentsFolderName() + u"/" + name;
    run_log::Step("copy", from, to);
    Guarded(codes::kCopyFailed, [&] { CopyTree(from, to); });
  }

  DeliverTree(out, config, config.OutputPath());
  // Only an opened package is ours to remove; a folder that the caller named
  // as input stays.
  if (!config.OutputArchive() && config.Unpackage()) DeleteTree(config.InputPath());

  writer.reset();
  reader.reset();
  if (!work.empty()) DeleteTree(work);
}

}  // namespace quorvane::qvconv::converter
