// Reading the XML scenario documents: the rules shared by all four formats,
// and the schedule and time table documents.
#include "xml/qvf_read_xml.h"

#include <utility>

#include "model/qvf_text_forms.h"
#include "xml/qvf_xml_document.h"

namespace quorvane::qvformat::format::io::xml {

using xercesc::DOMElement;

QvFReadXml::QvFReadXml(std::unique_ptr<QvFTagTable> tags)
    : tags_(tags ? std::move(tags) : std::make_unique<QvFTagTable>()) {}

QvFReadXml::QvFReadXml(bool debug)
    : tags_(debug ? std::make_unique<QvFDebugTagTable>() : std::make_unique<QvFTagTable>()) {}

QvFReadXml::~QvFReadXml() = default;

// ---- Shared rules -----------------------------------------------------------

bool QvFReadXml::isTag(const DOMElement* element, int index) const {
  if (element == nullptr) return false;
  const XMLCh* name = element->getTagName();
  return name != nullptr && std::u16string_view(name) == (*tags_)[index];
}

std::u16string QvFReadXml::attribute(const DOMElement* element, int index) const {
  return QvFXmlDocument::getAttribute(element, (*tags_)[index]);
}

bool QvFReadXml::boolValue(const std::u16string& text) const {
  return !text.empty() && text == (*tags_)[tag::kTrue];
}

std::optional<bool> QvFReadXml::boolAttribute(const DOMElement* element, int index) const {
  return boolValue(attribute(element, index));
}

int QvFReadXml::wordOffset(const std::u16string& text, int first, int count) const {
  for (int offset = 0; offset < count; ++offset) {
    if (text == (*tags_)[first + offset]) return offset;
  }
  return -1;
}

void QvFReadXml::readHead(const DOMElement* element, QvFRecord& record) const {
  const std::u16string id = attribute(element, tag::kId);
  if (!id.empty()) record.id.assign(id);
  std::u16string name = attribute(element, tag::kName);
  if (!name.empty()) record.name = std::move(name);
  record.valid = boolAttribute(element, tag::kValid);
}

void QvFReadXml::readRegion(const DOMElement* element, QvFRegion& region) const {
  readHead(element, region);
  ParseRegion(attribute(element, tag::kX), attribute(element, tag::kY),
              attribute(element, tag::kWidth), attribute(element, tag::kHeight), region);
}

void QvFReadXml::readColor(const DOMElement* element, QvFColor& color) const {
  readHead(element, color);
  ParseColor(attribute(element, tag::kColor), color);
}

// ---- Schedule document ------------------------------------------------------

QvFSchedule QvFReadXml::readSchedule(std::u16string path) {
  QvFSchedule schedule;
  QvFXmlDocument document;
  document.parse(path);
  const DOMElement* root = document.root();
  if (!isTag(root, tag::kScheduleRoot)) return schedule;

  readHead(root, schedule);
  schedule.version = attribute(root, tag::kVersion);

  // Only the first element child is looked at: the list comes first or not
  // at all.
  const DOMElement* list = FirstChildElement(root);
  if (!isTag(list, tag::kScheduleList)) return schedule;

  QvFScheduleList& schedule_list = schedule.schedule_list;
  readHead(list, schedule_list);
  schedule_list.add = boolAttribute(list, tag::kAdd);
  ForEachChildElement(list, [&](const DOMElement* child) {
    if (!isTag(child, tag::kSchedule)) return;
    QvFScheduleEntry entry;
    readHead(child, entry);
    const std::u16string ref = attribute(child, tag::kRefTimetable);
    if (!ref.empty()) entry.ref_timetable.assign(ref);
    // The default flag takes the table's word for true and any casing of
    // "true"; empty text leaves it alone.
    const std::u16string flag = attribute(child, tag::kDefault);
    if (!flag.empty()) {
      bool is_default = boolValue(flag);
      if (!is_default) ParseDefaultFlag(flag, is_default);
      entry.default_ = is_default;
    }
    ParseDate(attribute(child, tag::kDate), entry.date);
    schedule_list.schedules.push_back(std::move(entry));
  });
  return schedule;
}

// ---- Time table document ----------------------------------------------------

std::unique_ptr<QvFTimeTable> QvFReadXml::readTimeTable(std::u16string path) {
  auto timetable = std::make_unique<QvFTimeTable>();
  QvFXmlDocument document;
  document.parse(path);
  const DOMElement* root = document.root();
  if (!isTag(root, tag::kTimeTableRoot)) return timetable;

  readHead(root, *timetable);
  // Several lists all read into the one table list: their rows add up.
  ForEachChildElement(root, [&](const DOMElement* list) {
    if (!isTag(list, tag::kTableList)) return;
    QvFTableList& table_list = timetable->table_list;
    readHead(list, table_list);
    ForEachChildElement(list, [&](const DOMElement* child) {
      if (!isTag(child, tag::kTable)) return;
      QvFTable table;
      readTable(child, table);
      table_list.tables.push_back(std::move(table));
    });
  });
  return timetable;
}

void QvFReadXml::readTable(const DOMElement* element, QvFTable& table) const {
  readHead(element, table);
  // A later row of a kind replaces an earlier one; a table may so hold both.
  ForEachChildElement(element, [&](const DOMElement* child) {
    if (isTag(child, tag::kTableProgram)) {
      table.program.emplace();
      readTableProgram(child, *table.program);
    } else if (isTag(child, tag::kTableCommand)) {
      table.command.emplace();
      readTableCommand(child, *table.command);
    }
  });
}

void QvFReadXml::readTableProgram(const DOMElement* element, QvFTableProgram& row) const {
  readHead(element, row);
  const std::u16string ref = attribute(element, tag::kRefProgram);
  if (!ref.empty()) row.ref_program.assign(ref);
  row.type = attribute(element, tag::kProgramType);
  ParseTime(attribute(element, tag::kStartTime), row.start_time);
  ParseTime(attribute(element, tag::kEndTime), row.end_time);
}

void QvFReadXml::readTableCommand(const DOMElement* element, QvFTableCommand& row) const {
  readHead(element, row);
  row.type = ParseInt(attribute(element, tag::kCommandType));
  row.target_input = attribute(element, tag::kTargetInput);
  ParseTime(attribute(element, tag::kStartTime), row.start_time);
}

}  // namespace quorvane::qvformat::format::io::xml
