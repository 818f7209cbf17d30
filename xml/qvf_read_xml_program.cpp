// Reading the program and playlist documents.
//
// Both readers walk the tree the writer makes but take elements in any order
// and pass over everything they do not expect.  Enumerated words are looked up
// in the tag table by position; a word the table does not hold gives the
// fallback value that each field names below.
#include <memory>
#include <utility>

#include "model/qvf_text_forms.h"
#include "xml/qvf_read_xml.h"
#include "xml/qvf_xml_document.h"

namespace quorvane::qvformat::format::io::xml {

using xercesc::DOMElement;

namespace {

// Counts of the enumerated words in the table.
constexpr int kPaneTypeCount = 4;
constexpr int kContentEndCount = 4;
constexpr int kImageTypeCount = 4;
constexpr int kAspectCount = 4;
constexpr int kTimeoutCount = 2;
constexpr int kEffectCount = 18;
constexpr int kDirectionCount = 20;

// Fallbacks for a word that is none of the table's.
constexpr std::int32_t kOtherMovieType = 1;
constexpr std::int32_t kOtherImageType = 4;
constexpr std::int32_t kOtherTelopType = 1;
constexpr std::int32_t kOtherAspect = 2;
constexpr std::int32_t kOtherContentEnd = kEndStopLast;
constexpr std::int32_t kOtherTimeout = kTimeoutStop;

}  // namespace

// ---- Program document -------------------------------------------------------

std::unique_ptr<QvFProgram> QvFReadXml::readProgram(std::u16string path) {
  auto program = std::make_unique<QvFProgram>();
  QvFXmlDocument document;
  document.parse(path);
  const DOMElement* root = document.root();
  if (!isTag(root, tag::kProgramRoot)) return program;

  readHead(root, *program);
  ForEachChildElement(root, [&](const DOMElement* child) {
    if (isTag(child, tag::kProgramInfo)) {
      readProgramInfo(child, program->program_info);
    } else if (isTag(child, tag::kPaneInfo)) {
      readPaneInfo(child, program->pane_info);
    }
  });
  return program;
}

void QvFReadXml::readProgramInfo(const DOMElement* element, QvFProgramInfo& info) const {
  readHead(element, info);
  ParseTime(attribute(element, tag::kProgramTime), info.program_time);
  info.layout_lock = boolAttribute(element, tag::kLayoutLock);
  ForEachChildElement(element, [&](const DOMElement* child) {
    if (isTag(child, tag::kRegion)) {
      readRegion(child, info.region);
    } else if (isTag(child, tag::kBackgroundColor)) {
      readColor(child, info.background_color);
    } else if (isTag(child, tag::kPlaylistFile)) {
      readPlaylistFile(child, info.playlist_file);
    }
  });
}

void QvFReadXml::readPaneInfo(const DOMElement* element, QvFPaneInfo& pane_info) const {
  readHead(element, pane_info);
  ForEachChildElement(element, [&](const DOMElement* child) {
    if (!isTag(child, tag::kPane)) return;
    QvFPane pane;
    readPane(child, pane);
    pane_info.panes.push_back(std::move(pane));
  });
}

void QvFReadXml::readPane(const DOMElement* element, QvFPane& pane) const {
  readHead(element, pane);
  ForEachChildElement(element, [&](const DOMElement* child) {
    if (isTag(child, tag::kRegion)) {
      readRegion(child, pane.region);
    } else if (isTag(child, tag::kPlaylistFile)) {
      readPlaylistFile(child, pane.playlist_file);
    }
  });
}

void QvFReadXml::readPlaylistFile(const DOMElement* element,
                                  QvFPlaylistFile& playlist_file) const {
  readHead(element, playlist_file);
  const std::u16string ref = attribute(element, tag::kRefPlaylist);
  if (!ref.empty()) playlist_file.ref_playlist.assign(ref);
  // The pane type is always present after reading: a missing or unknown word
  // plays contents.
  const int pane_type =
      wordOffset(attribute(element, tag::kPaneType), tag::kPaneTypeFirst, kPaneTypeCount);
  playlist_file.type = pane_type < 0 ? kPaneContents : pane_type;
  playlist_file.mute = boolAttribute(element, tag::kMute);
}

// ---- Playlist document ------------------------------------------------------

QvFPlaylist QvFReadXml::readPlaylist(std::u16string path) {
  QvFPlaylist playlist;
  QvFXmlDocument document;
  document.parse(path);
  const DOMElement* root = document.root();
  if (!isTag(root, tag::kPlaylistRoot)) return playlist;

  readHead(root, playlist);
  // Items of kinds that have no record (others, command, url, audio, pip,
  // conditional content) are left out with all they hold.
  ForEachChildElement(root, [&](const DOMElement* child) {
    std::shared_ptr<QvFContent> item;
    if (isTag(child, tag::kMovie)) {
      item = readMovie(child);
    } else if (isTag(child, tag::kImage)) {
      item = readImage(child);
    } else if (isTag(child, tag::kTelop)) {
      item = readTelop(child);
    } else if (isTag(child, tag::kNone)) {
      item = readNone(child);
    }
    if (item) playlist.contents.push_back(std::move(item));
  });
  return playlist;
}

std::shared_ptr<QvFContent> QvFReadXml::readMovie(const DOMElement* element) const {
  auto movie = std::make_shared<QvFMovie>();
  readHead(element, *movie);
  const std::u16string ref = attribute(element, tag::kRefContent);
  if (!ref.empty()) movie->ref_content.assign(ref);
  // Only mp4 is known; any other word, or none, is another type.
  movie->type = attribute(element, tag::kMovieType) == (*tags_)[tag::kMovieTypeMp4]
                    ? 0
                    : kOtherMovieType;
  movie->aspect =
      attribute(element, tag::kAspect) == (*tags_)[tag::kAspectFirst] ? 0 : kOtherAspect;
  movie->volume = ParseInt(attribute(element, tag::kVolume));
  ForEachChildElement(element, [&](const DOMElement* child) {
    if (isTag(child, tag::kBackgroundColor)) {
      readColor(child, movie->background_color);
    } else if (isTag(child, tag::kPlayTime)) {
      readPlayTime(child, movie->play_time);
    } else if (isTag(child, tag::kRegion)) {
      movie->region.emplace();
      readRegion(child, *movie->region);
    }
  });
  return movie;
}

std::shared_ptr<QvFContent> QvFReadXml::readImage(const DOMElement* element) const {
  auto image = std::make_shared<QvFImage>();
  readHead(element, *image);
  const std::u16string ref = attribute(element, tag::kRefContent);
  if (!ref.empty()) image->ref_content.assign(ref);
  // An image keeps its own type and aspect when the attribute is missing.
  const std::u16string type = attribute(element, tag::kImageType);
  if (!type.empty()) {
    const int offset = wordOffset(type, tag::kImageTypeFirst, kImageTypeCount);
    image->type = offset < 0 ? kOtherImageType : offset;
  }
  const std::u16string aspect = attribute(element, tag::kAspect);
  if (!aspect.empty()) {
    const int offset = wordOffset(aspect, tag::kAspectFirst, kAspectCount);
    image->aspect = offset < 0 ? kOtherAspect : offset;
  }
  ForEachChildElement(element, [&](const DOMElement* child) {
    if (isTag(child, tag::kBackgroundColor)) {
      readColor(child, image->background_color);
    } else if (isTag(child, tag::kPlayTime)) {
      readPlayTime(child, image->play_time);
    } else if (isTag(child, tag::kImageEffect)) {
      image->image_effect.emplace();
      readImageEffect(child, *image->image_effect);
    } else if (isTag(child, tag::kRegion)) {
      image->region.emplace();
      readRegion(child, *image->region);
    }
  });
  return image;
}

std::shared_ptr<QvFContent> QvFReadXml::readTelop(const DOMElement* element) const {
  auto telop = std::make_shared<QvFTelop>();
  readHead(element, *telop);
  const std::u16string ref = attribute(element, tag::kRefContent);
  if (!ref.empty()) telop->ref_content.assign(ref);
  telop->type = attribute(element, tag::kTelopType) == (*tags_)[tag::kTelopTypeTlp]
                    ? 0
                    : kOtherTelopType;
  telop->aspect =
      attribute(element, tag::kAspect) == (*tags_)[tag::kAspectFirst] ? 0 : kOtherAspect;
  // A telop has no background colour of its own: a colour element is passed
  // over.
  ForEachChildElement(element, [&](const DOMElement* child) {
    if (isTag(child, tag::kPlayTime)) {
      readPlayTime(child, telop->play_time);
    } else if (isTag(child, tag::kRegion)) {
      telop->region.emplace();
      readRegion(child, *telop->region);
    }
  });
  return telop;
}

std::shared_ptr<QvFContent> QvFReadXml::readNone(const DOMElement* element) const {
  auto none = std::make_shared<QvFNone>();
  readHead(element, *none);
  ForEachChildElement(element, [&](const DOMElement* child) {
    if (isTag(child, tag::kBackgroundColor)) {
      readColor(child, none->background_color);
      none->has_background_color = true;
    } else if (isTag(child, tag::kPlayTime)) {
      readPlayTime(child, none->play_time);
    }
  });
  return none;
}

void QvFReadXml::readPlayTime(const DOMElement* element, QvFPlayTime& play_time) const {
  readHead(element, play_time);
  ParseTime(attribute(element, tag::kTime), play_time.time);
  const std::u16string content_end = attribute(element, tag::kContentEnd);
  if (!content_end.empty()) {
    const int offset = wordOffset(content_end, tag::kContentEndFirst, kContentEndCount);
    play_time.content_end = offset < 0 ? kOtherContentEnd : offset;
  }
  const std::u16string timeout = attribute(element, tag::kTimeout);
  if (!timeout.empty()) {
    const int offset = wordOffset(timeout, tag::kTimeoutFirst, kTimeoutCount);
    play_time.timeout = offset < 0 ? kOtherTimeout : offset;
  }
}

void QvFReadXml::readImageEffect(const DOMElement* element, QvFImageEffect& effect) const {
  readHead(element, effect);
  // Effects count from 1 (entry 91 is wipe); 0, no effect, has no word.
  const std::u16string type = attribute(element, tag::kEffectType);
  if (!type.empty()) {
    const int offset = wordOffset(type, tag::kEffectFirst, kEffectCount);
    effect.type = offset < 0 ? kEffectNone : offset + 1;
  }
  const std::u16string direction = attribute(element, tag::kDirection);
  if (!direction.empty()) {
    const int offset = wordOffset(direction, tag::kDirectionFirst, kDirectionCount);
    effect.direction = offset < 0 ? kDirectionNone : offset;
  }
  effect.via_backgroundcolor = boolAttribute(element, tag::kViaBackgroundColor);
  const std::u16string t = attribute(element, tag::kEffectTime);
  if (!t.empty()) effect.t = ParseInt(t);
}

}  // namespace quorvane::qvformat::format::io::xml
