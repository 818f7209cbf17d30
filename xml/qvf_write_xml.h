// QvFWriteXml: writes records as XML scenario documents (schedule, time
// table, program, playlist) in either vocabulary.
//
// With the compact table (`compact` true) a document is written without any
// line break or indentation between elements; with the debug table it is
// pretty printed.  Every file is UTF-8 with an XML declaration.
//
// Every name it writes comes from its tag table, by index.  An attribute with
// an empty value is not written (see QvFXmlDocument::addAttribute); so an
// absent optional value and an empty text leave the attribute out.
#ifndef QV_XML_QVF_WRITE_XML_H_
#define QV_XML_QVF_WRITE_XML_H_

#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMNode.hpp>

#include <memory>
#include <optional>
#include <string>

#include "model/qvf_records.h"
#include "model/qvf_writer.h"
#include "xml/qvf_tag_table.h"
#include "xml/qvf_xml_document.h"

namespace quorvane::qvformat::format::io::xml {

class QvFWriteXml final : public QvFWriter {
 public:
  // Writes with `tags` and owns it; `compact` decides the layout.  A null
  // table means the compact one.
  QvFWriteXml(std::unique_ptr<QvFTagTable> tags, bool compact);
  // The debug vocabulary, pretty printed, if `debug`; else the compact one.
  explicit QvFWriteXml(bool debug = false);
  QvFWriteXml(QvFWriteXml&&) = default;
  QvFWriteXml& operator=(QvFWriteXml&&) = default;
  ~QvFWriteXml();

  void outputSchedule(std::u16string path, QvFSchedule schedule) override;
  void outputTimeTable(std::u16string path, const QvFTimeTable& timetable) override;
  void outputProgram(std::u16string path, QvFProgram program) override;
  void outputPlaylist(std::u16string path, QvFPlaylist playlist) override;

  const QvFTagTable& tags() const { return *tags_; }
  bool compact() const { return compact_; }

 private:
  using DOMElement = xercesc::DOMElement;
  using DOMNode = xercesc::DOMNode;

  // ---- Shared rules of all four documents (qvf_write_xml.cpp) ----

  // Makes an element of entry `index` and appends it to `parent` (to the
  // document when `parent` is null).
  DOMElement* appendElement(QvFXmlDocument& document, DOMNode* parent, int index) const;
  // Sets attribute entry `index` to `value` (nothing when empty; see above).
  void setAttribute(QvFXmlDocument& document, DOMElement* element, int index,
                    const std::u16string& value) const;
  // Entry 129 for true, entry 130 for false, empty text for an absent value.
  std::u16string boolText(const std::optional<bool>& value) const;
  // Head: id (31), name (32), valid (33); empty texts and an absent valid
  // write nothing.
  void writeHead(QvFXmlDocument& document, DOMElement* element, const QvFRecord& record) const;
  // Region element (entry 0) with the head and all four numbers.
  DOMElement* appendRegion(QvFXmlDocument& document, DOMNode* parent,
                           const QvFRegion& region) const;
  // Background colour element (entry 1) with the head and the "#" colour.
  DOMElement* appendColor(QvFXmlDocument& document, DOMNode* parent,
                          const QvFColor& color) const;
  // Writes the built document to `path` (pretty unless compact).
  void save(QvFXmlDocument& document, const std::u16string& path) const;

  // ---- Time table document (qvf_write_xml.cpp) ----
  void appendTable(QvFXmlDocument& document, DOMNode* parent, const QvFTable& table) const;

  // ---- Program document (qvf_write_xml_program.cpp) ----
  void appendProgramInfo(QvFXmlDocument& document, DOMNode* parent,
                         const QvFProgramInfo& info) const;
  void appendPaneInfo(QvFXmlDocument& document, DOMNode* parent,
                      const QvFPaneInfo& pane_info) const;
  void appendPane(QvFXmlDocument& document, DOMNode* parent, const QvFPane& pane) const;
  void appendPlaylistFile(QvFXmlDocument& document, DOMNode* parent,
                          const QvFPlaylistFile& playlist_file) const;

  // ---- Playlist document (qvf_write_xml_program.cpp) ----
  void appendMovie(QvFXmlDocument& document, DOMNode* parent, const QvFMovie& movie) const;
  void appendImage(QvFXmlDocument& document, DOMNode* parent, const QvFImage& image) const;
  void appendTelop(QvFXmlDocument& document, DOMNode* parent, const QvFTelop& telop) const;
  void appendNone(QvFXmlDocument& document, DOMNode* parent, const QvFNone& none) const;
  // The play time: the long form has time, content_end and timeout, the
  // short form (of an empty item) time alone.
  void appendPlayTime(QvFXmlDocument& document, DOMNode* parent, const QvFPlayTime& play_time,
                      bool long_form) const;
  void appendImageEffect(QvFXmlDocument& document, DOMNode* parent,
                         const QvFImageEffect& effect) const;

  std::unique_ptr<QvFTagTable> tags_;
  bool compact_ = true;
};

}  // namespace quorvane::qvformat::format::io::xml

#endif  // QV_XML_QVF_WRITE_XML_H_
