// The conversion parameter file, read into a run configuration.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "app/run/parameter_file.h"
#include "fuzz_support.h"

using quorvane::qvconv::converter::QvConvRunConfig;
using quorvane::qvconv::converter::ReadParameterFile;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::u16string path = qvfuzz::Widen(qvfuzz::WriteScratch(
      "parameter.xml", std::string_view(reinterpret_cast<const char*>(data), size)));
  QvConvRunConfig config;
  qvfuzz::Guarded([&] { ReadParameterFile(path, &config); });
  return 0;
}
