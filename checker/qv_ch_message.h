// QvChMessage: the built-in catalogue of the check report's messages.
//
// Every message has a key of the form "msg." plus a check id and a text in two
// languages, English and Japanese; there is no message file.  The language
// follows the user's locale (an English locale, "C" or "POSIX" gives English,
// every other locale Japanese) and is read again for every message.
//
// The texts of "msg.CI0100" to "msg.CI0121" hold the placeholder "$str$", which
// the extension checks replace; the catalogue itself never substitutes.
#ifndef QV_CHECKER_QV_CH_MESSAGE_H_
#define QV_CHECKER_QV_CH_MESSAGE_H_

#include <map>
#include <string>
#include <string_view>

namespace quorvane::qvconv::checker {

class QvChMessage {
 public:
  // Builds the catalogue in the language of the user's locale.
  QvChMessage();
  // Builds the catalogue for a locale name given by the caller.
  explicit QvChMessage(std::string_view locale_name);

  // The text of `key`; std::out_of_range for a key the catalogue lacks.
  std::u16string lookUp(const std::u16string& key) const;

  // The text of `key` in the language of the user's locale, from a catalogue
  // made for this call.  Empty text for an empty key or a key the catalogue
  // lacks (the callers then show the text of "msg.CH0000").  Never throws.
  static std::u16string getMessage(const std::u16string& key);

  // Does this locale name get the English texts?  The language part of the
  // name ("en" of "en_GB.UTF-8") must be "en", or the name is the C locale,
  // or it spells out "English".
  static bool IsEnglishLocale(std::string_view locale_name);

  std::u16string language;  // the locale name in use
  std::map<std::u16string, std::u16string> messages;

 private:
  void fill(std::string_view locale_name);
};

}  // namespace quorvane::qvconv::checker

#endif  // QV_CHECKER_QV_CH_MESSAGE_H_
