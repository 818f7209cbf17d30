// The names of an extracted archive, made what 7-Zip on Japanese Windows makes
// of them, and looked up as Windows looks them up.
//
// The archive tool on Linux writes an entry's name as it stands in the archive:
//   - a zip made by Japanese Explorer or Lhaplus stores names in code page 932
//     without the UTF-8 flag, and they reach the disk as those raw bytes;
//   - a zip made by PowerShell 5.1 (and older .NET tools) puts "\" between
//     folders, and "QvFormat\QvS.xml" reaches the disk as one flat file.
// FixExtractedNames renames, inside the extraction folder only:
//   - a name that is not valid UTF-8 is read as code page 932 (a name that is
//     valid UTF-8 stays as it is, whether or not the archive flagged it);
//   - "\" in a name separates folders, which are made as needed;
//   - empty parts, "." and "..", and at the top a drive ("C:") in front of
//     the first part, are dropped, so nothing climbs out; a file whose last
//     part is dropped is called "_", as the tool calls it;
//   - a part that Windows takes for a device ("CON", "aux.txt", "com1")
//     gets "_" in front, as the tool does there ("_CON", "_aux.txt");
//   - a symbolic link, a pipe, a socket or a device is removed: a link never
//     leads out of the folder, nor brings a file from elsewhere in.
// When the new name is taken already, nothing is lost: two folders become
// one, and otherwise the entry that moves takes the first free name of the
// tool's own renaming form ("a.txt" -> "a_1.txt", "a_2.txt", ...), while the
// entry that stood there keeps its name.  A name that would grow too long for
// the file system once decoded keeps its bytes.
//
// The walk goes through open folders only, never follows a link, and keeps
// only a bounded number of folders open, so a tree of any depth is settled
// with a handful of descriptors.  Folders it passes are given their owner's
// read, write and search rights, so that their entries can be renamed.
#ifndef QV_PLATFORM_EXTRACTED_NAMES_H_
#define QV_PLATFORM_EXTRACTED_NAMES_H_

#include <string>
#include <string_view>

namespace quorvane::platform {

// Settles the names below the folder `path` (the folder itself may be a link:
// the user named it).  True if every name could be settled; false also when
// `path` is no folder.
bool FixExtractedNames(std::u16string_view path);

// The same below the open folder `folder` of the platform layer's own.
bool FixExtractedNamesAt(int folder);

// Is `relative` ("QvFormat/QvS.xml", "/" between parts) below the open folder
// `folder` a plain file that opens for reading, reached without following a
// link?  Each part matches a name in any case of its ASCII letters, as NTFS
// finds it; the exact spelling is tried first.
bool HasPlainFileAnyCase(int folder, std::string_view relative);

}  // namespace quorvane::platform

#endif  // QV_PLATFORM_EXTRACTED_NAMES_H_
