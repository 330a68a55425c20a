// The texts that a message makes of itself: notifications, dump, contents listing.
#include <fstream>

#include "dac/DACFILDA.h"
#include "gma/Support.h"
#include "scl/FailingMemory.h"

using gmatest::content;
using gmatest::dumpOf;

namespace {

class TextTest : public testing::Test {
 protected:
  void SetUp() override { gmatest::startLog(); }

  // The body after `text` was put behind (before) it; a nonzero status stands in front.
  std::string append(std::string_view text) { return add(&GMA_Message::appendText, text); }
  std::string prepend(std::string_view text) { return add(&GMA_Message::prependText, text); }
  template <class Operation>
  std::string add(Operation operation, std::string_view text) {
    const std::unique_ptr<DAC_BaseDataAccess> textTemplate(content(text));
    unsigned int status = 0;
    (message.*operation)(textTemplate.get(), status);
    return result(status);
  }
  std::string result(unsigned int status) {
    return (status == 0 ? "" : std::to_string(status) + " ") +
           gmatest::contentOf(message.getBody());
  }
  // One line, expanded into an otherwise empty body.
  std::string expand(const std::string& line) {
    message.clearContent();
    return append(line + "\n");
  }

  gmatest::PostOffice postOffice;
  gmatest::Message message{&postOffice};
};

}  // namespace

TEST_F(TextTest, AppendedTextBeginsOnALineOfItsOwn) {
  for (const char* body : {"old", "old\r\n", "x", ""}) {
    message.clearContent();
    message.setBody(content(body));
    const std::string text = body;
    EXPECT_EQ(append("new\n"), (text.ends_with("\n") ? text : text + "\r\n") + "new\r\n");
  }
}

TEST_F(TextTest, PrependedTextStandsBeforeABodyThatEndsALine) {
  EXPECT_EQ(prepend("new\n"), "new\r\n");
  message.clearContent();
  message.setBody(content("old"));
  EXPECT_EQ(prepend("one\r\ntwo\n\n"), "one\r\ntwo\r\n\r\nold\r\n");
}

TEST_F(TextTest, TheNewBodyTakesTheOldOnesAttributesAndTheNoteOnIt) {
  message.setBody(content("old"));
  message.addItem(content("item"), true);
  message.getBody()->setIntegerAttribute("AttachmentSize", 3);
  message.m_described = message.getBody();
  append("new\n");
  EXPECT_EQ(message.m_described, message.getBody());
  prepend("newer\n");
  EXPECT_EQ(gmatest::attributesOf(message.getBody()->attributes()), "AttachmentSize=#3;");
  EXPECT_EQ(message.m_described, message.getBody());
  message.m_described = message.getItemData(0);
  append("newest\n");
  EXPECT_EQ(message.m_described, message.getItemData(0));
  message.clearContent();
  EXPECT_EQ(message.m_described, nullptr);
}

TEST_F(TextTest, WithoutMemoryForANewBodyTheOldOneStays) {
  message.setBody(content("old"));
  const std::unique_ptr<DAC_BaseDataAccess> textTemplate(content("new\n"));
  for (const auto operation : {&GMA_Message::appendText, &GMA_Message::prependText}) {
    unsigned int status = 0;
    failingAllocation = 1;
    (message.*operation)(textTemplate.get(), status);
    EXPECT_EQ(result(status), "10110 old");
  }
}

TEST_F(TextTest, AFailingTemplateLeavesThePrependedBodyAndCutsTheAppendedText) {
  const std::string tooLong = "line\n" + std::string(1024, 'x') + "\nrest\n";
  message.setBody(content("old"));
  EXPECT_EQ(prepend(tooLong), "10014 old");
  EXPECT_EQ(append(tooLong), "10014 old\r\nline\r\n");
  EXPECT_EQ(append(std::string(1023, 'x') + "\n").size(), 11U + 1023 + 2);
  unsigned int status = 5;
  message.appendText(nullptr, status);
  status = 0;
  EXPECT_EQ(failureOf([&] { message.appendText(nullptr, status); }), "Null pointer in GMAMSG");
}

