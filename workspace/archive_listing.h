// The archive tool's technical listing of an archive (7za l -slt), read for
// the probe of workspace/archive_tool.h: which entries must be extracted to
// answer whether QvFormat/QvS.xml stands in the archive.
//
// The listing is a header block naming the archive and then its type, a line
// of ten "-", then a block of "Key = value" lines for each entry: its Path,
// then whether it is a Folder, then the rest.  The tool prints a line feed or
// other control character in a name as "_", so a name cannot forge a line; a
// comment that could is read past: a forged Path line only adds an entry that
// the extraction then does not find, or sends the archive to a whole
// extraction, and an entry is a folder only by the line right behind its own
// Path.
//
// An entry may touch the marker's place when, wherever the tool and the
// settling of names (platform/extracted_names.h) put it, it can stand for the
// folder QvFormat at the top or for anything at or below QvFormat/QvS.xml.
// That is judged generously (more entries than can matter, never fewer):
// names are cut at every "/" and "\" byte, also where code page 932 reads
// "\" as the second byte of a character; empty parts, "." and ".." and a
// drive ("C:") in front of a part are dropped; letters match in any case.
//
// The marker's own entries can be extracted alone when every entry that may
// touch its place is a file or link in the marker's plain form
// ("QvFormat/QvS.xml" or "QvFormat\QvS.xml", in any case), or the folder
// QvFormat itself (made anyway by the entries below it).  Anything else, and
// any archive that is not a zip file (a tar file links entries to each
// other), or a listing without its line of "-", is extracted whole.
#ifndef QV_WORKSPACE_ARCHIVE_LISTING_H_
#define QV_WORKSPACE_ARCHIVE_LISTING_H_

#include <string>
#include <vector>

namespace quorvane::qvconv::converter {

// How much of an archive the probe extracts.
enum class ProbeScope {
  kNothing,  // no entry can become the marker: the answer is no
  kEntries,  // the marker's own entries, by their exact names
  kWhole,    // an archive whose names cannot be judged from its listing
};

struct ProbeSelection {
  ProbeScope scope = ProbeScope::kWhole;
  std::vector<std::u16string> names;  // with kEntries: their names as listed (plain ASCII)
};

// What the probe extracts of the archive whose listing is `listing`, as
// described at the top.
ProbeSelection SelectMarkerEntries(const std::string& listing);

}  // namespace quorvane::qvconv::converter

#endif  // QV_WORKSPACE_ARCHIVE_LISTING_H_
