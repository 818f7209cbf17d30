// How Windows treats the name of one file or folder on NTFS, where the
// projects are made: which names it can hold at all, how it compares names
// without regard to case, and the order in which a listing gives them.
//
// Case: NTFS upper-cases each 16-bit unit of a name through one fixed table
// and compares the results; two names are the same name when they agree so.
// The table here is the simple (one unit to one unit) upper-case mapping of
// Unicode for the scripts that names are written in: Latin with all its
// extensions, IPA, Greek, Cyrillic, Armenian, Georgian, Coptic, Glagolitic,
// roman numerals, circled and fullwidth letters.  A letter outside ASCII never
// becomes an ASCII one (dotless i stays itself), and one unit never becomes
// two (sharp s stays itself).  Pure functions on text; no system calls.
#ifndef QV_PLATFORM_NTFS_NAMES_H_
#define QV_PLATFORM_NTFS_NAMES_H_

#include <string>
#include <string_view>

namespace quorvane::platform {

// One unit upper-cased as NTFS does it.
char16_t NtfsUpper(char16_t unit);
std::u16string NtfsUpper(std::u16string_view name);

// The same name to NTFS: equal after upper-casing.
bool NtfsSameName(std::u16string_view a, std::u16string_view b);

// Could a file on Windows bear this name?  Not when it is empty, "." or "..",
// holds one of \ / < > : " | ? * or a unit below 0x20, or ends in a dot or a
// space (Windows drops those when it opens a path).  So "Schedule.csv:x", what
// a copy of a downloaded file leaves beside it, names no file.
bool IsWindowsName(std::u16string_view name);

}  // namespace quorvane::platform

#endif  // QV_PLATFORM_NTFS_NAMES_H_
