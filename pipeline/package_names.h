// Identifiers of a package become file and folder names ("QvT/<id>.xml",
// "QvP/<id>/", "QvC/<id><ext>").  A package comes from elsewhere, so an
// identifier is used as a name only when it cannot lead out of its folder.
#ifndef QV_PIPELINE_PACKAGE_NAMES_H_
#define QV_PIPELINE_PACKAGE_NAMES_H_

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace quorvane::qvconv::converter {

// True for a name that stays inside the folder it is joined to: not empty,
// not "." or "..", and without "/", "\" or NUL.
bool IsPlainName(std::u16string_view name);

// The document of a referenced identifier: folder + "/" + id + ".xml".  An
// identifier that is not a plain name names no document of the package: the
// read fails as for a missing document (-300).
std::u16string DocumentPath(const std::u16string& folder, const std::u16string& id);

// A list of the walk: the order of first reference, no repeats.  Adding is
// constant time, so a package of many thousands of items stays linear.
class FirstReferenceList {
 public:
  void AddOnce(const std::u16string& text) {
    if (seen_.insert(text).second) items_.push_back(text);
  }
  const std::vector<std::u16string>& items() const { return items_; }

 private:
  std::vector<std::u16string> items_;
  std::unordered_set<std::u16string> seen_;
};

}  // namespace quorvane::qvconv::converter

#endif  // QV_PIPELINE_PACKAGE_NAMES_H_
