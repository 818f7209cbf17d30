// The XML layer: the two vocabularies, parsing (also of hostile files),
// attributes and the bytes that a written file holds.
#include <string>

#include "app/qv_conv_exception.h"
#include "tests/support/test_support.h"
#include "xml/qvf_tag_table.h"
#include "xml/qvf_xml_document.h"

namespace quorvane::qvformat::format::io::xml {
namespace {

using qvconv::converter::QvConvException;
using qvtest::U16;

// Parses a file; the code of the failure, or 0. `n` receives the root's
// attribute n.
int ParseFile(const std::string& path, std::u16string* n = nullptr) {
  try {
    QvFXmlDocument document;
    document.parse(U16(path));
    if (n) *n = QvFXmlDocument::getAttribute(document.root(), u"n");
  } catch (QvConvException* e) {
    const int code = e->code();
    delete e;
    return code;
  }
  return 0;
}

int ParseCode(const std::string& text, std::u16string* n = nullptr) {
  qvtest::ScratchDir dir;
  qvtest::WriteFile(dir.Sub("d.xml"), text);
  return ParseFile(dir.Sub("d.xml"), n);
}

TEST(XmlTagTable, BothVocabularies) {
  QvFTagTable compact;
  QvFDebugTagTable debug;
  const QvFTagTable& through_base = debug;
  EXPECT_EQ(through_base[tag::kRegion], u"region");
  int same = 0;
  for (int i = 0; i < static_cast<int>(kTagCount); ++i) {
    EXPECT_FALSE(compact[i].empty()) << i;
    if (compact[i] == debug[i]) ++same;
  }
  EXPECT_EQ(same, 13);  // x, y, and the shared words of types and numbers
  EXPECT_TRUE(compact[-1].empty() && compact[kTagCount].empty());
}

TEST(XmlDocument, WritesAttributesByTheEmptyValueRuleAsUtf8) {
  qvtest::ScratchDir dir;
  QvFXmlDocument document;
  document.createDocument();
  xercesc::DOMElement* root = document.appendElement(nullptr, u"qv");
  // Only a compact command's "ti" is written with an empty value.
  EXPECT_NE(document.addAttribute(root, u"ti", u""), nullptr);
  EXPECT_EQ(document.addAttribute(root, u"target_input", u""), nullptr);
  EXPECT_EQ(document.addAttribute(root, u"v", u""), nullptr);
  document.addAttribute(root, u"n", u"日本");
  document.appendElement(document.appendElement(root, u"sl"), u"s");
  EXPECT_EQ(QvFXmlDocument::getAttribute(nullptr, u"n"), u"");
  EXPECT_EQ(QvFXmlDocument::getAttribute(root, u"missing"), u"");

  document.serialize(U16(dir.Sub("compact.xml")), false);
  document.serialize(U16(dir.Sub("pretty.xml")), true);
  const std::string declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\" ?>";
  EXPECT_EQ(qvtest::ReadFile(dir.Sub("compact.xml")),
            declaration + "<qv n=\"\xE6\x97\xA5\xE6\x9C\xAC\" ti=\"\"><sl><s/></sl></qv>");
  const std::string pretty = qvtest::ReadFile(dir.Sub("pretty.xml"));
  EXPECT_EQ(pretty.rfind(declaration + "\n", 0), 0u);
  EXPECT_NE(pretty.find("\n  <sl>\n    <s/>\n  </sl>\n"), std::string::npos);

  // Text that XML cannot carry fails cleanly.
  document.addAttribute(root, u"n", std::u16string(u"a") + char16_t{1});
  EXPECT_THROW(document.serializeToBytes(false), std::runtime_error);
  EXPECT_THROW(document.appendElement(root, u"not a name"), std::runtime_error);
}

TEST(XmlDocument, WhatParsesAndWhatIs300) {
  for (const char* bad : {"", "just some text", "<qv><sl></qv>", "<qv/><qv/>",
                          "<qv n=\"&nothing;\"/>", "<qv n=\"aaaa"}) {
    EXPECT_EQ(ParseCode(bad), -300) << bad;
  }
  qvtest::ScratchDir dir;
  EXPECT_EQ(ParseFile(dir.Sub("missing.xml")), -300);
  EXPECT_EQ(ParseFile(dir.path()), -300);
  // No grammar and any root: validation errors are dropped.
  EXPECT_EQ(ParseCode("<?xml version=\"1.0\"?><!-- c --><anything x=\"1\"><y/></anything>"), 0);
  EXPECT_EQ(ParseCode("<p:qv xmlns:p=\"urn:x\"/>"), 0);
  std::u16string n;
  EXPECT_EQ(ParseCode("\xEF\xBB\xBF<qv n=\"t\"/>", &n), 0);
  EXPECT_EQ(n, u"t");
  // A few internal entity expansions are ordinary XML.
  EXPECT_EQ(ParseCode("<!DOCTYPE qv [<!ENTITY w \"word\">]><qv n=\"&w;&w;\"/>", &n), 0);
  EXPECT_EQ(n, u"wordword");
  // Ordinary nesting is well inside the depth limit.
  std::string nested;
  for (int i = 0; i < 200; ++i) nested.insert(3 * i, "<s></s>");
  EXPECT_EQ(ParseCode(nested), 0);
}

// A hostile package must not pull a local file into what we write from it.
TEST(XmlDocument, ExternalEntitiesAndDtdsAreNeverRead) {
  qvtest::ScratchDir dir;
  qvtest::WriteFile(dir.Sub("secret.txt"), "TOPSECRET");
  qvtest::WriteFile(dir.Sub("evil.dtd"), "<!ENTITY leak SYSTEM \"secret.txt\">");
  const std::string documents[] = {
      "<!DOCTYPE qv [<!ENTITY x SYSTEM \"file://" + dir.Sub("secret.txt") + "\">]><qv>&x;</qv>",
      "<!DOCTYPE qv [<!ENTITY x SYSTEM \"secret.txt\">]><qv>&x;</qv>",
      "<!DOCTYPE qv SYSTEM \"evil.dtd\"><qv>&leak;</qv>",
      "<!DOCTYPE qv [<!ENTITY % p SYSTEM \"evil.dtd\"> %p;]><qv>&leak;</qv>",
  };
  for (const std::string& text : documents) {
    qvtest::WriteFile(dir.Sub("d.xml"), text);
    try {
      QvFXmlDocument document;
      document.parse(U16(dir.Sub("d.xml")));
      EXPECT_EQ(document.serializeToBytes(false).find("TOPSECRET"), std::string::npos) << text;
    } catch (QvConvException* e) {
      EXPECT_EQ(e->code(), -300) << text;  // refusing the file is as good
      delete e;
    }
  }
}

// Start-ups and shut-downs of the library pair up, also when a failure
// passes, so that the library is still there for the next document.
TEST(XmlDocument, LibraryStartUpsPairWithShutDowns) {
  for (int i = 0; i < 3; ++i) EXPECT_EQ(ParseCode("<qv"), -300);
  {
    QvFXmlLibrary library;
    ASSERT_TRUE(library.started());
    qvtest::ScratchDir dir;
    qvtest::WriteFile(dir.Sub("ok.xml"), "<qv/>");
    QvFXmlDocument reused;
    reused.parse(U16(dir.Sub("ok.xml")));
    reused.parse(U16(dir.Sub("ok.xml")));  // a second start-up on the same holder
    reused.createDocument();
    reused.appendElement(nullptr, u"tt");
    EXPECT_EQ(TagName(reused.root()), u"tt");
    reused.release();
    EXPECT_EQ(reused.document(), nullptr);
    EXPECT_EQ(ParseCode("<qv/>"), 0);
  }
  try {
    QvFXmlDocument document;
    document.createDocument();
    throw std::runtime_error("passing through");
  } catch (const std::runtime_error&) {
  }
  EXPECT_EQ(ParseCode("<qv/>"), 0);
}

}  // namespace
}  // namespace quorvane::qvformat::format::io::xml
