// A file that is only ever appended to, one whole piece at a time: the run's
// log.  Each Append is one write with O_APPEND, so pieces of runs that share
// the file never mix within a piece, and a killed run keeps every piece it
// wrote before the kill.
//
// Nothing here may disturb the caller: failures are answered, never raised;
// the file is opened without blocking (a pipe without a reader fails to open,
// a full pipe drops the piece), and a pipe whose reader has gone raises no
// SIGPIPE.
#ifndef QV_PLATFORM_APPEND_ONLY_FILE_H_
#define QV_PLATFORM_APPEND_ONLY_FILE_H_

#include <string_view>

namespace quorvane::platform {

class AppendOnlyFile {
 public:
  AppendOnlyFile() = default;
  ~AppendOnlyFile();
  AppendOnlyFile(const AppendOnlyFile&) = delete;
  AppendOnlyFile& operator=(const AppendOnlyFile&) = delete;

  // Opens `path` for appending, making the file if it is missing.
  bool Open(std::u16string_view path);
  bool IsOpen() const { return fd_ >= 0; }
  // Appends `bytes` with one write; false if they did not all arrive.
  bool Append(std::string_view bytes);
  void Close();

 private:
  int fd_ = -1;
  bool is_pipe_ = false;  // SIGPIPE must be held off around each write
};

}  // namespace quorvane::platform

#endif  // QV_PLATFORM_APPEND_ONLY_FILE_H_
