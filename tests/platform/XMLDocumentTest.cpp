#include <sys/stat.h>

#include "TestDevice.h"
#include "XMLDocument.h"

namespace umsservice::testing {
namespace {

class XMLDocument : public ::testing::Test {
 protected:
  using Document = umsservice::XMLDocument;

  static std::string repeated(const std::string& text, size_t times) {
    std::string all;
    all.reserve(text.size() * times);
    for (size_t i = 0; i < times; ++i) all += text;
    return all;
  }
  /// Why bytes are refused; empty when they are not.
  static std::string refusal(const std::string& bytes) {
    auto parsed = Document::parse(bytes);
    EXPECT_NE(parsed.document.has_value(), !parsed.error.empty());
    EXPECT_EQ(parsed.error.find('\n'), std::string::npos);
    return parsed.error;
  }
  static std::string rewritten(const std::string& bytes) {
    auto parsed = Document::parse(bytes);
    return parsed.document ? parsed.document->bytes().value_or("(not written)") : parsed.error;
  }
  /// Text of the root of a document that consists of one element.
  static MaybeString textThrough(const std::string& text) {
    Document document("root");
    document.root().append("a", text);
    auto parsed = Document::parse(document.bytes().value());
    return parsed.document ? parsed.document->root().firstChild()->text() : MaybeString("(refused)");
  }
};

TEST_F(XMLDocument, IsWrittenIndentedWithTextLeftAsItIs) {
  Document document("channel");
  document.root().append("Title", "Salt & <Pepper> \"both\"");
  document.root().append("Link");
  auto post = document.root().append("Post");
  post.append("Url", "http://x/1?a=1&b=2");
  EXPECT_EQ(document.bytes(),
            "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
            "<channel>\n"
            "  <Title>Salt &amp; &lt;Pepper&gt; \"both\"</Title>\n"
            "  <Link></Link>\n"
            "  <Post>\n"
            "    <Url>http://x/1?a=1&amp;b=2</Url>\n"
            "  </Post>\n"
            "</channel>\n");
}

TEST_F(XMLDocument, ReadsBackEveryTextThatItWrites) {
  for (const std::string text : {"plain", " blanks at both ends ", "   ", "two\nlines", "tab\there", "a\r\nb",
                                 "]]>", "&amp;", "Grüße 日本 🎧", "\n\n"}) {
    EXPECT_EQ(textThrough(text), text);
  }
  EXPECT_EQ(textThrough(""), std::nullopt);
}

TEST_F(XMLDocument, LeavesOutWhatXMLForbids) {
  EXPECT_EQ(textThrough(std::string("a\0b\x01\x1f\x7f", 6)), "ab\x7f");
  EXPECT_EQ(textThrough("no UTF-8: \xff\xc3(\xed\xa0\x80 end"), "no UTF-8: ( end");
  EXPECT_EQ(textThrough("\xef\xbf\xbe\xef\xbf\xbf"), std::nullopt);
}

TEST_F(XMLDocument, WrittenReadAndWrittenAgainIsTheSameByteForByte) {
  Document document("channel");
  document.root().append("Title", "a\r\n\t<b> & c");
  document.root().append("Post").append("Url", "  ");
  std::string bytes = document.bytes().value();
  EXPECT_EQ(rewritten(bytes), bytes);
  EXPECT_EQ(rewritten(rewritten(bytes)), bytes);
}

TEST_F(XMLDocument, FindsElementsByNameAndRemovesThem) {
  auto parsed = Document::parse("<r>x<a>1</a> y <b/><a>2</a></r>");
  ASSERT_TRUE(parsed.document);
  auto root = parsed.document->root();
  EXPECT_EQ(root.firstChild("a")->text(), "1");
  EXPECT_EQ(root.firstChild("c"), std::nullopt);
  root.firstChild("a")->remove();
  EXPECT_EQ(root.firstChild()->name(), "b");
  EXPECT_EQ(root.firstChild()->next()->text(), "2");
  EXPECT_EQ(root.firstChild()->next()->next(), std::nullopt);
}

TEST_F(XMLDocument, TakesPrefixesCommentsAndCDATAAsTheyCome) {
  EXPECT_EQ(rewritten("<a><!-- no --><i:b>1</i:b><?pi no?><j:c xmlns:j=\"x\"><![CDATA[<&>]]></j:c></a>"),
            "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
            "<a>\n  <i:b>1</i:b>\n  <j:c>&lt;&amp;&gt;</j:c>\n</a>\n");
}

TEST_F(XMLDocument, ReadsOtherEncodings) {
  EXPECT_NE(rewritten("<?xml version='1.0' encoding='iso-8859-1'?><a>\xe4</a>").find("<a>ä</a>"),
            std::string::npos);
  std::string wide = "\xff\xfe";
  for (char c : std::string("<?xml version='1.0' encoding='utf-16'?><a>hi</a>")) wide += {c, '\0'};
  EXPECT_NE(rewritten(wide).find("<a>hi</a>"), std::string::npos);
}

TEST_F(XMLDocument, RefusesWhatIsNoXMLWithTheFirstReason) {
  const std::pair<std::string, const char*> kRows[] = {
      {"", "Document is empty"},
      {"hello", "Start tag expected"},
      {"<a>\n<b></a>", "line 2: Opening and ending tag mismatch"},
      {"<a>", "Premature end of data"},
      {"<a/>more", "Extra content"},
      {"<a>\x01</a>", "invalid Char"},
      {std::string("<a>\0</a>", 8), ""},
      {"<a>\xff\xfe</a>", "not proper UTF-8"},
      {"<a>" + repeated("x", 1'000'000) + "\xff</a>", "not proper UTF-8"},
      {"<?xml version='1.0' encoding='klingon'?><a/>", "Unsupported encoding"},
      {"<a>&nobody;</a>", "nobody"},
      {"\x1f\x8b\x08\x00 compressed", "Start tag expected"},
  };
  for (const auto& [bytes, reason] : kRows) {
    std::string error = refusal(bytes);
    EXPECT_NE(error, "") << bytes.substr(0, 80);
    EXPECT_NE(error.find(reason), std::string::npos) << error;
  }
  EXPECT_NE(Document::parse(std::string_view()).error, "") << "no bytes at all, not even an address of them";
}

TEST_F(XMLDocument, IsValidatedAgainstItsInternalSubsetWhenItDeclaresAType) {
  EXPECT_EQ(refusal("<!DOCTYPE a [<!ELEMENT a (b*)><!ELEMENT b (#PCDATA)>]><a><b>1</b><b/></a>"), "");
  EXPECT_EQ(refusal("<!DOCTYPE a [<!ELEMENT a EMPTY><!ATTLIST a x CDATA #REQUIRED>]><a x='1'/>"), "");
  const std::string kInvalid[] = {
      "<!DOCTYPE a [<!ELEMENT a (b*)><!ELEMENT b EMPTY>]><a><b>1</b></a>",
      "<!DOCTYPE a [<!ELEMENT a (b)><!ELEMENT b EMPTY>]><a/>",
      "<!DOCTYPE a [<!ELEMENT a EMPTY><!ATTLIST a x CDATA #REQUIRED>]><a/>",
      "<!DOCTYPE a [<!ELEMENT b EMPTY>]><a/>",
      "<!DOCTYPE b [<!ELEMENT a EMPTY>]><a/>",
      "<!DOCTYPE a><a/>",
  };
  for (const std::string& bytes : kInvalid) EXPECT_NE(refusal(bytes), "") << bytes;
}

TEST_F(XMLDocument, ReplacesEntitiesThatStandForText) {
  auto parsed = Document::parse(
      "<!DOCTYPE a [<!ELEMENT a (#PCDATA)><!ENTITY who 'Tom &amp; &#38;#74;erry'>]>"
      "<a>Hello &who;, &who;!</a>");
  ASSERT_TRUE(parsed.document) << parsed.error;
  EXPECT_EQ(parsed.document->root().text(), "Hello Tom & Jerry, Tom & Jerry!");
}

TEST_F(XMLDocument, LoadsNothingFromOutside) {
  // Nobody ever writes into the pipe: whoever opens it waits for ever.
  Sandbox sandbox;
  std::string pipe = sandbox.at("pipe");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  std::string any = "<!ELEMENT a ANY>";
  for (const std::string& url : {pipe, "file://" + pipe, std::string("http://127.0.0.1:9/x.dtd")}) {
    EXPECT_NE(refusal("<!DOCTYPE a SYSTEM '" + url + "'><a/>"), "");
    EXPECT_NE(refusal("<!DOCTYPE a PUBLIC 'x' '" + url + "'><a/>"), "");
    EXPECT_NE(refusal("<!DOCTYPE a [" + any + "<!ENTITY x SYSTEM '" + url + "'>]><a>&x;</a>"), "");
    EXPECT_NE(refusal("<!DOCTYPE a [" + any + "<!ENTITY % x SYSTEM '" + url + "'> %x;]><a/>"), "");
    EXPECT_NE(refusal("<!DOCTYPE a [" + any + "<!NOTATION n SYSTEM 'n'><!ENTITY x SYSTEM '" + url +
                      "' NDATA n>]><a/>"),
              "");
    // With a type that is complete by itself, the rest is not missed either.
    EXPECT_EQ(refusal("<!DOCTYPE a SYSTEM '" + url + "' [" + any + "]><a/>"), "");
    EXPECT_EQ(refusal("<a><x:include xmlns:x='http://www.w3.org/2001/XInclude' href='" + url + "'/></a>"),
              "");
  }
}

TEST_F(XMLDocument, RefusesEntitiesThatBlowUp) {
  std::string any = "<!DOCTYPE a [<!ELEMENT a ANY>";
  const std::string kBombs[] = {
      any + "<!ENTITY b 'bbbbbbbbbb'><!ENTITY c '&b;&b;&b;&b;'><!ENTITY d '&c;&c;&c;'>]><a>&d;</a>",
      any + "<!ENTITY b '" + repeated("b", 15'000) + "'>]><a>" + repeated("&b;", 100'000) + "</a>",
      any + "<!ENTITY b '&b;'>]><a>&b;</a>",
      any + "<!ENTITY b '&c;'><!ENTITY c '&b;'>]><a x='&b;'/>",
      any + "<!ENTITY b '<a/>'>]><a>&b;</a>",
      any + "<!ENTITY % b '" + repeated("<!-- -->", 100) + "'><!ENTITY % c '" + repeated("&#37;b;", 100) +
          "'>" + repeated("%c;", 100) + "]><a/>",
  };
  for (const std::string& bomb : kBombs) EXPECT_NE(refusal(bomb), "") << bomb.substr(0, 100);
}

TEST_F(XMLDocument, AcceptsSixtyFourLevelsAndNoMore) {
  EXPECT_EQ(refusal(repeated("<a>", 64) + repeated("</a>", 64)), "");
  EXPECT_EQ(refusal(repeated("<a>", 65) + repeated("</a>", 65)), "elements are nested too deeply");
  EXPECT_EQ(refusal(repeated("<a>", 5'000'000)), "elements are nested too deeply");
}

TEST_F(XMLDocument, AcceptsThirtyTwoMebibytesAndNoMore) {
  std::string start = "<a>", end = "</a>";
  std::string text = repeated("x", Document::kLongest - start.size() - end.size());
  EXPECT_EQ(refusal(start + text + end), "");
  EXPECT_EQ(refusal(start + text + "x" + end), "the document is longer than 32 MiB");
}

TEST_F(XMLDocument, AcceptsAsManyElementsAsTheLongestIndexHas) {
  EXPECT_EQ(refusal("<a>" + repeated("<b/>", 1'310'000) + "</a>"), "");
}

TEST_F(XMLDocument, IsNotWrittenWhenItCouldNotBeReadBack) {
  Document document("a");
  document.root().append("b", repeated("x", Document::kLongest));
  EXPECT_EQ(document.bytes(), std::nullopt);
  Document fits("a");
  fits.root().append("b", repeated("x", 11'000'000));
  EXPECT_EQ(refusal(fits.bytes().value()), "");
}

/// Each of these has taken other readers minutes, or gigabytes.
TEST_F(XMLDocument, RefusesOrReadsHostileDocumentsInBoundedTime) {
  std::string manyAttributes = "<a", manyNamespaces = "<a", alternatives;
  for (int i = 0; i < 400'000; ++i) manyAttributes += " b" + std::to_string(i) + "=''";
  for (int i = 0; i < 4'000; ++i) manyNamespaces += " xmlns:b" + std::to_string(i) + "='x'";
  for (int i = 0; i < 200; ++i) alternatives += "|c" + std::to_string(i);
  const std::pair<std::string, bool> kRows[] = {
      {manyAttributes + "/>", false},
      {manyNamespaces + ">" + repeated("<z:a/>", 500'000) + "</a>", false},
      {"<a>" + repeated("<b/>", 2'000'000) + "</a>", false},
      {"<a>" + repeated("<!---->", 500'000) + "</a>", true},
      {"<a>" + repeated("&#65;", 500'000) + "</a>", true},
      {"<!DOCTYPE a [<!ATTLIST a x (" + repeated("aaaa|", 500'000) + "b) 'b'>]><a/>", false},
      {"<!DOCTYPE a [<!ELEMENT a (" + repeated("a|", 500'000) + "b)*>]><a/>", false},
      {"<!DOCTYPE a [<!ELEMENT a " + repeated("(", 5'000) + "b" + repeated(")", 5'000) + ">]><a/>", false},
      {"<!DOCTYPE a [" + repeated("<!ELEMENT a EMPTY>", 500'000) + "]><a/>", false},
      {"<!DOCTYPE a [<!ELEMENT a (" + repeated("b?,", 200) + "b)><!ELEMENT b EMPTY>]><a>" +
           repeated("<b/>", 150) + "</a>",
       false},
      {"<!DOCTYPE a [<!ELEMENT a (#PCDATA" + alternatives + "|b)*><!ELEMENT b EMPTY>]><a>" +
           repeated("<b/>", 100'000) + "</a>",
       true},
      {"<!DOCTYPE a [<!ELEMENT a ANY><!ATTLIST a x CDATA '" + repeated("y", 10'000) + "'>]><a>" +
           repeated("<a/>", 100'000) + "</a>",
       true},
  };
  for (const auto& [bytes, accepted] : kRows)
    EXPECT_EQ(refusal(bytes) == "", accepted) << bytes.substr(0, 60);
}

}  // namespace
}  // namespace umsservice::testing