TEST_F(TextTest, AnUnendedLastLineIsWrittenFromAFileButNotFromMemory) {
  EXPECT_EQ(append("one\ntwo"), "10014 one\r\n");
  message.clearContent();
  const std::string path = testing::TempDir() + "gma-" + std::to_string(getpid()) + ".txt";
  std::ofstream(path) << "one\ntwo";
  unsigned int status = 0;
  DAC_FileDataAccess file(path.c_str(), DAC_FileDataAccess::DELETE_ON_CLOSE, status);
  message.appendText(&file, status);
  EXPECT_EQ(result(status), "one\r\ntwo\r\n");
}

TEST_F(TextTest, PlaceholdersTakeTrimmedValuesFromTheMessage) {
  message.headers().add(GMA_Mhdr(gma::SENTDATE, " 1 Jan 1999 "));
  message.headers().add(GMA_Mhdr(gma::SUBJECT, "Hello"));
  message.headers().get(1)->value().add("second line");
  message.addAddress(GMA_Maddr(gma::TOADDR, "to", "example"));
  message.addAddress(GMA_Maddr(gma::FROMADDR, "joe", "example"));
  message.addAddress(GMA_Maddr(gma::FROMADDR, "other", "example"));
  EXPECT_EQ(expand("Sent on %DATE% by %SENDER%"), "Sent on 1 Jan 1999 by joe@example\r\n");
  EXPECT_EQ(expand("%subject%"), "Hello\r\n");
  EXPECT_EQ(expand("%MessageSize% bytes"), "%MessageSize% bytes\r\n");
  message.clearContent();
  message.setStandardAttributes();
  message.attributes().setInteger("Large", 0xFFFFFFFF);
  EXPECT_EQ(expand("%MessageSize%,%to%,%Large%"), "0,to@example,-1\r\n");
}

TEST_F(TextTest, PlaceholdersWithoutAValueAreEmptyAndOthersStay) {
  message.headers().add(GMA_Mhdr(gma::SUBJECT, SCL_StringTable()));
  EXPECT_EQ(expand("[%SENDER%%SUBJECT%%DATE%]"), "[]\r\n");
  for (const char* line : {"100% sure %DATE%", "%%", "%", "%none%", "50%% of %none%", ""}) {
    EXPECT_EQ(expand(line), std::string(line) + "\r\n");
  }
}

TEST_F(TextTest, PlaceholdersInsideValuesAreExpandedWithinBounds) {
  const std::string large(600000, 'y');
  const std::pair<const char*, const char*> values[] = {
      {"a", "<%b%>"},           {"b", "x"},
      {"half", "%b"},           {"self", "%self%x"},
      {"large", large.c_str()}, {"one", "%two%%two%"},
      {"two", "%one%%one%"}};
  for (const auto& [name, value] : values) {
    message.attributes().setString(name, value);
  }
  EXPECT_EQ(expand("%a%%a%"), "<x><x>\r\n");
  EXPECT_EQ(expand("%half%%"), "x\r\n");  // closed by what follows the value
  EXPECT_EQ(expand("%self%"), "%self%" + std::string(1000, 'x') + "\r\n");
  EXPECT_EQ(expand("%large%%large%"), large + "%large%\r\n");
  EXPECT_LT(expand("%one%").size(), 10000U);
}

TEST_F(TextTest, TheDumpShowsEveryField) {
  message.addAddress(GMA_Maddr(gma::TOADDR, "joe", "example"));
  message.headers().add(GMA_Mhdr(gma::X_HEADER, "X-Own", "value"));
  message.addItem(nullptr, true);
  message.addItem(content(""), false);
  message.attributes().setInteger("N", 1);
  EXPECT_EQ(dumpOf(message),
            "Dump \"it\" which is a \"GMA_Message\" at @ { m_is_inform = INFORM MESSAGE "
            "m_postoffice = \"Main\"; Dump \"m_addresses\" which is a \"GMA_MaddrTable\" at @ { "
            "m_num_addr = 1; Dump \"m_addrs[0]\" which is a \"GMA_Maddr\" at @ { m_type = TOADDR; "
            "m_user = \"joe\"; m_location = \"example\"; m_original = \"\"; m_friendly = \"\"; }; "
            "}; Dump \"m_headers\" which is a \"GMA_MhdrTable\" at @ { m_num_hdr = 1; "
            "Dump \"m_hdrs[0]\" which is a \"GMA_Mhdr\" at @ { m_type = X_HEADER; "
            "m_custom = \"X-Own\"; " +
                dumpOf(message.headers().get(0)->value(), "m_value") +
                "}; }; m_body = 0; m_num_item = 2; "
                "Dump \"m_items[0]\" which is a \"GMA_Item\" at @ { m_original = true }; "
                "Dump \"m_items[1]\" which is a \"GMA_Item\" at @ { m_original = false " +
                dumpOf(*message.getItemData(1), "m_data=") + "}; " +
                dumpOf(message.attributes(), "m_attrs") + "}; ");
}

