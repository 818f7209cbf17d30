#include "workspace/archive_listing.h"

#include <string>
#include <string_view>
#include <vector>

namespace quorvane::qvconv::converter {
namespace {

bool EqualsAsciiNoCase(std::string_view name, std::string_view lower) {
  if (name.size() != lower.size()) return false;
  for (std::size_t i = 0; i < name.size(); ++i) {
    const char c = name[i] >= 'A' && name[i] <= 'Z' ? static_cast<char>(name[i] + 32) : name[i];
    if (c != lower[i]) return false;
  }
  return true;
}

// The parts of a name between "/" and "\", without the parts that the tool
// or the settling of names drops (empty, ".", "..") and without a drive
// ("C:") in front of any part.
std::vector<std::string_view> NameParts(std::string_view name) {
  std::vector<std::string_view> parts;
  std::size_t start = 0;
  for (std::size_t i = 0; i <= name.size(); ++i) {
    if (i < name.size() && name[i] != '/' && name[i] != '\\') continue;
    std::string_view part = name.substr(start, i - start);
    start = i + 1;
    if (part.size() >= 2 && part[1] == ':' &&
        ((part[0] | 0x20) >= 'a' && (part[0] | 0x20) <= 'z')) {
      part.remove_prefix(2);
    }
    if (part.empty() || part == "." || part == "..") continue;
    parts.push_back(part);
  }
  return parts;
}

// Can the entry, wherever the tool and the settling of names put it, stand
// for the folder QvFormat at the top or for anything at or below the
// marker's place?  Every entry with a part "QvFormat" that is its last part
// or is followed somewhere by a part "QvS.xml" counts, in any case: more
// than can matter, never less.  Names that are not UTF-8 are cut at every
// "\" byte, also where code page 932 reads it as the second byte of a
// character, which again gives more parts, never fewer.
bool MayTouchMarker(std::string_view name) {
  const std::vector<std::string_view> parts = NameParts(name);
  for (std::size_t i = 0; i < parts.size(); ++i) {
    if (!EqualsAsciiNoCase(parts[i], "qvformat")) continue;
    if (i + 1 == parts.size()) return true;
    for (std::size_t j = i + 1; j < parts.size(); ++j) {
      if (EqualsAsciiNoCase(parts[j], "qvs.xml")) return true;
    }
  }
  return false;
}

// The marker's plain form: "QvFormat/QvS.xml" or "QvFormat\QvS.xml", in any
// case of its letters.
bool IsPlainMarkerName(std::string_view name) {
  return name.size() == 16 && (name[8] == '/' || name[8] == '\\') &&
         EqualsAsciiNoCase(name.substr(0, 8), "qvformat") &&
         EqualsAsciiNoCase(name.substr(9), "qvs.xml");
}

}  // namespace

ProbeSelection SelectMarkerEntries(const std::string& listing) {
  ProbeSelection whole;
  std::size_t at = 0;
  bool zip = false, typed = false, entries = false;
  std::string path;
  bool folder = false, have_path = false, after_path = false;
  ProbeSelection chosen;
  chosen.scope = ProbeScope::kNothing;
  // Judges the entry whose block has been read.
  const auto judge = [&]() {
    if (!have_path || !MayTouchMarker(path)) return true;
    if (folder && EqualsAsciiNoCase(path, "qvformat")) return true;
    if (folder || !IsPlainMarkerName(path)) return false;
    chosen.scope = ProbeScope::kEntries;
    chosen.names.emplace_back(path.begin(), path.end());
    return true;
  };
  while (at < listing.size()) {
    std::size_t end = listing.find('\n', at);
    if (end == std::string::npos) end = listing.size();
    std::string_view line(listing.data() + at, end - at);
    at = end + 1;
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    if (!entries) {
      if (!typed && line.starts_with("Type = ")) typed = true, zip = line == "Type = zip";
      if (line == "----------") entries = true;
      continue;
    }
    if (line.starts_with("Path = ")) {
      if (!judge()) return whole;
      path.assign(line.substr(7));
      have_path = true;
      folder = false;
      after_path = true;
      continue;
    }
    if (after_path && line == "Folder = +") folder = true;
    after_path = false;
  }
  if (!zip || !entries || !judge()) return whole;
  return chosen;
}

}  // namespace quorvane::qvconv::converter
