#include "workspace/run_log.h"

#include <cstdio>
#include <ctime>
#include <exception>
#include <memory>

#include "base/qv_conv_exception.h"
#include "platform/append_only_file.h"
#include "platform/file_system.h"
#include "platform/process.h"
#include "platform/system_info.h"

namespace quorvane::qvconv::converter::run_log {
namespace {

struct Log {
  platform::AppendOnlyFile file;
  std::string prefix;  // "[<process id>] "
  std::string line;    // the line being made, kept for its room
  std::string step_verb;
  std::u16string step_path;
  std::string cause;    // the exit line's text, when set
  std::string stopped;  // why a run ends early with 0
};

// The one log of the process; null without a log, and after it failed.
Log* g_log = nullptr;

// Appends a path between quotes, in UTF-8.  A control character (a line end
// in a file name) is written as \xNN, so that one event stays one line; a
// lone surrogate becomes U+FFFD.
void AppendQuoted(std::string& out, std::u16string_view path) {
  out += '"';
  for (std::size_t i = 0; i < path.size(); ++i) {
    char32_t c = path[i];
    if (c < 0x20 || c == 0x7f) {
      char escaped[5];
      std::snprintf(escaped, sizeof escaped, "\\x%02x", static_cast<unsigned>(c));
      out += escaped;
      continue;
    }
    if (c >= 0xD800 && c <= 0xDBFF && i + 1 < path.size() && path[i + 1] >= 0xDC00 &&
        path[i + 1] <= 0xDFFF) {
      c = 0x10000 + ((c - 0xD800) << 10) + (path[++i] - 0xDC00);
    } else if (c >= 0xD800 && c <= 0xDFFF) {
      c = 0xFFFD;
    }
    if (c < 0x80) {
      out += static_cast<char>(c);
    } else if (c < 0x800) {
      out += static_cast<char>(0xC0 | (c >> 6));
      out += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
      out += static_cast<char>(0xE0 | (c >> 12));
      out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
      out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
      out += static_cast<char>(0xF0 | (c >> 18));
      out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
      out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
      out += static_cast<char>(0x80 | (c & 0x3F));
    }
  }
  out += '"';
}

std::string Quoted(std::u16string_view path) {
  std::string text;
  AppendQuoted(text, path);
  return text;
}

// The line being made, begun with the prefix.
std::string& NewLine() {
  g_log->line.assign(g_log->prefix);
  return g_log->line;
}

// Appends the line made.  A log that cannot take it is let go for the rest
// of the run; nothing of it reaches the caller.
void WriteLine() {
  g_log->line += '\n';
  if (!g_log->file.Append(g_log->line)) Close();
}

void Remember(std::string_view verb, std::u16string_view path) {
  g_log->step_verb.assign(verb);
  g_log->step_path.assign(path);
}

// Runs `body` only with a log, and keeps every failure of its own (memory)
// away from the run.
template <typename Body>
void Logged(Body body) noexcept {
  if (g_log == nullptr) return;
  try {
    body();
  } catch (...) {
    Close();
  }
}

std::string Timestamp() {
  const std::tm now = platform::LocalNow();
  char text[80];  // room for any int in each field
  std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", now.tm_year + 1900,
                now.tm_mon + 1, now.tm_mday, now.tm_hour, now.tm_min, now.tm_sec);
  return text;
}

// What a failure code says about the step that it ended.
std::string_view FailureText(std::int32_t code) {
  switch (code) {
    case codes::kBadCommandLine: return "bad command line";
    case codes::kCannotCreate: return "cannot create";
    case codes::kCopyFailed: return "cannot copy";
    case codes::kCsvIoFailed: return "reading or writing failed unexpectedly:";
    case codes::kProjectFileMissing: return "cannot open";
    case codes::kProjectFileBad: return "cannot understand";
    case codes::kTwoSchedules: return "more than one schedule file:";
    case codes::kParameterFileFailed: return "the parameter file failed unexpectedly:";
    case codes::kParameterFileBad: return "the parameter file is not right:";
    case codes::kXmlUnreadable: return "cannot read the XML document";
    case codes::kPackFailed: return "cannot pack (the archive tool did not start):";
    case codes::kUnpackFailed: return "cannot unpack (the archive tool did not start):";
    case codes::kReportNotBegun: return "cannot begin the check report:";
    case codes::kReportNotWritten: return "cannot write the check report:";
    case codes::kBadKind: return "no conversion for this pair of input and output forms:";
    case codes::kNoCheckRow: return "the check table has no row for a key, at";
    default: return "unknown failure at";
  }
}

std::string ExitText(std::int32_t code, bool by_failure) {
  const std::string path = Quoted(g_log->step_path);
  const std::string step =
      g_log->step_verb.empty() ? std::string("the start") : g_log->step_verb + " " + path;
  switch (code) {
    case codes::kErrorsFound:
      return "the check found errors: nothing was delivered";
    case codes::kWarningsFound:
      return "the check found warnings and no error";
    case codes::kFinished:
      if (g_log->stopped.empty() && !by_failure) return "finished";
      return "stopped early, " +
             (g_log->stopped.empty() ? std::string("an unexpected failure") : g_log->stopped) +
             ", at " + step + ": nothing was delivered";
    default:
      break;
  }
  if (!g_log->cause.empty()) return g_log->cause;
  std::string text(FailureText(code));
  if (!g_log->step_verb.empty()) text += " " + path;
  return text;
}

}  // namespace

