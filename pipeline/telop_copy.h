// The copy of a telop file into a package: whatever it was written in, the
// copy is UTF-8 without a byte order mark.
#ifndef QV_PIPELINE_TELOP_COPY_H_
#define QV_PIPELINE_TELOP_COPY_H_

#include <string>
#include <string_view>

namespace quorvane::qvconv::converter {

// The UTF-8 bytes of a telop file's bytes, by its byte order mark:
//  - UTF-16 little-endian with its mark: the mark is dropped, and so is every
//    line feed (the lines follow each other; a carriage return stays).
//    Reading stops at the first unit that is not a character of the basic
//    plane (a surrogate).
//  - anything else, a UTF-8 mark and UTF-16 big-endian included: code page 932.
std::string TelopAsUtf8(std::string_view bytes, int byte_order_mark);

// Copies the telop file `source` to `destination` as UTF-8.  Throws
// std::runtime_error when the source cannot be opened for its mark.  A source
// that cannot be read or a target that cannot be made is passed over (the
// run's log tells of it), and a write that fails (a full disk) is not looked
// at: the copy may then be short.
void CopyTelopAsText(const std::u16string& source, const std::u16string& destination);

}  // namespace quorvane::qvconv::converter

#endif  // QV_PIPELINE_TELOP_COPY_H_
