// The XML layer: the two vocabularies, parsing (also of hostile files) and the bytes written.
#include <string>

#include "tests/support/test_support.h"
#include "xml/qvf_tag_table.h"
#include "xml/qvf_xml_document.h"

namespace quorvane::qvformat::format::io::xml {
namespace {

using qvtest::U16;

// Parses a file: the code of the failure, or 0; `bytes` gets the document written again.
int ParseFile(const std::string& path, std::string* bytes = nullptr) {
  return qvtest::CodeOf([&] {
    QvFXmlDocument document;
    document.parse(U16(path));
    if (bytes) *bytes = document.serializeToBytes(false);
  });
}

int ParseCode(const std::string& text, std::string* bytes = nullptr) {
  qvtest::ScratchDir dir;
  qvtest::WriteFile(dir.Sub("d.xml"), text);
  return ParseFile(dir.Sub("d.xml"), bytes);
}

TEST(XmlTagTable, BothVocabularies) {
  const QvFTagTable compact;
  const QvFDebugTagTable debug;
  int same = 0;
  for (int i = 0; i < static_cast<int>(kTagCount); ++i)
    same += compact[i] == debug[i] && !compact[i].empty();
  EXPECT_EQ(same, 13);  // x, y, and the shared words of types and numbers
  EXPECT_TRUE(compact[-1].empty() && compact[kTagCount].empty());
}

TEST(XmlDocument, WritesAttributesByTheEmptyValueRuleAsUtf8) {
  QvFXmlDocument document;
  document.createDocument();
  xercesc::DOMElement* root = document.appendElement(nullptr, u"qv");
  // Only a compact command's "ti" is written with an empty value.
  EXPECT_NE(document.addAttribute(root, u"ti", u""), nullptr);
  EXPECT_EQ(document.addAttribute(root, u"target_input", u""), nullptr);
  document.addAttribute(root, u"n", u"日本");
  document.appendElement(document.appendElement(root, u"sl"), u"s");
  EXPECT_EQ(document.serializeToBytes(false),
            "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\" ?>"
            "<qv n=\"\xE6\x97\xA5\xE6\x9C\xAC\" ti=\"\"><sl><s/></sl></qv>");
  // Text that XML cannot carry fails cleanly.
  document.addAttribute(root, u"n", std::u16string(u"a") + char16_t{1});
  EXPECT_THROW(document.serializeToBytes(false), std::runtime_error);
  EXPECT_THROW(document.appendElement(root, u"not a name"), std::runtime_error);
}

TEST(XmlDocument, WhatParsesAndWhatIs300) {
  for (const char* bad :
       {"", "just some text", "<qv><sl></qv>", "<qv/><qv/>", "<qv n=\"&nothing;\"/>"})
    EXPECT_EQ(ParseCode(bad), -300) << bad;
  qvtest::ScratchDir dir;
  EXPECT_EQ(ParseFile(dir.Sub("missing.xml")) + ParseFile(dir.path()),
            -300 * 2);  // no file, a folder
  // No grammar and any root: validation errors are dropped. A few internal entity expansions are
  // ordinary XML.
  EXPECT_EQ(
      ParseCode("<?xml version=\"1.0\"?><!-- c --><p:any xmlns:p=\"urn:x\" x=\"1\"><y/></p:any>"),
      0);
  std::string bytes;
  EXPECT_EQ(ParseCode("\xEF\xBB\xBF<!DOCTYPE qv [<!ENTITY w \"word\">]><qv n=\"&w;&w;\"/>", &bytes),
            0);
  EXPECT_NE(bytes.find("<qv n=\"wordword\"/>"), std::string::npos);
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
    std::string bytes;
    const int code = ParseFile(dir.Sub("d.xml"), &bytes);  // refusing the file is as good
    EXPECT_TRUE(code == -300 || (code == 0 && bytes.find("TOPSECRET") == std::string::npos))
        << text;
  }
}

// Start-ups and shut-downs of the library pair up, also when a failure passes.
TEST(XmlDocument, LibraryStartUpsPairWithShutDowns) {
  for (int i = 0; i < 3; ++i) EXPECT_EQ(ParseCode("<qv"), -300);
  {
    QvFXmlLibrary library;
    QvFXmlDocument reused;
    reused.createDocument(), reused.createDocument();  // a second start-up on the same holder
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
