// The names of the XML scenario documents, in their two vocabularies.
//
// A reader and a writer never spell an element, attribute or value name: they
// take it from a tag table by index, so one reader and one writer serve both
// the compact vocabulary (QvFTagTable) and the debug one (QvFDebugTagTable).
// Names repeat between entries ("tp" is nine of them), so an entry means only
// what the place that uses it says; nothing may look an entry up by its text.
//
// Entries marked "no use" below are kept for their indexes; nothing reads them.
#ifndef QV_XML_QVF_TAG_TABLE_H_
#define QV_XML_QVF_TAG_TABLE_H_

#include <array>
#include <cstddef>
#include <string>

namespace quorvane::qvformat::format::io::xml {

// The indexes of the table.  The comment tells where the document formats use
// an entry; the debug name follows the compact one.
namespace tag {
enum Index : int {
  // Elements.
  kRegion = 0,             // re / region
  kBackgroundColor = 1,    // bc / background_color
  kScheduleRoot = 2,       // qv / quorvane_data
  kScheduleList = 3,       // sl / schedule_list
  kSchedule = 4,           // s / schedule
  kTimeTableRoot = 5,      // tt / timetable
  kTableList = 6,          // tl / table_list
  kTable = 7,              // tb / table
  kTableProgram = 8,       // pg / program (program row of a table)
  kTableCommand = 9,       // co / command (command row of a table)
  kProgramRoot = 10,       // pgp / program
  kProgramInfo = 11,       // pgi / program_info
  kPaneInfo = 12,          // pai / pane_info
  kPane = 13,              // pa / pane
  kPaneColor = 14,         // no use
  kPaneMute = 15,          // no use
  kPlaylistFile = 16,      // plf / playlist_file
  kLayout = 17,            // no use
  kPlaylistRoot = 18,      // pl / playlist
  kMovie = 19,             // m / movie
  kImage = 20,             // i / image
  kNone = 21,              // n / none
  kOthers = 22,            // o / others: skipped by the reader
  kCommand = 23,           // c / command: skipped by the reader
  kUrl = 24,               // u / url: skipped by the reader
  kTelop = 25,             // t / telop
  kAudio = 26,             // a / audio: skipped by the reader
  kPip = 27,               // p / pip: skipped by the reader
  kConditionalContent = 28,  // cc / conditional_content: skipped by the reader
  kPlayTime = 29,          // pt / play_time
  kImageEffect = 30,       // ie / image_effect
  // Attributes of every element with a head.
  kId = 31,                // i / id
  kName = 32,              // n / name
  kValid = 33,             // v / valid
  // Attributes of the region and the background colour.
  kX = 34,
  kY = 35,
  kWidth = 36,
  kHeight = 37,
  kColor = 38,
  // Schedule document.
  kVersion = 39,           // of the root
  kAdd = 40,               // of the list
  kDefault = 41,           // of an entry
  kRefTimetable = 42,      // of an entry
  kDate = 43,              // of an entry
  // Time table document.
  kRefProgram = 44,        // of a program row
  kStartTime = 45,         // of a program row and a command row
  kEndTime = 46,           // of a program row
  kProgramType = 47,       // of a program row
  kCommandType = 48,       // of a command row
  kTargetInput = 49,       // of a command row
  // Program document.
  kProgramTime = 50,       // of the program information
  kUnusedType51 = 51,      // no use
  kUnusedAspect52 = 52,    // no use
  kRefPlaylist = 53,       // of a playlist reference
  kLayoutLock = 54,        // of the program information
  kPaneType = 55,          // of a playlist reference
  kMute = 56,              // of a playlist reference
  // Playlist document.
  kRefContent = 57,        // of movie, image and telop
  kUnusedVolume58 = 58,    // no use
  kAspect = 59,            // of movie, image and telop
  kMovieType = 60,
  kVolume = 61,            // of a movie
  kImageType = 62,
  kTelopType = 63,
  kTime = 64,              // of a play time
  kContentEnd = 65,        // of a play time
  kTimeout = 66,           // of a play time
  kEffectType = 67,        // of an image effect
  kDirection = 68,         // of an image effect
  kViaBackgroundColor = 69,  // of an image effect
  kEffectTime = 70,        // t / t, of an image effect
  // Values.
  kPaneTypeFirst = 71,     // 71..74: pane types 0..3
  kContentEndFirst = 75,   // 75..78: content_end 0..3
  kMovieTypeMp4 = 79,      // movie type 0
  kTelopTypeTlp = 80,      // telop type 0
  kImageTypeFirst = 81,    // 81..84: image types 0..3
  kAspectFirst = 85,       // 85..88: the numerals "0".."3"
  kTimeoutFirst = 89,      // 89..90: timeout 0..1
  kEffectFirst = 91,       // 91..108: effects 1..18
  kDirectionFirst = 109,   // 109..128: directions 0..19
  kTrue = 129,
  kFalse = 130,
  kYes = 131,              // no use
  kNo = 132,               // no use
};
}  // namespace tag

inline constexpr std::size_t kTagCount = 133;

// The compact vocabulary.  Used through a pointer to QvFTagTable whichever
// vocabulary it holds; entries are read by index and never change after
// construction.
class QvFTagTable {
 public:
  QvFTagTable();
  QvFTagTable(const QvFTagTable&) = default;
  QvFTagTable& operator=(const QvFTagTable&) = default;
  virtual ~QvFTagTable() = default;

  // The entry at `index` (0 to 132); empty text for an index out of range.
  const std::u16string& operator[](int index) const;
  const std::u16string& at(int index) const { return (*this)[index]; }

 protected:
  std::array<std::u16string, kTagCount> tags_;
};

// The debug vocabulary: the compact table with 122 entries overwritten by the
// readable names.  Entries 70 and 79 to 88 read the same in both.
class QvFDebugTagTable : public QvFTagTable {
 public:
  QvFDebugTagTable();
};

}  // namespace quorvane::qvformat::format::io::xml

#endif  // QV_XML_QVF_TAG_TABLE_H_
