// SystemPath: a path in the form that one system call takes, whatever its
// length.  The system refuses paths of PATH_MAX (4,096) bytes and more; such
// a path is walked folder by folder and handed over as
// "/proc/self/fd/<n>/<last part>", where <n> is the folder that holds the last
// part, kept open while the holder lives.  The descriptor is inheritable, so a
// child started meanwhile (the archive tool) can use the short form too.
#ifndef QV_PLATFORM_SYSTEM_PATH_H_
#define QV_PLATFORM_SYSTEM_PATH_H_

#include <string>
#include <string_view>

namespace quorvane::platform {

class SystemPath {
 public:
  explicit SystemPath(std::u16string_view path);
  // From UTF-8 bytes, for text that is already native.
  explicit SystemPath(std::string native);
  ~SystemPath();
  SystemPath(const SystemPath&) = delete;
  SystemPath& operator=(const SystemPath&) = delete;
  SystemPath(SystemPath&& other) noexcept;

  const char* c_str() const { return text_.c_str(); }
  const std::string& str() const { return text_; }

 private:
  void Shorten();

  std::string text_;
  int folder_ = -1;
};

}  // namespace quorvane::platform

#endif  // QV_PLATFORM_SYSTEM_PATH_H_
