// Writing the XML scenario documents: the rules shared by all four formats,
// and the schedule and time table documents.
#include "xml/qvf_write_xml.h"

#include <utility>

#include "model/qvf_text_forms.h"

namespace quorvane::qvformat::format::io::xml {

using xercesc::DOMElement;
using xercesc::DOMNode;

QvFWriteXml::QvFWriteXml(std::unique_ptr<QvFTagTable> tags, bool compact)
    : tags_(tags ? std::move(tags) : std::make_unique<QvFTagTable>()), compact_(compact) {}

QvFWriteXml::QvFWriteXml(bool debug)
    : tags_(debug ? std::make_unique<QvFDebugTagTable>() : std::make_unique<QvFTagTable>()),
      compact_(!debug) {}

QvFWriteXml::~QvFWriteXml() = default;

// ---- Shared rules -----------------------------------------------------------

DOMElement* QvFWriteXml::appendElement(QvFXmlDocument& document, DOMNode* parent,
                                       int index) const {
  return document.appendElement(parent, (*tags_)[index]);
}

void QvFWriteXml::setAttribute(QvFXmlDocument& document, DOMElement* element, int index,
                               const std::u16string& value) const {
  document.addAttribute(element, (*tags_)[index], value);
}

std::u16string QvFWriteXml::boolText(const std::optional<bool>& value) const {
  if (!value.has_value()) return {};
  return *value ? (*tags_)[tag::kTrue] : (*tags_)[tag::kFalse];
}

void QvFWriteXml::writeHead(QvFXmlDocument& document, DOMElement* element,
                            const QvFRecord& record) const {
  setAttribute(document, element, tag::kId, record.id.text);
  setAttribute(document, element, tag::kName, record.name);
  setAttribute(document, element, tag::kValid, boolText(record.valid));
}

DOMElement* QvFWriteXml::appendRegion(QvFXmlDocument& document, DOMNode* parent,
                                      const QvFRegion& region) const {
  DOMElement* element = appendElement(document, parent, tag::kRegion);
  writeHead(document, element, region);
  setAttribute(document, element, tag::kX, FormatInt(region.x));
  setAttribute(document, element, tag::kY, FormatInt(region.y));
  setAttribute(document, element, tag::kWidth, FormatInt(region.width));
  setAttribute(document, element, tag::kHeight, FormatInt(region.height));
  return element;
}

DOMElement* QvFWriteXml::appendColor(QvFXmlDocument& document, DOMNode* parent,
                                     const QvFColor& color) const {
  DOMElement* element = appendElement(document, parent, tag::kBackgroundColor);
  writeHead(document, element, color);
  setAttribute(document, element, tag::kColor, FormatColorHash(color));
  return element;
}

void QvFWriteXml::save(QvFXmlDocument& document, const std::u16string& path) const {
  document.serialize(path, !compact_);
}

// ---- Schedule document ------------------------------------------------------

void QvFWriteXml::outputSchedule(std::u16string path, QvFSchedule schedule) {
  QvFXmlDocument document;
  document.createDocument();
  DOMElement* root = appendElement(document, nullptr, tag::kScheduleRoot);
  writeHead(document, root, schedule);
  setAttribute(document, root, tag::kVersion, schedule.version);

  // The list stands in the document even when it has no entries.
  const QvFScheduleList& schedule_list = schedule.schedule_list;
  DOMElement* list = appendElement(document, root, tag::kScheduleList);
  writeHead(document, list, schedule_list);
  setAttribute(document, list, tag::kAdd, boolText(schedule_list.add));

  for (const QvFScheduleEntry& entry : schedule_list.schedules) {
    DOMElement* element = appendElement(document, list, tag::kSchedule);
    writeHead(document, element, entry);
    setAttribute(document, element, tag::kDefault, boolText(entry.default_));
    setAttribute(document, element, tag::kRefTimetable, entry.ref_timetable.text);
    setAttribute(document, element, tag::kDate, FormatDate(entry.date));
  }
  save(document, path);
}

// ---- Time table document ----------------------------------------------------

void QvFWriteXml::outputTimeTable(std::u16string path, const QvFTimeTable& timetable) {
  QvFXmlDocument document;
  document.createDocument();
  DOMElement* root = appendElement(document, nullptr, tag::kTimeTableRoot);
  writeHead(document, root, timetable);

  DOMElement* list = appendElement(document, root, tag::kTableList);
  writeHead(document, list, timetable.table_list);
  for (const QvFTable& table : timetable.table_list.tables) appendTable(document, list, table);
  save(document, path);
}

void QvFWriteXml::appendTable(QvFXmlDocument& document, DOMNode* parent,
                              const QvFTable& table) const {
  DOMElement* element = appendElement(document, parent, tag::kTable);
  writeHead(document, element, table);
  // A row holds one of the two; where both are set, the program wins.
  if (table.program.has_value()) {
    const QvFTableProgram& row = *table.program;
    DOMElement* program = appendElement(document, element, tag::kTableProgram);
    writeHead(document, program, row);
    setAttribute(document, program, tag::kRefProgram, row.ref_program.text);
    setAttribute(document, program, tag::kProgramType, row.type);
    setAttribute(document, program, tag::kStartTime, FormatTime(row.start_time));
    setAttribute(document, program, tag::kEndTime, FormatTime(row.end_time));
  } else if (table.command.has_value()) {
    const QvFTableCommand& row = *table.command;
    DOMElement* command = appendElement(document, element, tag::kTableCommand);
    writeHead(document, command, row);
    setAttribute(document, command, tag::kCommandType, FormatInt(row.type));
    // The compact vocabulary writes the target input even empty.
    setAttribute(document, command, tag::kTargetInput, row.target_input);
    setAttribute(document, command, tag::kStartTime, FormatTime(row.start_time));
  }
}

}  // namespace quorvane::qvformat::format::io::xml