TEST_F(TextTest, TheListingShowsAddressesHeadersAttributesAndASummary) {
  GMA_Maddr sender(gma::FROMADDR, "joe", "example");
  sender.setOriginal("joe@example\r\nforged");
  message.addAddress(sender);
  message.addAddress(GMA_Maddr(gma::SENTTOADDR, "sent", "example"));
  message.addAddress(GMA_Maddr(gma::TOADDR, "to", "example"));
  message.headers().add(GMA_Mhdr(gma::SUBJECT, "%s\r\nforged"));
  message.headers().add(GMA_Mhdr(gma::X_HEADER, "X-Own", "one"));
  message.headers().get(1)->value().add("two");
  message.headers().add(GMA_Mhdr(gma::COMMENTS, SCL_StringTable()));
  message.attributes().setString("A", "a");
  message.attributes().setInteger("N", 0xFFFFFFFE);
  message.addItem(content(""), true);
  message.getItemData(0)->setStringAttribute("Title", "t");
  message.getItemData(0)->setIntegerAttribute("Size", 3);
  message.addItem(nullptr, true);
  message.dumpContents("Mail");
  EXPECT_EQ(
      gmatest::logText(),
      "1 1/2 Contents of \"Mail\"\n1 1/2 \tAddress List\n1 1/2 \t\tFrom = \"joe@example  forged\"\n"
      "1 1/2 \t\tSentTo = \"sent@example\"\n1 1/2 \t\tTo = \"to@example\"\n"
      "1 1/2 \tHeaders\n1 1/2 \t\tSUBJECT = \"%s  forged\"\n"
      "1 1/2 \t\tX_HEADER::X-Own = \"one\"\n1 1/2 \t\t\t\"two\"\n1 1/2 \t\tCOMMENTS = \"\"\n"
      "1 1/2 \tAttributes\n1 1/2 \t\tA = \"a\"\n1 1/2 \t\tN = -2\n"
      "1 8/2 Attribute for Attachment 0\n1 8/2 \tAttribute 'Title' = 't'\n"
      "1 8/2 \tAttribute 'Size' = 3\n1 8/2 Attribute for Attachment 1\n"
      "0 1/1 Mail, From Address \"joe@example  forged\", To address \"to@example\", "
      "Message Subject \"%s  forged\"\n");
}

TEST_F(TextTest, TheSummaryNamesTheRecipientOfTheBestRank) {
  const auto summaryOf = [&](std::initializer_list<std::uint32_t> types) {
    message.addresses().clear();
    for (const std::uint32_t type : types) {
      message.addAddress(GMA_Maddr(type, std::to_string(message.addresses().count()).c_str(), ""));
    }
    gmatest::logText().clear();
    message.dumpContents("Mail");
    return gmatest::logText().substr(gmatest::logText().find("To address"), 15);
  };
  EXPECT_EQ(summaryOf({gma::CCADDR, gma::TOADDR, gma::TOADDR}), "To address \"1@\"");
  EXPECT_EQ(summaryOf({gma::BCCADDR, gma::SENTTOADDR, gma::SENTTOADDR}), "To address \"2@\"");
  EXPECT_EQ(summaryOf({gma::NULLADDR, gma::SENTCCADDR, gma::BCCADDR}), "To address \"1@\"");
  for (const std::uint32_t type : {33U, 34U, 66U, 128U}) {  // these have no label
    EXPECT_EQ(failureOf([&] { summaryOf({type}); }), "Bad value in switch in GMAMSG");
  }
}
