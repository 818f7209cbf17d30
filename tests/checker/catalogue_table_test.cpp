#include <gtest/gtest.h>

#include "checker/qv_ch_message.h"
#include "checker/qv_ch_table.h"
#include "tests/checker/checker_harness.h"
#include "tests/support/fake_env.h"

namespace qvtest {
namespace {

using checker::QvChMessage;
using checker::QvChTable;

TEST(CheckerCatalogue, EveryKeyInBothLanguagesChosenByTheLocale) {
  const QvChMessage english("en_US.UTF-8");
  const QvChMessage japanese("ja_JP.UTF-8");
  EXPECT_EQ(english.messages.size(), 82u);
  EXPECT_EQ(japanese.messages.size(), 82u);
  for (const auto& [key, text] : english.messages) {
    EXPECT_EQ(japanese.messages.count(key), 1u) << U8(key);
    EXPECT_NE(japanese.lookUp(key), text) << U8(key);
  }
  EXPECT_EQ(U8(english.lookUp(u"msg.SC0301")), "There is a schedule in the past. Does not play.");
  EXPECT_EQ(U8(japanese.lookUp(u"msg.SC0301")), "過去のスケジュールがあります。再生されません。");
  EXPECT_EQ(english.lookUp(u"msg.CI0121"), english.lookUp(u"msg.CI0100"));  // a shared text
  EXPECT_THROW(english.lookUp(u"msg.CI1300"), std::out_of_range);
  // The language follows the locale.
  for (const char* name :
       {"en_US.UTF-8", "en_GB", "en", "C", "C.UTF-8", "POSIX", "English_US.1252"})
    EXPECT_TRUE(QvChMessage::IsEnglishLocale(name)) << name;
  for (const char* name : {"ja_JP.UTF-8", "de_DE.UTF-8", "fr", "english_fake", "eng_XX"})
    EXPECT_FALSE(QvChMessage::IsEnglishLocale(name)) << name;
  {
    FixedLocale locale("en_AU.UTF-8");
    EXPECT_EQ(U8(QvChMessage::getMessage(u"msg.NUMBER")), "Numeric data is invalid.");
  }
  EXPECT_EQ(QvChMessage::getMessage(u"msg.NOPE"), u"");
}

TEST(CheckerTable, SelectsRowsAndRefusesUnknownOnes) {
  QvChTable table;
  table.buildTable();
  table.buildTable();  // a table is filled once
  ASSERT_EQ(table.rows.size(), 27u);
  EXPECT_TRUE(table.selectRow(u"PG0501"));
  EXPECT_TRUE(table.current.is_error);
  // A failed selection leaves the current row alone.
  EXPECT_FALSE(table.selectRow(u"CI1401"));
  EXPECT_FALSE(table.selectRow(u"pg0501"));
  EXPECT_EQ(U8(table.current.id), "PG0501");
  EXPECT_EQ(CodeOf([] { QvChTable missing(u"XX0000"); }), -998);
}

}  // namespace
}  // namespace qvtest
