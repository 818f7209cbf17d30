// Times the code page 932 codec against glibc's iconv on the same 10 MB text,
// in both directions, and prints the throughput of each and their ratio.
//
//   cmake --build <build> --target cp932_bench && <build>/bench/cp932_bench [MB]
//
// The text is CSV-like: short ASCII fields between runs of kana and kanji,
// about two thirds of the bytes in double-byte characters, all of them
// characters that both converters read alike.  iconv gets its best case: the
// whole text in one call into a buffer that is large enough.
#include <iconv.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "platform/text_codec.h"

namespace {

using Clock = std::chrono::steady_clock;

std::string MakeText(std::size_t size) {
  std::string text;
  text.reserve(size + 64);
  unsigned seed = 1;
  auto next = [&seed] { return seed = seed * 1103515245u + 12345u, (seed >> 16) & 0x7FFF; };
  while (text.size() < size) {
    text += "PG0101,12:34:56,1920,";
    for (int i = 0; i < 12; ++i) {
      // JIS level 1 kanji and kana rows: leads 0x82, 0x83, 0x88 to 0x97.
      const unsigned lead = i % 4 == 0 ? 0x82 + next() % 2 : 0x89 + next() % 14;
      unsigned trail = 0x40 + next() % 188;
      if (trail >= 0x7F) ++trail;
      if (lead == 0x82) trail = 0x9F + next() % 83;  // hiragana
      if (lead == 0x83) trail = 0x40 + next() % 63;  // katakana
      text += static_cast<char>(lead);
      text += static_cast<char>(trail);
    }
    text += "\r\n";
  }
  return text;
}

// Best of a few runs, in seconds.
template <typename F>
double Seconds(F&& f) {
  double best = 1e9;
  for (int run = 0; run < 5; ++run) {
    const auto start = Clock::now();
    f();
    best = std::min(best, std::chrono::duration<double>(Clock::now() - start).count());
  }
  return best;
}

std::string Iconv(iconv_t cd, const char* data, std::size_t size, std::size_t room) {
  std::string out(room, '\0');
  char* in = const_cast<char*>(data);
  std::size_t in_left = size;
  char* dst = out.data();
  std::size_t dst_left = out.size();
  iconv(cd, nullptr, nullptr, nullptr, nullptr);
  if (iconv(cd, &in, &in_left, &dst, &dst_left) == static_cast<std::size_t>(-1)) {
    std::fprintf(stderr, "iconv stopped with %zu bytes left\n", in_left);
    std::exit(1);
  }
  out.resize(out.size() - dst_left);
  return out;
}

void Report(const char* what, std::size_t bytes, double ours, double theirs) {
  const double mb = static_cast<double>(bytes) / 1e6;
  std::printf("%-10s  codec %8.1f MB/s  iconv %8.1f MB/s  codec/iconv time %.3f\n", what,
              mb / ours, mb / theirs, ours / theirs);
}

}  // namespace

int main(int argc, char** argv) {
  using namespace quorvane::platform;
  const std::size_t megabytes = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 10;
  const std::string bytes = MakeText(megabytes * 1000 * 1000);
  iconv_t decoder = iconv_open("UTF-16LE", "CP932");
  iconv_t encoder = iconv_open("CP932", "UTF-16LE");
  if (decoder == reinterpret_cast<iconv_t>(-1) || encoder == reinterpret_cast<iconv_t>(-1)) {
    std::fprintf(stderr, "iconv has no CP932\n");
    return 1;
  }

  std::u16string text;
  std::string utf16le;
  const double decode = Seconds([&] { text = Utf16FromCp932(bytes); });
  const double decode_iconv =
      Seconds([&] { utf16le = Iconv(decoder, bytes.data(), bytes.size(), bytes.size() * 2); });
  if (utf16le.size() != text.size() * 2 ||
      !std::equal(text.begin(), text.end(), reinterpret_cast<const char16_t*>(utf16le.data()))) {
    std::fprintf(stderr, "the two decoders disagree\n");
    return 1;
  }

  std::string encoded;
  std::string encoded_iconv;
  const double encode = Seconds([&] { encoded = Cp932FromUtf16(text); });
  const double encode_iconv = Seconds([&] {
    encoded_iconv = Iconv(encoder, utf16le.data(), utf16le.size(), utf16le.size());
  });
  if (encoded != bytes || encoded_iconv != bytes) {
    std::fprintf(stderr, "the encoders do not give the bytes back\n");
    return 1;
  }
  std::printf("%zu bytes of code page 932, %zu UTF-16 units; best of 5 runs\n", bytes.size(),
              text.size());
  Report("decode", bytes.size(), decode, decode_iconv);
  Report("encode", bytes.size(), encode, encode_iconv);
  iconv_close(decoder);
  iconv_close(encoder);
  return 0;
}
