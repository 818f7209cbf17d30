// The XML layer: the two vocabularies, parsing (also of hostile files),
// attributes and the bytes that a written file holds.
#include <chrono>
#include <string>

#include "app/qv_conv_exception.h"
#include "tests/support/test_support.h"
#include "xml/dom_print_filter.h"
#include "xml/qvf_tag_table.h"
#include "xml/qvf_xml_document.h"

namespace quorvane::qvformat::format::io::xml {
namespace {

using qvconv::converter::QvConvException;
using qvtest::ScratchDir;
using qvtest::U16;

// The code of the QvConvException pointer that `parse` throws; 0 if none.
int ParseCode(const std::string& path) {
  try {
    QvFXmlDocument document;
    document.parse(U16(path));
  } catch (QvConvException* e) {
    const int code = e->code();
    delete e;
    return code;
  }
  return 0;
}

TEST(XmlTagTable, EntriesOfBothVocabularies) {
  QvFTagTable compact;
  QvFDebugTagTable debug;
  const QvFTagTable& through_base = debug;

  EXPECT_EQ(compact[tag::kRegion], u"re");
  EXPECT_EQ(through_base[tag::kRegion], u"region");
  // Names repeat between entries; each entry stands on its own.
  EXPECT_EQ(compact[tag::kImage], u"i");
  EXPECT_EQ(compact[tag::kId], u"i");
  EXPECT_EQ(debug[tag::kTableProgram], u"program");
  EXPECT_EQ(debug[tag::kProgramRoot], u"program");
  EXPECT_EQ(debug[tag::kTableCommand], u"command");
  EXPECT_EQ(debug[tag::kCommand], u"command");
  EXPECT_EQ(compact[tag::kTargetInput], u"ti");
  EXPECT_EQ(debug[tag::kTargetInput], u"target_input");
  EXPECT_EQ(compact[tag::kTrue], u"t");
  EXPECT_EQ(debug[tag::kFalse], u"false");
  EXPECT_EQ(debug[tag::kDirectionFirst + 19], u"random");
  EXPECT_EQ(compact[tag::kNo], u"n");

  // Entries 70 and 79 to 88 are shared; the debug table differs everywhere
  // else except x and y.
  const char16_t* shared[] = {u"t",   u"mp4", u"tlp", u"jpeg", u"png", u"gif",
                              u"bmp", u"0",   u"1",   u"2",    u"3"};
  EXPECT_EQ(debug[70], shared[0]);
  for (int i = 79; i <= 88; ++i) EXPECT_EQ(debug[i], shared[i - 78]) << i;
  int same = 0;
  for (int i = 0; i < static_cast<int>(kTagCount); ++i) {
    EXPECT_FALSE(compact[i].empty()) << i;
    if (compact[i] == debug[i]) ++same;
  }
  EXPECT_EQ(same, 13);
  EXPECT_TRUE(compact[-1].empty());
  EXPECT_TRUE(compact[133].empty());
}

TEST(XmlDocument, AttributesFollowTheEmptyValueRule) {
  QvFXmlDocument document;
  document.createDocument();
  xercesc::DOMElement* root = document.appendElement(nullptr, u"co");
  EXPECT_NE(document.addAttribute(root, u"ti", u""), nullptr);
  EXPECT_EQ(document.addAttribute(root, u"target_input", u""), nullptr);
  EXPECT_EQ(document.addAttribute(root, u"n", u""), nullptr);
  EXPECT_NE(document.addAttribute(root, u"tp", u"3"), nullptr);

  EXPECT_TRUE(root->hasAttribute(u"ti"));
  EXPECT_FALSE(root->hasAttribute(u"target_input"));
  EXPECT_FALSE(root->hasAttribute(u"n"));
  EXPECT_EQ(QvFXmlDocument::getAttribute(root, u"tp"), u"3");
  EXPECT_EQ(QvFXmlDocument::getAttribute(root, u"ti"), u"");
  EXPECT_EQ(QvFXmlDocument::getAttribute(root, u"missing"), u"");
  EXPECT_EQ(QvFXmlDocument::getAttribute(root, u""), u"");
  EXPECT_EQ(QvFXmlDocument::getAttribute(nullptr, u"tp"), u"");
}

TEST(XmlDocument, CompactAndPrettyFilesAreUtf8WithADeclaration) {
  ScratchDir dir;
  QvFXmlDocument document;
  document.createDocument();
  xercesc::DOMElement* root = document.appendElement(nullptr, u"qv");
  document.addAttribute(root, u"n", u"日本");
  document.appendElement(document.appendElement(root, u"sl"), u"s");
  document.serialize(U16(dir.Sub("compact.xml")), false);
  document.serialize(U16(dir.Sub("pretty.xml")), true);

  const std::string compact = qvtest::ReadFile(dir.Sub("compact.xml"));
  EXPECT_EQ(compact,
            "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\" ?>"
            "<qv n=\"\xE6\x97\xA5\xE6\x9C\xAC\"><sl><s/></sl></qv>");
  const std::string pretty = qvtest::ReadFile(dir.Sub("pretty.xml"));
  EXPECT_EQ(pretty.rfind("<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\" ?>\n", 0), 0u);
  EXPECT_NE(pretty.find("\n  <sl>\n    <s/>\n  </sl>\n"), std::string::npos);
}

TEST(XmlDocument, TextThatXmlCannotCarryFailsCleanly) {
  QvFXmlDocument document;
  document.createDocument();
  xercesc::DOMElement* root = document.appendElement(nullptr, u"qv");
  document.addAttribute(root, u"n", std::u16string(u"a") + char16_t{1});
  EXPECT_THROW(document.serializeToBytes(false), std::runtime_error);
  EXPECT_THROW(document.appendElement(root, u"not a name"), std::runtime_error);
}

TEST(XmlDocument, UnreadableFilesFailWithMinus300) {
  ScratchDir dir;
  qvtest::WriteFile(dir.Sub("empty.xml"), "");
  qvtest::WriteFile(dir.Sub("text.xml"), "just some text");
  qvtest::WriteFile(dir.Sub("open.xml"), "<qv><sl></qv>");
  qvtest::WriteFile(dir.Sub("two_roots.xml"), "<qv/><qv/>");
  qvtest::WriteFile(dir.Sub("undeclared.xml"), "<qv n=\"&nothing;\"/>");
  EXPECT_EQ(ParseCode(dir.Sub("missing.xml")), -300);
  EXPECT_EQ(ParseCode(dir.path()), -300);
  for (const char* name : {"empty.xml", "text.xml", "open.xml", "two_roots.xml", "undeclared.xml"}) {
    EXPECT_EQ(ParseCode(dir.Sub(name)), -300) << name;
  }
}

TEST(XmlDocument, WellFormedFilesOfAnyVocabularyParse) {
  ScratchDir dir;
  // No grammar and an unknown root: the validation errors are dropped.
  qvtest::WriteFile(dir.Sub("other.xml"), "<?xml version=\"1.0\"?><!-- c --><anything x=\"1\"><y/></anything>");
  qvtest::WriteFile(dir.Sub("bom.xml"), "\xEF\xBB\xBF<qv v=\"t\"/>");
  qvtest::WriteFile(dir.Sub("ns.xml"), "<p:qv xmlns:p=\"urn:x\"/>");
  EXPECT_EQ(ParseCode(dir.Sub("other.xml")), 0);
  EXPECT_EQ(ParseCode(dir.Sub("ns.xml")), 0);
  QvFXmlDocument document;
  document.parse(U16(dir.Sub("bom.xml")));
  EXPECT_EQ(TagName(document.root()), u"qv");
  EXPECT_EQ(QvFXmlDocument::getAttribute(document.root(), u"v"), u"t");
}

TEST(XmlDocument, PrintFilterRejectsOnlyTheDocumentType) {
  QvFXmlDocument document;
  document.createDocument();
  xercesc::DOMElement* root = document.appendElement(nullptr, u"qv");
  xercesc::DOMAttr* attribute = document.addAttribute(root, u"n", u"x");
  xercesc::DOMDocumentType* doctype =
      document.document()->getImplementation()->createDocumentType(u"qv", u"", u"");
  xercesc::DOMComment* comment = document.document()->createComment(u"c");

  DOMPrintFilter filter;
  EXPECT_EQ(filter.getWhatToShow(), 0x203u);
  EXPECT_EQ(filter.acceptNode(root), xercesc::DOMNodeFilter::FILTER_ACCEPT);
  EXPECT_EQ(filter.acceptNode(attribute), xercesc::DOMNodeFilter::FILTER_ACCEPT);
  EXPECT_EQ(filter.acceptNode(doctype), xercesc::DOMNodeFilter::FILTER_REJECT);
  EXPECT_EQ(filter.acceptNode(comment), xercesc::DOMNodeFilter::FILTER_ACCEPT);
  doctype->release();
}

// A hostile package must not pull a local file into what we write from it.
TEST(XmlDocument, ExternalEntitiesAndDtdsAreNeverRead) {
  ScratchDir dir;
  qvtest::WriteFile(dir.Sub("secret.txt"), "TOPSECRET");
  qvtest::WriteFile(dir.Sub("evil.dtd"), "<!ENTITY leak SYSTEM \"secret.txt\">");
  const std::string secret = "file://" + dir.Sub("secret.txt");
  qvtest::WriteFile(dir.Sub("entity.xml"),
                    "<!DOCTYPE qv [<!ENTITY x SYSTEM \"" + secret + "\">]><qv n=\"a\">&x;</qv>");
  qvtest::WriteFile(dir.Sub("relative.xml"),
                    "<!DOCTYPE qv [<!ENTITY x SYSTEM \"secret.txt\">]><qv>&x;</qv>");
  qvtest::WriteFile(dir.Sub("dtd.xml"), "<!DOCTYPE qv SYSTEM \"evil.dtd\"><qv>&leak;</qv>");
  qvtest::WriteFile(dir.Sub("param.xml"),
                    "<!DOCTYPE qv [<!ENTITY % p SYSTEM \"evil.dtd\"> %p;]><qv>&leak;</qv>");

  for (const char* name : {"entity.xml", "relative.xml", "dtd.xml", "param.xml"}) {
    try {
      QvFXmlDocument document;
      document.parse(U16(dir.Sub(name)));
      const std::string bytes = document.serializeToBytes(false);
      EXPECT_EQ(bytes.find("TOPSECRET"), std::string::npos) << name;
    } catch (QvConvException* e) {
      EXPECT_EQ(e->code(), -300) << name;  // refusing the file is as good
      delete e;
    }
  }
}

TEST(XmlDocument, EntityExpansionIsBounded) {
  ScratchDir dir;
  std::string doc = "<!DOCTYPE qv [<!ENTITY a0 \"xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx\">";
  for (int i = 1; i <= 10; ++i) {
    std::string refs;
    for (int k = 0; k < 10; ++k) refs += "&a" + std::to_string(i - 1) + ";";
    doc += "<!ENTITY a" + std::to_string(i) + " \"" + refs + "\">";
  }
  doc += "]><qv n=\"&a10;\">&a10;</qv>";
  qvtest::WriteFile(dir.Sub("laughs.xml"), doc);

  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(ParseCode(dir.Sub("laughs.xml")), -300);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));

