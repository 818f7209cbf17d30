#include "checker/qv_ch_message.h"

#include <cstddef>
#include <exception>

#include "platform/system_info.h"

namespace quorvane::qvconv::checker {
namespace {

// One line of the catalogue: the keys that share a text, then the English and
// the Japanese text.  The longest group has 17 keys; unused slots are null.
struct CatalogueLine {
  const char16_t* keys[17];
  const char16_t* english;
  const char16_t* japanese;
};

// In the order in which the catalogue is filled.
const CatalogueLine kCatalogue[] = {
    {{u"msg.NUMBER"}, u"Numeric data is invalid.", u"数値のデータが不正です。"},
    {{u"msg.DATE"}, u"Data of the date is invalid.", u"日付のデータが不正です。"},
    {{u"msg.TIME"}, u"Time data is invalid.", u"時刻のデータが不正です。"},
    {{u"msg.CH0000"},
     u"An unknown error exists in the data.",
     u"データ内に不明なエラーが存在します。"},
    {{u"msg.SC0301"},
     u"There is a schedule in the past. Does not play.",
     u"過去のスケジュールがあります。再生されません。"},
    {{u"msg.TM0301", u"msg.TM0401"},
     u"There is a timetable of the past. Does not play.",
     u"過去のタイムテーブルがあります。再生されません。"},
    {{u"msg.TM0501"}, u"Not support the control panel.", u"パネル制御には対応していません。"},
    {{u"msg.TM0701"},
     u"Not support the display panel ON.",
     u"パネル制御のパネル表示ONには対応していません。"},
    {{u"msg.TM0702"},
     u"Not support the display panel of the panel OFF control.",
     u"パネル制御のパネル表示OFFには対応していません。"},
    {{u"msg.TM0703"},
     u"Not support the panel power ON.",
     u"パネル制御のパネル電源ONには対応していません。"},
    {{u"msg.TM0704"},
     u"Not support the panel power OFF.",
     u"パネル制御のパネル電源OFFには対応していません。"},
    {{u"msg.TM0705"},
     u"Not support the panel input selector.",
     u"パネル制御のパネル入力切換には対応していません。"},
    {{u"msg.EP0000"},
     u"Not support the special program table.",
     u"臨時番組テーブルには対応していません。"},
    {{u"msg.PG0301", u"msg.PG0401"},
     u"Display position of the program is not within the display range of signage.",
     u"番組の表示位置がサイネージの表示範囲に収まっていません。"},
    {{u"msg.PG0501", u"msg.PG0601"},
     u"Display size of the program is not within the display range of signage.",
     u"番組の表示サイズがサイネージの表示範囲に収まっていません。"},
    {{u"msg.PG0701", u"msg.PG0702"},
     u"Changing Screen Top-Left Position is not supported. Please modify layout.",
     u"画面開始位置の変更には対応していません。レイアウトを変更してください。"},
    {{u"msg.PG0900"},
     u"There are items that are not addressed to specific pane.",
     u"指定のペインに対応されていない項目があります。"},
    {{u"msg.PG0901"},
     u"It is possible to specify only the background color in the background. Please remove "
     u"content(s) from background tab.",
     u"背景には背景色以外は指定できません。背景タブに登録されているコンテンツを削除してください。"},
    {{u"msg.PG0902", u"msg.PG0903", u"msg.PG0904", u"msg.PG0905"},
     u"Not support multiple frames layout. Please modify layout.",
     u"複数の表示枠には対応していません。レイアウトを変更してください。"},
    {{u"msg.PG0906", u"msg.PG0907"},
     u"Multiple messages are not supported. Please modify layout.",
     u"複数のテロップには対応していません。レイアウトを変更してください。"},
    {{u"msg.PG0908"},
     u"Audio is not supported. Please remove content(s) from sound tab.",
     u"音声には対応していません。音声タブに登録されているコンテンツを削除してください。"},
    {{u"msg.PG0909"},
     u"PIP is not supported. Please modify layout.",
     u"PIPには対応していません。レイアウトを変更してください。"},
    {{u"msg.PG1101", u"msg.PG1201"},
     u"Display position of the display frame is not within the display range of signage.",
     u"表示枠の表示位置がサイネージの表示範囲に収まっていません。"},
    {{u"msg.PG1301", u"msg.PG1401"},
     u"Display size of the framing is not within the display range of signage.",
     u"表示枠の表示サイズがサイネージの表示範囲に収まっていません。"},
    {{u"msg.CI0100", u"msg.CI0101", u"msg.CI0102", u"msg.CI0103", u"msg.CI0105", u"msg.CI0106",
      u"msg.CI0107", u"msg.CI0108", u"msg.CI0109", u"msg.CI0110", u"msg.CI0115", u"msg.CI0116",
      u"msg.CI0117", u"msg.CI0118", u"msg.CI0119", u"msg.CI0120", u"msg.CI0121"},
     u"Not support the content of the extension ($str$).",
     u"拡張子（$str$）のコンテンツには対応していません。"},
    {{u"msg.CI0199"},
     u"Content of unsupported format is specified.",
     u"未対応形式のコンテンツが指定されています。"},
    {{u"msg.CI0203"},
     u"Specifying the executable file is not supported.",
     u"実行ファイルの指定には対応していません。"},
    {{u"msg.CI0204"}, u"Specifying the URL is not supported.", u"URLの指定には対応していません。"},
    {{u"msg.CI0210"},
     u"Not support the conditional content.",
     u"条件付きコンテンツには対応していません。"},
    {{u"msg.CI0211"},
     u"Not support blank content.",
     u"表示枠はプレイリストの非表示部には対応していません。"},
    {{u"msg.CI0300"},
     u"Not support \"Transparent\" setting on the Properties of Content window. Please modify the "
     u"setting at content property screen.",
     u"背景色を透明にするには対応していません。コンテンツのプロパティ画面で設定を変更してください"
     u"。"},
    {{u"msg.CI1302"},
     u"Not support display effect on the \"random\". Please modify the setting at content property "
     u"screen.",
     u"表示効果「ランダム」には対応していません。コンテンツのプロパティ画面で設定を変更してください"
     u"。"},
    {{u"msg.CI1304"},
     u"Not support display effect on the \"wipe\". Please modify the setting at content property "
     u"screen.",
     u"表示効果「ワイプ」には対応していません。コンテンツのプロパティ画面で設定を変更してください"
     u"。"},
    {{u"msg.CI1317"},
     u"Not support display effect on the \"stretch\". Please modify the setting at content "
     u"property screen.",
     u"表示効果「引き延ばし」には対応していません。コンテンツのプロパティ画面で設定を変更してくださ"
     u"い。"},
    {{u"msg.CI1339"},
     u"Not support display effect on the \"slide in\". Please modify the setting at content "
     u"property screen.",
     u"表示効果「スライドイン」には対応していません。コンテンツのプロパティ画面で設定を変更してくだ"
     u"さい。"},
    {{u"msg.CI1350"},
     u"Not support display effect on the \"slide out\". Please modify the setting at content "
     u"property screen.",
     u"表示効果「スライドアウト」には対応していません。コンテンツのプロパティ画面で設定を変更してく"
     u"ださい。"},
    {{u"msg.CI1352"},
     u"Not support display effect on the \"blind\". Please modify the setting at content property "
     u"screen.",
     u"表示効果「ブラインド」には対応していません。コンテンツのプロパティ画面で設定を変更してくださ"
     u"い。"},
    {{u"msg.CI1359"},
     u"Not support display effect on the \"push\". Please modify the setting at content property "
     u"screen.",
     u"表示効果「プッシュ」には対応していません。コンテンツのプロパティ画面で設定を変更してください"
     u"。"},
    {{u"msg.CI1366"},
     u"Not support display effect on the \"turn page\". Please modify the setting at content "
     u"property screen.",
     u"表示効果「めくり」には対応していません。コンテンツのプロパティ画面で設定を変更してください"
     u"。"},
    {{u"msg.CI1373"},
     u"Not support display effect on the \"wind\". Please modify the setting at content property "
     u"screen.",
     u"表示効果「巻き取り」には対応していません。コンテンツのプロパティ画面で設定を変更してください"
     u"。"},
    {{u"msg.CI1380"},
     u"Not support display effect on the \"wheel\". Please modify the setting at content property "
     u"screen.",
     u"表示効果「ホイール」には対応していません。コンテンツのプロパティ画面で設定を変更してください"
     u"。"},
    {{u"msg.CI1385"},
     u"Not support display effect on the \"rollwipe\". Please modify the setting at content "
     u"property screen.",
     u"表示効果「回転ワイプ」には対応していません。コンテンツのプロパティ画面で設定を変更してくださ"
     u"い。"},
    {{u"msg.CI1390"},
     u"Not support display effect on the \"wave\". Please modify the setting at content property "
     u"screen.",
     u"表示効果「ウェーブ」には対応していません。コンテンツのプロパティ画面で設定を変更してください"
     u"。"},
    {{u"msg.CI1399"},
     u"Not support display effect on the \"block\". Please modify the setting at content property "
     u"screen.",
     u"表示効果「ブロック」には対応していません。コンテンツのプロパティ画面で設定を変更してください"
     u"。"},
    {{u"msg.CI1401"},
     u"Not support display effect on the \"circle\". Please modify the setting at content property "
     u"screen.",
     u"表示効果「円形」には対応していません。コンテンツのプロパティ画面で設定を変更してください。"},
    {{u"msg.CI1406"},
     u"Not support display effect on the \"mosaic\". Please modify the setting at content property "
     u"screen.",
     u"表示効果「モザイク」には対応していません。コンテンツのプロパティ画面で設定を変更してください"
     u"。"},
    {{u"msg.CI1408"},
     u"Not support display effect on the \"whirlpool\". Please modify the setting at content "
     u"property screen.",
     u"表示効果「うず巻き」には対応していません。コンテンツのプロパティ画面で設定を変更してください"
     u"。"},
    {{u"msg.CI1415"},
     u"Not support display effect on the \"plus\". Please modify the setting at content property "
     u"screen.",
     u"表示効果「プラス」には対応していません。コンテンツのプロパティ画面で設定を変更してください"
     u"。"},
    {{u"msg.CI1700", u"msg.CI1800", u"msg.CI1900", u"msg.CI2000"},
     u"Not support \"Temporarily, move frame\" setting on the Properties of Content window. Please "
     u"modify the setting at content property screen.",
     u"一時的な表示枠の位置の変更には対応していません。"},
    {{u"msg.CI2200"},
     u"Not support the designation of the \"Attached Files\". Please modify the setting at "
     u"content property screen.",
     u"添付ファイルの指定には対応していません。"},
    {{u"msg.CI2300"},
     u"Telop font size exceeds upper limit.",
     u"テロップのフォントサイズが上限を超えています。"},
    {{u"msg.CI2301"},
     u"Line length exceeds upper limit. Please shorten the line or split it into multiple lines.",
     u"1行あたりの文字数の制限を超えています。文字数を減らすか複数行に分けてください。"},
    {{u"msg.CI2302"},
     u"Number of lines exceeds upper limit. Please decrease lines.",
     u"行数の制限を超えています。行数を減らしてください。"},
};

}  // namespace

QvChMessage::QvChMessage() { fill(platform::MessageLocaleName()); }

QvChMessage::QvChMessage(std::string_view locale_name) { fill(locale_name); }

bool QvChMessage::IsEnglishLocale(std::string_view locale_name) {
  // A name that spells the language out ("English_United States.1252").
  if (locale_name.find("English") != std::string_view::npos) return true;
  // The language is what stands before the territory, the code set and the
  // modifier: "en" of "en_US.UTF-8", "C" of "C.UTF-8".
  const std::size_t end = locale_name.find_first_of("_.@");
  const std::string_view lang = locale_name.substr(0, end);
  return lang.empty() || lang == "en" || lang == "C" || lang == "POSIX";
}

void QvChMessage::fill(std::string_view locale_name) {
  language.clear();
  for (const char c : locale_name) language.push_back(static_cast<unsigned char>(c));
  const bool english = IsEnglishLocale(locale_name);
  for (const CatalogueLine& line : kCatalogue) {
    for (const char16_t* key : line.keys) {
      if (key == nullptr) break;
      messages[key] = english ? line.english : line.japanese;
    }
  }
}

std::u16string QvChMessage::lookUp(const std::u16string& key) const { return messages.at(key); }

std::u16string QvChMessage::getMessage(const std::u16string& key) {
  if (key.empty()) return std::u16string();
  try {
    const QvChMessage catalogue;
    return catalogue.lookUp(key);
  } catch (const std::exception&) {
    return std::u16string();
  }
}

}  // namespace quorvane::qvconv::checker
