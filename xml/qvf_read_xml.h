// QvFReadXml: reads the XML scenario documents (schedule, time table, program,
// playlist) of either vocabulary into records.
//
// The reader never validates.  It takes what parses and leaves the rest at
// the record's default: a root of another name gives an empty record, an
// element or attribute it does not expect is passed over, a missing one is no
// failure.  It fails only on a file that cannot be parsed (-300) and on a
// colour text with neither "#" nor "0x" (std::out_of_range from ParseColor,
// which goes up to the conversion).
//
// Every name it compares with comes from its tag table, by index.
#ifndef QV_XML_QVF_READ_XML_H_
#define QV_XML_QVF_READ_XML_H_

#include <xercesc/dom/DOMElement.hpp>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "model/qvf_reader.h"
#include "model/qvf_records.h"
#include "xml/qvf_tag_table.h"

namespace quorvane::qvformat::format::io::xml {

class QvFReadXml final : public QvFReader {
 public:
  // Reads with `tags` and owns it.  A null table means the compact one.
  explicit QvFReadXml(std::unique_ptr<QvFTagTable> tags);
  // Reads the debug vocabulary if `debug`, else the compact one.
  explicit QvFReadXml(bool debug = false);
  QvFReadXml(QvFReadXml&&) = default;
  QvFReadXml& operator=(QvFReadXml&&) = default;
  ~QvFReadXml();

  QvFSchedule readSchedule(std::u16string path) override;
  std::unique_ptr<QvFTimeTable> readTimeTable(std::u16string path) override;
  std::unique_ptr<QvFProgram> readProgram(std::u16string path) override;
  QvFPlaylist readPlaylist(std::u16string path) override;

  const QvFTagTable& tags() const { return *tags_; }

 private:
  using DOMElement = xercesc::DOMElement;

  // ---- Shared rules of all four documents (qvf_read_xml.cpp) ----

  // Is the element's name entry `index`, exactly and with regard to case?
  bool isTag(const DOMElement* element, int index) const;
  // Attribute entry `index` of the element; empty when missing.
  std::u16string attribute(const DOMElement* element, int index) const;
  // Entry 129 is true; every other text, the empty one included, is false.
  bool boolValue(const std::u16string& text) const;
  // The boolean of attribute `index`, always present (missing gives false).
  std::optional<bool> boolAttribute(const DOMElement* element, int index) const;
  // The position of `text` among the `count` entries from `first`: 0 for
  // entry `first`, and so on; -1 if it is none of them.
  int wordOffset(const std::u16string& text, int first, int count) const;
  // Head: id (31) and name (32) if not empty, then valid (33) as a boolean.
  void readHead(const DOMElement* element, QvFRecord& record) const;
  // Region element: the head and x, y, width, height as integers.
  void readRegion(const DOMElement* element, QvFRegion& region) const;
  // Background colour element: the head and colour (38) by ParseColor.
  void readColor(const DOMElement* element, QvFColor& color) const;

  // ---- Time table document (qvf_read_xml.cpp) ----
  void readTable(const DOMElement* element, QvFTable& table) const;
  void readTableProgram(const DOMElement* element, QvFTableProgram& row) const;
  void readTableCommand(const DOMElement* element, QvFTableCommand& row) const;

  // ---- Program document (qvf_read_xml_program.cpp) ----
  void readProgramInfo(const DOMElement* element, QvFProgramInfo& info) const;
  void readPaneInfo(const DOMElement* element, QvFPaneInfo& pane_info) const;
  void readPane(const DOMElement* element, QvFPane& pane) const;
  void readPlaylistFile(const DOMElement* element, QvFPlaylistFile& playlist_file) const;

  // ---- Playlist document (qvf_read_xml_program.cpp) ----
  std::shared_ptr<QvFContent> readMovie(const DOMElement* element) const;
  std::shared_ptr<QvFContent> readImage(const DOMElement* element) const;
  std::shared_ptr<QvFContent> readTelop(const DOMElement* element) const;
  std::shared_ptr<QvFContent> readNone(const DOMElement* element) const;
  void readPlayTime(const DOMElement* element, QvFPlayTime& play_time) const;
  void readImageEffect(const DOMElement* element, QvFImageEffect& effect) const;

  std::unique_ptr<QvFTagTable> tags_;
};

}  // namespace quorvane::qvformat::format::io::xml

#endif  // QV_XML_QVF_READ_XML_H_
