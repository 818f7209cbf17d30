// The records of a scenario: one schedule, time tables, programs and
// playlists, and the small values they are made of.  Every format reads into
// these records and writes from them.
//
// Records are plain structures with public fields.  Their constructors build
// them empty (with the defaults below); a reader fills them field by field.
// Documents refer to each other only through QvFId values, never by pointer.
//
// Representation:
//   - text is std::u16string (UTF-16 code units), int is std::int32_t;
//   - a time is a broken-down std::tm, set to the local time of construction;
//   - an optional value is std::optional<bool> / std::optional<std::int32_t>,
//     so that absent stays apart from false;
//   - owned records and lists of owned records are held by value (a copy is
//     deep), an optional owned record as std::optional;
//   - the items of a playlist are shared: contents holds std::shared_ptr to
//     items that belong to the playlist as a whole, so a copy of a QvFPlaylist
//     shares its items with its source.
#ifndef QV_MODEL_QVF_RECORDS_H_
#define QV_MODEL_QVF_RECORDS_H_

#include <cstdint>
#include <ctime>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorvane::qvformat::format {

// The local time now, broken down, from the clock of the current Env
// (platform/env.h; tests fix the time there).  Every time field of a record
// starts with it.
std::tm QvFLocalNow();

// The kind of an identifier, read from the prefix of its text.
enum QvFIdKind : std::int32_t {
  kIdSchedule = 0,   // "SC"
  kIdTimeTable = 1,  // "TM"
  kIdProgram = 2,    // "PG"
  kIdPlaylist = 3,   // "PL"
  kIdContent = 4,    // "CT"
};

// The reference of one scenario object.
struct QvFId {
  std::u16string text;
  std::int32_t kind = kIdProgram;

  QvFId() = default;
  explicit QvFId(std::u16string_view identifier) { assign(identifier); }

  // Stores the text, then sets kind from its prefix ("SC", "TM", "PG", "PL",
  // "CT", tested in this order, exact case).  A text with none of them
  // leaves kind as it was.
  void assign(std::u16string_view identifier);
  QvFId& operator=(std::u16string_view identifier) {
    assign(identifier);
    return *this;
  }
};

// The head of every record.
struct QvFRecord {
  QvFId id;
  std::u16string name;
  std::optional<bool> valid;
};

struct QvFRegion : QvFRecord {
  std::int32_t x = 0;
  std::int32_t y = 0;
  std::int32_t width = 0;
  std::int32_t height = 0;
};

// Four components 0 to 255; an a of 255 is opaque.
struct QvFColor : QvFRecord {
  std::int32_t a = 255;
  std::int32_t r = 0;
  std::int32_t g = 0;
  std::int32_t b = 0;
};

// ---- Schedule document ----------------------------------------------------

struct QvFScheduleEntry : QvFRecord {
  // The entry is the default schedule ("default" in the documents; the word
  // is reserved in C++).
  bool default_ = false;
  QvFId ref_timetable;
  std::tm date = QvFLocalNow();
};

struct QvFScheduleList : QvFRecord {
  std::optional<bool> add;
  std::vector<QvFScheduleEntry> schedules;
};

struct QvFSchedule : QvFRecord {
  std::u16string version;
  QvFScheduleList schedule_list;
};

// ---- Time table document --------------------------------------------------

struct QvFTableProgram : QvFRecord {
  std::tm start_time = QvFLocalNow();
  std::tm end_time = QvFLocalNow();
  std::u16string type;
  QvFId ref_program;
};

struct QvFTableCommand : QvFRecord {
  std::int32_t type = 0;
  std::tm start_time = QvFLocalNow();
  std::u16string target_input;
};

// One row of a time table: a program or a command.  Where both are set,
// program wins in every writer.
struct QvFTable : QvFRecord {
  std::optional<QvFTableProgram> program;
  std::optional<QvFTableCommand> command;
};

struct QvFTableList : QvFRecord {
  std::vector<QvFTable> tables;
};

struct QvFTimeTable : QvFRecord {
  QvFTableList table_list;
};

// ---- Program document -----------------------------------------------------

// Pane types of a playlist reference.
enum QvFPaneType : std::int32_t {
  kPaneContents = 0,
  kPaneTelop = 1,
  kPaneSound = 2,
  kPanePip = 3,
};

struct QvFPlaylistFile : QvFRecord {
  QvFId ref_playlist;
  std::optional<std::int32_t> type;  // QvFPaneType
  std::optional<bool> mute = false;
};

struct QvFPane : QvFRecord {
  QvFRegion region;
  QvFPlaylistFile playlist_file;
};

struct QvFPaneInfo : QvFRecord {
  std::vector<QvFPane> panes;
};

// The frame of a program.
struct QvFProgramInfo : QvFRecord {
  std::tm program_time = QvFLocalNow();
  std::optional<bool> layout_lock = false;
  QvFRegion region;
  QvFColor background_color;
  // A playlist reference of the program itself; only the XML reader fills it.
  QvFPlaylistFile playlist_file;
};

struct QvFProgram : QvFRecord {
  QvFProgramInfo program_info;
  QvFPaneInfo pane_info;
};

// ---- Playlist document ----------------------------------------------------

// The tell of a concrete content record.  3, 4, 5, 7, 8 and 9 have none.
enum QvFContentKind : std::int32_t {
  kContentMovie = 0,
  kContentImage = 1,
  kContentNone = 2,
  kContentTelop = 6,
};

enum QvFContentEnd : std::int32_t {
  kEndLoop = 0,
  kEndStopLast = 1,
  kEndStopBackgroundColor = 2,
  kEndNext = 3,
};

