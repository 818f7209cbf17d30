// Shared pieces of the fuzz targets: a scratch folder for the files that the
// readers take by path, and the catch of every outcome that the program
// defines (its exception, by pointer or by value, and the standard ones).
// Anything else -- a crash, a leak, a hang, a sanitizer report -- is a finding.
#ifndef QV_FUZZ_FUZZ_SUPPORT_H_
#define QV_FUZZ_FUZZ_SUPPORT_H_

#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <string>
#include <string_view>

#include "base/qv_conv_exception.h"

namespace qvfuzz {

using quorvane::qvconv::converter::QvConvException;

// One scratch folder per process, below $TMPDIR (or /tmp); made on first use
// and left for the system to clean (a fuzzer process ends by a signal or exit).
inline const std::string& ScratchFolder() {
  static const std::string folder = [] {
    const char* tmp = getenv("TMPDIR");
    std::string pattern =
        std::string(tmp != nullptr && *tmp != '\0' ? tmp : "/tmp") + "/qvfuzz.XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) abort();
    return pattern;
  }();
  return folder;
}

// Writes `bytes` to `name` in the scratch folder and returns its full path.
inline std::string WriteScratch(const std::string& name, std::string_view bytes) {
  const std::string path = ScratchFolder() + "/" + name;
  FILE* file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) abort();
  if (!bytes.empty() && std::fwrite(bytes.data(), 1, bytes.size(), file) != bytes.size()) abort();
  std::fclose(file);
  return path;
}

inline void MakeScratchFolder(const std::string& name) {
  const std::string path = ScratchFolder() + "/" + name;
  mkdir(path.c_str(), 0700);
}

// Runs `body`; the program's own failures and standard exceptions are
// defined outcomes and end quietly.  A failure pointer is freed, so that the
// leak checker reports only what the code under test leaks.
template <typename Body>
void Guarded(Body&& body) {
  try {
    body();
  } catch (QvConvException* failure) {
    delete failure;
  } catch (const QvConvException&) {
  } catch (const std::exception&) {
  }
}

// UTF-16 text of raw bytes, two bytes a unit (little-endian), an odd last
// byte dropped.
inline std::u16string Units(const std::uint8_t* data, std::size_t size) {
  std::u16string text(size / 2, u'\0');
  for (std::size_t i = 0; i < text.size(); ++i) {
    text[i] = static_cast<char16_t>(data[2 * i] | (data[2 * i + 1] << 8));
  }
  return text;
}

inline std::u16string Widen(const std::string& text) {
  return std::u16string(text.begin(), text.end());
}

}  // namespace qvfuzz

#endif  // QV_FUZZ_FUZZ_SUPPORT_H_
