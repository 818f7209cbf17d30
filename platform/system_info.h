// What the program asks of its surroundings: the temporary folder, the local
// time, a fresh UUID and the language of the user's messages.  The folder, the
// clock and the locale come from the current Env (env.h).
#ifndef QV_PLATFORM_SYSTEM_INFO_H_
#define QV_PLATFORM_SYSTEM_INFO_H_

#include <ctime>
#include <string>

namespace quorvane::platform {

// $TMPDIR if set and not empty, else "/tmp"; always ending in "/".
std::u16string TempDirectory();

// The local time now, broken down.
std::tm LocalNow();
// A broken-down local time as seconds, as mktime takes it: `time` is
// normalised and its week day and daylight flag are set; -1 when it cannot be
// told.
std::time_t MakeLocalTime(std::tm* time);

// A fresh random UUID in its standard text form: 36 lower-case characters.
std::u16string NewUuid();

// The name of the locale that messages are shown in, by the usual rules:
// LC_ALL, else LC_MESSAGES, else LANG, else "C".
std::string MessageLocaleName();

// Writes text to standard error exactly as given, no line end added (only for
// the XML library's start-up failure).
void WriteStandardError(const std::string& text);

}  // namespace quorvane::platform

#endif  // QV_PLATFORM_SYSTEM_INFO_H_