  // Few references to one big entity would fill the memory all the same.
  std::string wide = "<!DOCTYPE qv [<!ENTITY big \"" + std::string(1 << 20, 'x') + "\">]><qv>";
  for (int i = 0; i < 5000; ++i) wide += "&big;";
  qvtest::WriteFile(dir.Sub("wide.xml"), wide + "</qv>");
  EXPECT_EQ(ParseCode(dir.Sub("wide.xml")), -300);

  // A few expansions are ordinary XML and still read.
  qvtest::WriteFile(dir.Sub("few.xml"), "<!DOCTYPE qv [<!ENTITY w \"word\">]><qv n=\"&w;&w;\"/>");
  QvFXmlDocument document;
  document.parse(U16(dir.Sub("few.xml")));
  EXPECT_EQ(QvFXmlDocument::getAttribute(document.root(), u"n"), u"wordword");
}

TEST(XmlDocument, DeepNestingAndHugeAttributesDoNotCrash) {
  ScratchDir dir;
  const int depth = 1000000;
  std::string deep;
  deep.reserve(depth * 8);
  for (int i = 0; i < depth; ++i) deep += "<s>";
  for (int i = 0; i < depth; ++i) deep += "</s>";
  qvtest::WriteFile(dir.Sub("deep.xml"), deep);
  qvtest::WriteFile(dir.Sub("huge.xml"), "<qv n=\"" + std::string(8 << 20, 'a') + "\"/>");
  qvtest::WriteFile(dir.Sub("cut.xml"), "<qv n=\"" + std::string(1 << 20, 'a'));

  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(ParseCode(dir.Sub("deep.xml")), -300);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
  std::string nested;
  for (int i = 0; i < 200; ++i) nested += "<s>";
  for (int i = 0; i < 200; ++i) nested += "</s>";
  qvtest::WriteFile(dir.Sub("nested.xml"), nested);
  EXPECT_EQ(ParseCode(dir.Sub("nested.xml")), 0);
  QvFXmlDocument document;
  document.parse(U16(dir.Sub("huge.xml")));
  EXPECT_EQ(QvFXmlDocument::getAttribute(document.root(), u"n").size(), 8u << 20);
  EXPECT_EQ(ParseCode(dir.Sub("cut.xml")), -300);
}

