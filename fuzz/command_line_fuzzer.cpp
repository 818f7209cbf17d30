// The command line: arguments (separated by NUL bytes in the input) through
// the option loop into a run configuration, the display region and option
// values included.  Parsing must never end the process: only the dispatch may.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "app/run/run_control.h"
#include "fuzz_support.h"
#include "platform/file_system.h"

namespace converter = quorvane::qvconv::converter;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  // A parameter file is read by the configuration; its own target covers it,
  // and a path from here could name a device that never ends.
  if (input.find("-param") != std::string_view::npos) return 0;

  auto table = std::make_unique<converter::ArgumentTable>();
  table->slots[0] = u"qvConvApp";
  std::size_t slot = 1;
  std::size_t start = 0;
  while (start <= input.size()) {
    std::size_t end = input.find('\0', start);
    if (end == std::string_view::npos) end = input.size();
    if (slot == converter::kArgumentSlots) {
      table->overflow = true;
      break;
    }
    table->slots[slot++] = quorvane::platform::PathFromNative(input.substr(start, end - start));
    start = end + 1;
  }
  qvfuzz::Guarded([&] { (void)converter::ParseCommandLine(*table); });

  // The option value on its own, with the region form behind it.
  const std::u16string whole = quorvane::platform::PathFromNative(input);
  qvfuzz::Guarded([&] {
    const std::u16string value = converter::OptionValue(u"-td", u"-td" + whole);
    converter::QvConvRunConfig config;
    converter::SetDisplayRegion(value, &config);
  });
  return 0;
}
