// The reader's table of names and identifiers.
#include "csv/qvf_csv_index.h"

#include <string>

namespace quorvane::qvconv::io::csv {

std::u16string AddNumberedId(QvFNameMap& map, std::u16string_view prefix,
                             const std::u16string& key) {
  auto found = map.find(key);
  if (found != map.end()) return found->second;
  std::string number = std::to_string(map.size() + 1);
  std::u16string id(prefix);
  id.append(number.begin(), number.end());
  map.emplace(key, id);
  return id;
}

std::u16string LookupId(QvFNameMap& map, const std::u16string& key) { return map[key]; }

QvFCsvProgramEntry& QvFCsvIndex::programEntry(const std::u16string& id) {
  std::unique_ptr<QvFCsvProgramEntry>& entry = program_entries[id];
  if (!entry) entry = std::make_unique<QvFCsvProgramEntry>();
  return *entry;
}

QvFCsvProgramEntry* QvFCsvIndex::findProgramEntry(const std::u16string& id) const {
  auto found = program_entries.find(id);
  return found == program_entries.end() ? nullptr : found->second.get();
}

std::vector<std::u16string> QvFCsvIndex::Keys(const QvFNameMap& map) {
  std::vector<std::u16string> keys;
  keys.reserve(map.size());
  for (const auto& [key, value] : map) keys.push_back(key);
  return keys;
}

}  // namespace quorvane::qvconv::io::csv