// Start-ups and shut-downs of the library pair up, also when a failure
// passes, so that the library is still there for the next document.
TEST(XmlDocument, LibraryStartUpsPairWithShutDowns) {
  ScratchDir dir;
  qvtest::WriteFile(dir.Sub("ok.xml"), "<qv/>");
  for (int i = 0; i < 3; ++i) EXPECT_EQ(ParseCode(dir.Sub("missing.xml")), -300);
  {
    QvFXmlLibrary library;
    ASSERT_TRUE(library.started());
    QvFXmlDocument reused;
    reused.parse(U16(dir.Sub("ok.xml")));
    reused.parse(U16(dir.Sub("ok.xml")));  // a second start-up on the same holder
    reused.createDocument();
    reused.appendElement(nullptr, u"tt");
    EXPECT_EQ(TagName(reused.root()), u"tt");
    reused.release();
    EXPECT_EQ(reused.document(), nullptr);
    EXPECT_EQ(ParseCode(dir.Sub("ok.xml")), 0);
  }
  try {
    QvFXmlDocument document;
    document.createDocument();
    document.appendElement(nullptr, u"qv");
    throw std::runtime_error("passing through");
  } catch (const std::runtime_error&) {
  }
  EXPECT_EQ(ParseCode(dir.Sub("ok.xml")), 0);
}

}  // namespace
}  // namespace quorvane::qvformat::format::io::xml