void Open(const std::u16string& path, const std::vector<std::u16string>& arguments) {
  if (path.empty()) return;
  Close();
  try {
    auto log = std::make_unique<Log>();
    if (!log->file.Open(path)) return;
    log->prefix = "[" + std::to_string(platform::CurrentProcessId()) + "] ";
    g_log = log.release();
    std::string& line = NewLine();
    line += "start " + Timestamp() + ":";
    for (const std::u16string& argument : arguments) {
      line += ' ';
      AppendQuoted(line, argument);
    }
    WriteLine();
  } catch (const std::exception&) {
    Close();
  }
}

bool IsOpen() { return g_log != nullptr; }

void Close() {
  delete g_log;
  g_log = nullptr;
}

void Step(std::string_view verb, std::u16string_view path) {
  Logged([&] {
    Remember(verb, path);
    std::string& line = NewLine();
    line += verb;
    line += ' ';
    AppendQuoted(line, path);
    WriteLine();
  });
}

void Step(std::string_view verb, std::u16string_view from, std::u16string_view to) {
  Logged([&] {
    Remember(verb, from);
    std::string& line = NewLine();
    line += verb;
    line += ' ';
    AppendQuoted(line, from);
    line += " to ";
    AppendQuoted(line, to);
    WriteLine();
  });
}

void Attempt(std::string_view verb, std::u16string_view path) {
  Logged([&] { Remember(verb, path); });
}

void Loss(std::string_view what, std::u16string_view path, std::string_view why) {
  Logged([&] {
    std::string& line = NewLine();
    line += what;
    line += ' ';
    AppendQuoted(line, path);
    line += ' ';
    line += why;
    WriteLine();
  });
}

void LossIfMissing(std::string_view what, std::u16string_view path, std::string_view why) {
  Logged([&] {
    if (!platform::IsRegularFile(path)) Loss(what, path, why);
  });
}

void LineTooLong(std::size_t number) {
  Logged([&] {
    std::string& line = NewLine();
    line += "line " + std::to_string(number) + " of ";
    AppendQuoted(line, g_log->step_path);
    line += " is longer than 1,023 bytes: the read of the file ends before it";
    WriteLine();
  });
}

void Cause(std::string_view text, std::u16string_view path) {
  Logged([&] {
    g_log->cause = text;
    if (!path.empty()) g_log->cause += " " + Quoted(path);
  });
}

void Stopped(std::string_view why) {
  Logged([&] { g_log->stopped = why; });
}

void Finish(std::int32_t code, bool by_failure) {
  Logged([&] {
    const std::string text = ExitText(code, by_failure);
    NewLine() += "exit " + std::to_string(code) + ": " + text;
    WriteLine();
  });
  Close();
}

}  // namespace quorvane::qvconv::converter::run_log
