#include "platform/win32_path.h"

#include <vector>

namespace quorvane::platform {
namespace {

bool IsSeparator(char16_t unit) { return unit == u'/' || unit == u'\\'; }

bool IsReserved(char16_t unit) {
  if (unit < 0x20) return true;
  switch (unit) {
    case u'<': case u'>': case u':': case u'"': case u'|': case u'?': case u'*':
      return true;
    default:
      return false;
  }
}

// The common case in one pass: a path with no "." or ".." name, no empty
// name and no name that ends in a dot (or, the last, in a space) only needs
// its backslashes turned.  False when the full cleanup is needed.
bool CleanQuickly(std::u16string_view path, Win32Path* out) {
  std::u16string& text = out->path;
  text.resize(path.size());
  bool after_separator = true;  // at the start of a name
  for (std::size_t i = 0; i < path.size(); ++i) {
    const char16_t unit = path[i];
    if (unit > u'\\' && unit != u'|') {  // lower case, "_" and all beyond ASCII: plain
      text[i] = unit;
      after_separator = false;
      continue;
    }
    if (IsSeparator(unit)) {
      if (after_separator && i > 0) return false;  // an empty name
      if (i > 0 && path[i - 1] == u'.') return false;
      text[i] = u'/';
      after_separator = true;
      continue;
    }
    if (after_separator && unit == u'.') return false;  // perhaps "." or ".."
    if (IsReserved(unit)) out->nameable = false;
    text[i] = unit;
    after_separator = false;
  }
  // The last name, before a separator that may end the path.
  std::size_t end = path.size();
  if (end > 1 && IsSeparator(path[end - 1])) --end;
  const char16_t last = path[end - 1];
  return last != u'.' && last != u' ';
}

}  // namespace

Win32Path CleanWin32Path(std::u16string_view path) {
  Win32Path out;
  if (path.empty()) return out;
  if (CleanQuickly(path, &out)) return out;
  out.path.clear();
  out.nameable = true;
  const bool absolute = IsSeparator(path.front());
  const bool trailing_separator = IsSeparator(path.back());
  std::u16string& text = out.path;
  text.reserve(path.size());
  // Where each name kept so far begins in `text` (behind its separator).
  std::vector<std::size_t> starts;
  std::size_t leading_parents = 0;  // the ".." a relative path keeps
  std::size_t pos = 0;
  while (pos < path.size()) {
    while (pos < path.size() && IsSeparator(path[pos])) ++pos;
    std::size_t end = pos;
    while (end < path.size() && !IsSeparator(path[end])) ++end;
    if (end == pos) break;
    std::u16string_view name = path.substr(pos, end - pos);
    bool last = true;
    for (std::size_t i = end; i < path.size(); ++i) {
      if (!IsSeparator(path[i])) {
        last = false;
        break;
      }
    }
    pos = end;
    if (name == u".") continue;
    if (name == u"..") {
      if (starts.size() > leading_parents) {
        text.resize(starts.back() == 0 ? 0 : starts.back() - 1);
        starts.pop_back();
      } else if (!absolute) {
        if (!text.empty()) text += u'/';
        starts.push_back(text.size());
        text += u"..";
        ++leading_parents;
      }
      continue;
    }
    if (last) {
      while (!name.empty() && (name.back() == u'.' || name.back() == u' ')) name.remove_suffix(1);
    } else if (name.size() > 1 && name.back() == u'.' && name[name.size() - 2] != u'.') {
      name.remove_suffix(1);
    }
    // What is left of a name of dots and spaces names its folder: it never
    // becomes a step up.
    if (name.empty() || name == u"." || name == u"..") continue;
    for (char16_t unit : name) {
      if (IsReserved(unit)) out.nameable = false;
    }
    if (absolute || !text.empty()) text += u'/';
    starts.push_back(text.size());
    text += name;
  }
  if (text.empty()) {
    text = absolute ? u"/" : u".";
  } else if (trailing_separator) {
    text += u'/';
  }
  return out;
}

}  // namespace quorvane::platform
