// The XML scenario readers: one file read as each of the four documents, in
// the compact vocabulary or (built with QV_FUZZ_DEBUG_VOCABULARY) the debug one.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fuzz_support.h"
#include "xml/qvf_read_xml.h"
#include "xml/qvf_xml_document.h"

#ifndef QV_FUZZ_DEBUG_VOCABULARY
#define QV_FUZZ_DEBUG_VOCABULARY 0
#endif

using quorvane::qvformat::format::io::xml::QvFReadXml;
using quorvane::qvformat::format::io::xml::QvFXmlLibrary;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // One start-up of the library for the whole process, as a long run holds it.
  static QvFXmlLibrary library;
  const std::u16string path = qvfuzz::Widen(qvfuzz::WriteScratch(
      "document.xml", std::string_view(reinterpret_cast<const char*>(data), size)));
  QvFReadXml reader(QV_FUZZ_DEBUG_VOCABULARY != 0);
  qvfuzz::Guarded([&] { (void)reader.readSchedule(path); });
  qvfuzz::Guarded([&] { (void)reader.readTimeTable(path); });
  qvfuzz::Guarded([&] { (void)reader.readProgram(path); });
  qvfuzz::Guarded([&] { (void)reader.readPlaylist(path); });
  return 0;
}
