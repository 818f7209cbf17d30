// Telop files: the checker's reading of a telop that a contents file names
// (its parameter line and the length of its lines), and the recoding of the
// same bytes to UTF-8 as the conversion copies them.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "checker/qv_checker.h"
#include "fuzz_support.h"
#include "pipeline/telop_copy.h"
#include "workspace/text_conversion.h"

namespace checker = quorvane::qvconv::checker;
namespace converter = quorvane::qvconv::converter;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const std::string telop = qvfuzz::WriteScratch("message.tlp", bytes);
  // A contents file of a telop item whose content path is the file above.
  const std::string contents = qvfuzz::WriteScratch(
      "contents_1_001.csv",
      telop + "\r\n4,00:00:20,,false,0x000000,0,,0,0,0,100,0,0,0,-1,-1,-1,-1,11\r\n");

  {
    checker::QvChecker check;
    qvfuzz::Guarded([&] {
      check.createReport();
      check.setSource(qvfuzz::Widen(qvfuzz::ScratchFolder()));
      check.display_region = {0, 0, 3840, 2160};
      check.checkFile(checker::ChContentsInfo, qvfuzz::Widen(contents));
    });
  }

  qvfuzz::Guarded([&] {
    converter::CopyTelopAsText(qvfuzz::Widen(telop),
                               qvfuzz::Widen(qvfuzz::ScratchFolder() + "/copy.tlp"));
  });
  for (int mark = 0; mark <= 3; ++mark) {
    qvfuzz::Guarded([&] { (void)converter::TelopAsUtf8(bytes, mark); });
  }
  return 0;
}