enum QvFTimeout : std::int32_t {
  kTimeoutStop = 0,
  kTimeoutContinue = 1,
};

struct QvFPlayTime : QvFRecord {
  std::tm time = QvFLocalNow();  // only hours, minutes and seconds count
  std::int32_t content_end = kEndLoop;
  std::int32_t timeout = kTimeoutStop;
};

// Effects 1 to 18 (18 is random), directions 0 to 19 (19 is random).
enum QvFEffectType : std::int32_t {
  kEffectNone = 0,
  kEffectWipe = 1,
  kEffectStretch = 2,
  kEffectSlideIn = 3,
  kEffectSlideOut = 4,
  kEffectBrind = 5,
  kEffectPush = 6,
  kEffectTurnPage = 7,
  kEffectWind = 8,
  kEffectWheel = 9,
  kEffectRollWipe = 10,
  kEffectWave = 11,
  kEffectFade = 12,
  kEffectBlock = 13,
  kEffectCircle = 14,
  kEffectMozaic = 15,
  kEffectWhirlpool = 16,
  kEffectPlus = 17,
  kEffectRandom = 18,
};

enum QvFDirection : std::int32_t {
  kDirectionNone = 0,
  kDirectionUp = 1,
  kDirectionUpRight = 2,
  kDirectionRight = 3,
  kDirectionDownRight = 4,
  kDirectionDown = 5,
  kDirectionDownLeft = 6,
  kDirectionLeft = 7,
  kDirectionUpLeft = 8,
  kDirectionClockwise = 9,
  kDirectionCounterClockwise = 10,
  kDirectionRightLeft = 11,
  kDirectionUpDown = 12,
  kDirectionOutward = 13,
  kDirectionInward = 14,
  kDirectionClockOut = 15,
  kDirectionCounterClockOut = 16,
  kDirectionClockIn = 17,
  kDirectionCounterClockIn = 18,
  kDirectionRandom = 19,
};

struct QvFImageEffect : QvFRecord {
  std::optional<std::int32_t> type = 0;  // QvFEffectType
  std::int32_t direction = 0;            // QvFDirection
  std::optional<bool> via_backgroundcolor = false;
  std::int32_t t = 0;
};

// The common beginning of the four content records.  kind tells the concrete
// record; it is set by the constructor of each and never changed, and readers
// and writers dispatch on it (see AsMovie and its siblings below).  Items are
// made with std::make_shared of the concrete record, so that the shared
// pointer destroys them as what they are.
struct QvFContent : QvFRecord {
  std::int32_t kind;
  QvFPlayTime play_time;

 protected:
  explicit QvFContent(std::int32_t content_kind) : kind(content_kind) {}
};

struct QvFMovie : QvFContent {
  QvFMovie() : QvFContent(kContentMovie) {}
  QvFId ref_content;
  std::int32_t type = 0;    // 0 mp4, 1 any other
  std::int32_t aspect = 0;  // 0 to 3
  std::int32_t volume = 0;
  QvFColor background_color;
  std::optional<QvFRegion> region;
};

struct QvFImage : QvFContent {
  QvFImage() : QvFContent(kContentImage) {}
  QvFId ref_content;
  std::int32_t type = 0;    // 0 jpeg, 1 png, 2 gif, 3 bmp, 4 any other
  std::int32_t aspect = 0;  // 0 to 3
  QvFColor background_color;
  std::optional<QvFRegion> region;
  std::optional<QvFImageEffect> image_effect;
};

struct QvFTelop : QvFContent {
  QvFTelop() : QvFContent(kContentTelop) {}
  QvFId ref_content;
  std::int32_t type = 0;    // 0 tlp, 1 any other
  std::int32_t aspect = 0;  // 0 to 3
  std::optional<QvFRegion> region;
};

// An item that shows no file.
struct QvFNone : QvFContent {
  QvFNone() : QvFContent(kContentNone) {}
  QvFColor background_color;
  bool has_background_color = false;
};

// The concrete record of an item, or null when kind says it is another one.
inline QvFMovie* AsMovie(QvFContent* item) {
  return item && item->kind == kContentMovie ? static_cast<QvFMovie*>(item) : nullptr;
}
inline QvFImage* AsImage(QvFContent* item) {
  return item && item->kind == kContentImage ? static_cast<QvFImage*>(item) : nullptr;
}
inline QvFTelop* AsTelop(QvFContent* item) {
  return item && item->kind == kContentTelop ? static_cast<QvFTelop*>(item) : nullptr;
}
inline QvFNone* AsNone(QvFContent* item) {
  return item && item->kind == kContentNone ? static_cast<QvFNone*>(item) : nullptr;
}
inline const QvFMovie* AsMovie(const QvFContent* item) {
  return item && item->kind == kContentMovie ? static_cast<const QvFMovie*>(item) : nullptr;
}
inline const QvFImage* AsImage(const QvFContent* item) {
  return item && item->kind == kContentImage ? static_cast<const QvFImage*>(item) : nullptr;
}
inline const QvFTelop* AsTelop(const QvFContent* item) {
  return item && item->kind == kContentTelop ? static_cast<const QvFTelop*>(item) : nullptr;
}
inline const QvFNone* AsNone(const QvFContent* item) {
  return item && item->kind == kContentNone ? static_cast<const QvFNone*>(item) : nullptr;
}

struct QvFPlaylist : QvFRecord {
  std::vector<std::shared_ptr<QvFContent>> contents;
};

}  // namespace quorvane::qvformat::format

#endif  // QV_MODEL_QVF_RECORDS_H_
