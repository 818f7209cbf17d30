// The file extensions of content items, by the kind and type of their record:
// the one list that the readers, the writers and the conversions name the
// content files by.  Extensions are lower case and begin with ".".
#ifndef QV_MODEL_QVF_CONTENT_FILES_H_
#define QV_MODEL_QVF_CONTENT_FILES_H_

#include <cstdint>
#include <string_view>

namespace quorvane::qvformat::format {

// A movie of type 0 and a telop of type 0.
inline constexpr std::u16string_view kMovieExtension = u".mp4";
inline constexpr std::u16string_view kTelopExtension = u".tlp";

// Images by type: 0 JPEG, 1 PNG, 2 GIF, 3 BMP (4, any other, has none).  A
// JPEG file may also end in ".jpeg"; it is named ".jpg".
inline constexpr std::u16string_view kImageExtensions[] = {u".jpg", u".png", u".gif", u".bmp"};
inline constexpr std::u16string_view kLongJpegExtension = u".jpeg";

// The extension of an image of `type`; empty for a type without one.
inline std::u16string_view ImageExtension(std::int32_t type) {
  return type >= 0 && type < 4 ? kImageExtensions[type] : std::u16string_view();
}

}  // namespace quorvane::qvformat::format

#endif  // QV_MODEL_QVF_CONTENT_FILES_H_
