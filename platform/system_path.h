// SystemPath: a path in the form that one system call takes.
//
// A path of the program (UTF-16) is first cleaned as Windows cleans it
// (win32_path.h): "\" separates like "/", "." and ".." are resolved on the
// text, trailing dots and spaces go.  A path that holds a name Windows cannot
// hold is not nameable: the file calls treat it as naming nothing.  Looking a
// path up without regard to case is the caller's next step when the path as
// it stands names nothing (case_lookup.h); Reset then points this at the path
// found.
//
// Length: the system refuses paths of PATH_MAX (4,096) bytes and more; such a
// path is walked folder by folder and handed over as
// "/proc/self/fd/<n>/<last part>", where <n> is the folder that holds the last
// part, kept open while the holder lives.  The descriptor is inheritable, so a
// child started meanwhile (the archive tool) can use the short form too.
#ifndef QV_PLATFORM_SYSTEM_PATH_H_
#define QV_PLATFORM_SYSTEM_PATH_H_

#include <climits>
#include <cstddef>
#include <string>
#include <string_view>

namespace quorvane::platform {

// Paths shorter than this many bytes go to the system as they are; longer
// ones are handed over in their short form.
inline constexpr std::size_t kLongPath = PATH_MAX - 256;

class SystemPath {
 public:
  // A path of the program, cleaned as Windows cleans it.
  explicit SystemPath(std::u16string_view path);
  // UTF-8 text that is already a system path, taken as it stands.
  explicit SystemPath(std::string native);
  ~SystemPath();
  SystemPath(const SystemPath&) = delete;
  SystemPath& operator=(const SystemPath&) = delete;
  SystemPath(SystemPath&& other) noexcept;

  // False when a name of the path is one that Windows cannot hold.
  bool nameable() const { return nameable_; }
  // The whole path in UTF-8, before any shortening.
  const std::string& native() const { return native_; }
  // Points at another system path (one found by a lookup).
  void Reset(std::string native);

  const char* c_str() const { return str().c_str(); }
  const std::string& str() const { return folder_ >= 0 ? short_ : native_; }

 private:
  void Shorten();
  void Release();

  std::string native_;
  std::string short_;  // the short form, when the path is too long
  bool nameable_ = true;
  int folder_ = -1;
};

}  // namespace quorvane::platform

#endif  // QV_PLATFORM_SYSTEM_PATH_H_
