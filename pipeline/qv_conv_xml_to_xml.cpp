#include "pipeline/qv_conv_xml_to_xml.h"

#include <exception>
#include <memory>
#include <vector>

#include "base/qv_conv_exception.h"
#include "model/qvf_content_files.h"
#include "pipeline/package_names.h"
#include "pipeline/pipeline_steps.h"
#include "platform/file_system.h"
#include "workspace/file_tree.h"
#include "workspace/run_log.h"
#include "workspace/work_folder.h"
#include "xml/qvf_read_xml.h"
#include "xml/qvf_write_xml.h"
#include "xml/qvf_xml_document.h"

namespace quorvane::qvconv::converter {
namespace {

namespace fmt = qvformat::format;
using qvformat::format::io::xml::QvFReadXml;
using qvformat::format::io::xml::QvFWriteXml;

// The file name of an item's content: its reference and the extension of its
// kind and type; none for a blank item or a type without an extension.
std::u16string ContentFileName(const fmt::QvFContent& item) {
  if (const fmt::QvFMovie* movie = fmt::AsMovie(&item)) {
    return movie->ref_content.text + std::u16string(movie->type == 0 ? fmt::kMovieExtension : u"");
  }
  if (const fmt::QvFImage* image = fmt::AsImage(&item)) {
    return image->ref_content.text + std::u16string(fmt::ImageExtension(image->type));
  }
  if (const fmt::QvFTelop* telop = fmt::AsTelop(&item)) {
    return telop->ref_content.text + std::u16string(telop->type == 0 ? fmt::kTelopExtension : u"");
  }
  return {};
}

}  // namespace

void QvConvXmlToXml::Run() {
  Guarded(codes::kUnknownFailure, [&] { Rewrite(); });
}

void QvConvXmlToXml::Rewrite() {
  qvformat::format::io::xml::QvFXmlLibrary xml_library;
  auto reader = std::make_unique<QvFReadXml>(config.InputKind() == KindDebug);
  auto writer = std::make_unique<QvFWriteXml>(config.OutputKind() == KindDebug);

  const std::u16string work = MakeWorkFolder(config.WorkRoot(), u"QvConv");
  if (work.empty()) run_log::Cause("cannot create a work folder in", config.WorkRoot());
  if (work.empty()) ThrowCode(codes::kCannotCreate);
  run_log::Step("work in", work);
  const std::u16string format = work + u"/QvFormat";
  MakeFolder(format, ExistingFolder::kIsFine);
  const std::u16string input = config.InputPath();

  FirstReferenceList timetables;
  {
    run_log::Step("read", input + u"QvS.xml");
    fmt::QvFSchedule schedule = reader->readSchedule(input + u"QvS.xml");
    run_log::Step("write", format + u"/QvS.xml");
    writer->outputSchedule(format + u"/QvS.xml", schedule);
    for (const fmt::QvFScheduleEntry& entry : schedule.schedule_list.schedules) {
      timetables.AddOnce(entry.ref_timetable.text);
    }
  }

  MakeFolder(format + u"/QvT", ExistingFolder::kIsFine);
  FirstReferenceList programs;
  for (const std::u16string& id : timetables.items()) {
    const std::u16string table_xml = DocumentPath(input + u"QvT", id);
    run_log::Step("read", table_xml);
    std::unique_ptr<fmt::QvFTimeTable> table = reader->readTimeTable(table_xml);
    run_log::Step("write", format + u"/QvT/" + id + u".xml");
    writer->outputTimeTable(format + u"/QvT/" + id + u".xml", *table);
    for (const fmt::QvFTable& row : table->table_list.tables) {
      if (row.program) programs.AddOnce(row.program->ref_program.text);
    }
  }

  MakeFolder(format + u"/QvP", ExistingFolder::kIsFine);
  FirstReferenceList contents;
  for (const std::u16string& id : programs.items()) {
    if (!IsPlainName(id)) ThrowCode(codes::kXmlUnreadable);
    const std::u16string source = input + u"QvP/" + id;
    const std::u16string target = format + u"/QvP/" + id;
    MakeFolder(target, ExistingFolder::kIsFine);
    const std::u16string program_xml = DocumentPath(source, id);
    run_log::Step("read", program_xml);
    std::unique_ptr<fmt::QvFProgram> program = reader->readProgram(program_xml);
    run_log::Step("write", target + u"/" + id + u".xml");
    writer->outputProgram(target + u"/" + id + u".xml", *program);
    for (const fmt::QvFPane& pane : program->pane_info.panes) {
      const std::u16string& ref = pane.playlist_file.ref_playlist.text;
      const std::u16string playlist_xml = DocumentPath(source, ref);
      run_log::Step("read", playlist_xml);
      fmt::QvFPlaylist playlist = reader->readPlaylist(playlist_xml);
      run_log::Step("write", target + u"/" + ref + u".xml");
      writer->outputPlaylist(target + u"/" + ref + u".xml", playlist);
      for (const auto& item : playlist.contents) {
        if (!item || fmt::AsNone(item.get())) continue;
        contents.AddOnce(ContentFileName(*item));
      }
    }
  }

  MakeFolder(format + u"/QvC", ExistingFolder::kIsFine);
  for (const std::u16string& name : contents.items()) {
    // A name that could lead out of the tree is left out, like a missing file,
    // and so is anything but a plain file (a link is never followed).
    const std::u16string from = input + u"/QvC/" + name;
    if (!IsPlainName(name) || !platform::IsRegularFile(from)) {
      run_log::Loss("content file", from, "is missing: left out of the package");
      continue;
    }
    run_log::Step("copy", from, format + u"/QvC/" + name);
    Guarded(codes::kCopyFailed, [&] { CopyTree(from, format + u"/QvC/" + name); });
  }

  DeliverTree(format, config, config.OutputPath() + u"QvFormat");

  writer.reset();
  reader.reset();
  DeleteTree(work);
}

}  // namespace quorvane::qvconv::converter
