// QvConvException: the one exception type of the program, every exit code,
// and Guarded, the one way a step turns a standard exception into its code.
//
// It is allocated with new and thrown as a pointer; nobody deletes it, since
// the process ends right after the catch with the code as its exit code.  A
// check operation throws the code -500 by value instead, and the two are not
// interchangeable: the catch clauses differ.
//
// The base std::exception is private, so that a handler for std::exception
// never takes a QvConvException thrown by value for a standard failure.
#ifndef QV_BASE_QV_CONV_EXCEPTION_H_
#define QV_BASE_QV_CONV_EXCEPTION_H_

#include <cstdint>
#include <exception>
#include <utility>

namespace quorvane::qvconv::converter {

class QvConvException : private std::exception {
 public:
  QvConvException() = default;
  explicit QvConvException(std::int32_t code) : code_(code) {}

  std::int32_t code() const { return code_; }

 private:
  std::int32_t code_ = 0;
};

// Throws a new QvConvException with `code` as a pointer.
[[noreturn]] inline void ThrowCode(std::int32_t code) { throw new QvConvException(code); }

// Every exit code of the program.
namespace codes {
inline constexpr std::int32_t kErrorsFound = 2;
inline constexpr std::int32_t kWarningsFound = 1;
inline constexpr std::int32_t kFinished = 0;
// A failure inside a conversion step that the format ends with 0, as if the
// run had finished: nothing is delivered and no report is written.
inline constexpr std::int32_t kFinishedDespiteFailure = 0;
inline constexpr std::int32_t kBadCommandLine = -1;
inline constexpr std::int32_t kCannotCreate = -3;
inline constexpr std::int32_t kCopyFailed = -4;
inline constexpr std::int32_t kCsvIoFailed = -100;
inline constexpr std::int32_t kProjectFileMissing = -101;
inline constexpr std::int32_t kProjectFileBad = -102;
inline constexpr std::int32_t kTwoSchedules = -103;
inline constexpr std::int32_t kParameterFileFailed = -200;
inline constexpr std::int32_t kParameterFileBad = -201;
inline constexpr std::int32_t kXmlUnreadable = -300;
inline constexpr std::int32_t kPackFailed = -401;
inline constexpr std::int32_t kUnpackFailed = -402;
inline constexpr std::int32_t kCheckFailed = -500;
inline constexpr std::int32_t kReportNotBegun = -501;
inline constexpr std::int32_t kReportNotWritten = -502;
inline constexpr std::int32_t kBadKind = -997;
inline constexpr std::int32_t kNoCheckRow = -998;
inline constexpr std::int32_t kUnknownFailure = -999;
}  // namespace codes

// Runs `step` and gives back what it returns.  A QvConvException (a pointer,
// or the check's by value) passes untouched; a standard exception becomes a
// QvConvException pointer with `code`; anything else passes too.
template <class Step>
decltype(auto) Guarded(std::int32_t code, Step&& step) {
  try {
    return std::forward<Step>(step)();
  } catch (const std::exception&) {
    ThrowCode(code);
  }
}

}  // namespace quorvane::qvconv::converter

#endif  // QV_BASE_QV_CONV_EXCEPTION_H_
