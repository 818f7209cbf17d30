// Writing the program and playlist documents.
//
// Elements are written in a fixed order (the reader does not rely on it).
// An enumerated value is written as its word from the tag table when it is in
// range and left out otherwise, so that a reader falls back to its default.
#include <cstdint>
#include <optional>

#include "model/qvf_text_forms.h"
#include "xml/qvf_write_xml.h"

namespace quorvane::qvformat::format::io::xml {

using xercesc::DOMElement;
using xercesc::DOMNode;

namespace {

// The word of `value` among the `count` entries from `first`, or empty text
// (no attribute) when the value has none.
std::u16string WordOf(const QvFTagTable& tags, std::int32_t value, int first, int count) {
  if (value < 0 || value >= count) return {};
  return tags[first + value];
}

}  // namespace

// ---- Program document -------------------------------------------------------

void QvFWriteXml::outputProgram(std::u16string path, QvFProgram program) {
  QvFXmlDocument document;
  document.createDocument();
  DOMElement* root = appendElement(document, nullptr, tag::kProgramRoot);
  writeHead(document, root, program);
  appendProgramInfo(document, root, program.program_info);
  appendPaneInfo(document, root, program.pane_info);
  save(document, path);
}

void QvFWriteXml::appendProgramInfo(QvFXmlDocument& document, DOMNode* parent,
                                    const QvFProgramInfo& info) const {
  DOMElement* element = appendElement(document, parent, tag::kProgramInfo);
  writeHead(document, element, info);
  setAttribute(document, element, tag::kProgramTime, FormatTime(info.program_time));
  setAttribute(document, element, tag::kLayoutLock, boolText(info.layout_lock));
  appendRegion(document, element, info.region);
  appendColor(document, element, info.background_color);
  // The program's own playlist reference is read but never written: only
  // panes play playlists.
}

void QvFWriteXml::appendPaneInfo(QvFXmlDocument& document, DOMNode* parent,
                                 const QvFPaneInfo& pane_info) const {
  // The list stands in the document even when there are no panes.
  DOMElement* element = appendElement(document, parent, tag::kPaneInfo);
  writeHead(document, element, pane_info);
  for (const QvFPane& pane : pane_info.panes) appendPane(document, element, pane);
}

void QvFWriteXml::appendPane(QvFXmlDocument& document, DOMNode* parent,
                             const QvFPane& pane) const {
  DOMElement* element = appendElement(document, parent, tag::kPane);
  writeHead(document, element, pane);
  appendRegion(document, element, pane.region);
  appendPlaylistFile(document, element, pane.playlist_file);
}

void QvFWriteXml::appendPlaylistFile(QvFXmlDocument& document, DOMNode* parent,
                                     const QvFPlaylistFile& playlist_file) const {
  DOMElement* element = appendElement(document, parent, tag::kPlaylistFile);
  writeHead(document, element, playlist_file);
  setAttribute(document, element, tag::kRefPlaylist, playlist_file.ref_playlist.text);
  if (playlist_file.type.has_value()) {
    setAttribute(document, element, tag::kPaneType,
                 WordOf(*tags_, *playlist_file.type, tag::kPaneTypeFirst, 4));
  }
  setAttribute(document, element, tag::kMute, boolText(playlist_file.mute));
}

// ---- Playlist document ------------------------------------------------------

void QvFWriteXml::outputPlaylist(std::u16string path, QvFPlaylist playlist) {
  QvFXmlDocument document;
  document.createDocument();
  DOMElement* root = appendElement(document, nullptr, tag::kPlaylistRoot);
  writeHead(document, root, playlist);
  // The items are the playlist's; this copy only reads them.  A kind without
  // a record writes nothing.
  for (const std::shared_ptr<QvFContent>& item : playlist.contents) {
    if (const QvFMovie* movie = AsMovie(item.get())) {
      appendMovie(document, root, *movie);
    } else if (const QvFImage* image = AsImage(item.get())) {
      appendImage(document, root, *image);
    } else if (const QvFNone* none = AsNone(item.get())) {
      appendNone(document, root, *none);
    } else if (const QvFTelop* telop = AsTelop(item.get())) {
      appendTelop(document, root, *telop);
    }
  }
  save(document, path);
}

void QvFWriteXml::appendMovie(QvFXmlDocument& document, DOMNode* parent,
                              const QvFMovie& movie) const {
  DOMElement* element = appendElement(document, parent, tag::kMovie);
  writeHead(document, element, movie);
  setAttribute(document, element, tag::kRefContent, movie.ref_content.text);
  setAttribute(document, element, tag::kMovieType,
               WordOf(*tags_, movie.type, tag::kMovieTypeMp4, 1));
  // The player fits every movie the same way, whatever the record says.
  setAttribute(document, element, tag::kAspect, (*tags_)[tag::kAspectFirst]);
  setAttribute(document, element, tag::kVolume, FormatInt(movie.volume));
  appendColor(document, element, movie.background_color);
  appendPlayTime(document, element, movie.play_time, true);
  if (movie.region.has_value()) appendRegion(document, element, *movie.region);
}

void QvFWriteXml::appendImage(QvFXmlDocument& document, DOMNode* parent,
                              const QvFImage& image) const {
  DOMElement* element = appendElement(document, parent, tag::kImage);
  writeHead(document, element, image);
  setAttribute(document, element, tag::kRefContent, image.ref_content.text);
  setAttribute(document, element, tag::kImageType,
               WordOf(*tags_, image.type, tag::kImageTypeFirst, 4));
  setAttribute(document, element, tag::kAspect,
               WordOf(*tags_, image.aspect, tag::kAspectFirst, 4));
  appendColor(document, element, image.background_color);
  appendPlayTime(document, element, image.play_time, true);
  if (image.image_effect.has_value()) appendImageEffect(document, element, *image.image_effect);
  if (image.region.has_value()) appendRegion(document, element, *image.region);
}

void QvFWriteXml::appendTelop(QvFXmlDocument& document, DOMNode* parent,
                              const QvFTelop& telop) const {
  DOMElement* element = appendElement(document, parent, tag::kTelop);
  writeHead(document, element, telop);
  setAttribute(document, element, tag::kRefContent, telop.ref_content.text);
  setAttribute(document, element, tag::kTelopType,
               WordOf(*tags_, telop.type, tag::kTelopTypeTlp, 1));
  setAttribute(document, element, tag::kAspect, (*tags_)[tag::kAspectFirst]);
  // A telop runs in the region of its pane: its own region is not written.
  appendPlayTime(document, element, telop.play_time, true);
}

void QvFWriteXml::appendNone(QvFXmlDocument& document, DOMNode* parent,
                             const QvFNone& none) const {
  DOMElement* element = appendElement(document, parent, tag::kNone);
  writeHead(document, element, none);
  if (none.has_background_color) appendColor(document, element, none.background_color);
  appendPlayTime(document, element, none.play_time, false);
}

void QvFWriteXml::appendPlayTime(QvFXmlDocument& document, DOMNode* parent,
                                 const QvFPlayTime& play_time, bool long_form) const {
  DOMElement* element = appendElement(document, parent, tag::kPlayTime);
  writeHead(document, element, play_time);
  setAttribute(document, element, tag::kTime, FormatTime(play_time.time));
  if (!long_form) return;
  setAttribute(document, element, tag::kContentEnd,
               WordOf(*tags_, play_time.content_end, tag::kContentEndFirst, 4));
  setAttribute(document, element, tag::kTimeout,
               WordOf(*tags_, play_time.timeout, tag::kTimeoutFirst, 2));
}

void QvFWriteXml::appendImageEffect(QvFXmlDocument& document, DOMNode* parent,
                                    const QvFImageEffect& effect) const {
  DOMElement* element = appendElement(document, parent, tag::kImageEffect);
  writeHead(document, element, effect);
  // Effects count from 1; no effect (0) and an absent one have no word.
  if (effect.type.has_value() && *effect.type > kEffectNone) {
    setAttribute(document, element, tag::kEffectType,
                 WordOf(*tags_, *effect.type - 1, tag::kEffectFirst, 18));
  }
  setAttribute(document, element, tag::kDirection,
               WordOf(*tags_, effect.direction, tag::kDirectionFirst, 20));
  setAttribute(document, element, tag::kViaBackgroundColor,
               boolText(effect.via_backgroundcolor));
  setAttribute(document, element, tag::kEffectTime, FormatInt(effect.t));
}

}  // namespace quorvane::qvformat::format::io::xml
