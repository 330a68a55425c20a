// The message: content, copies for another post office, standard attributes.
#include "dac/DACATTRN.h"
#include "gma/Support.h"

using gmatest::attributesOf;
using gmatest::content;

namespace {

class MessageTest : public testing::Test {
 protected:
  void address(std::uint32_t type, const char* user) {
    GMA_Maddr added;
    added.setType(type);
    added.setOriginal(user);
    added.setUser(user);
    added.setFriendly("Display name");
    message.addAddress(added);
  }
  // Body and items, originals marked with "!".
  static std::string contentOf(GMA_Message& of) {
    std::string text = gmatest::contentOf(of.getBody());
    for (std::uint16_t i = 0; i < of.itemCount(); ++i) {
      text += (of.isItemOriginal(i) ? ",!" : ",") + gmatest::contentOf(of.getItemData(i));
    }
    return text;
  }
  std::string standardAttributes() {
    message.setStandardAttributes();
    return attributesOf(message.attributes());
  }

  gmatest::PostOffice postOffice;
  gmatest::Message message{&postOffice};
};

// Counts how many of its kind are alive.
class Counted : public DAC_MemoryDataAccess {
 public:
  Counted() { ++alive; }
  ~Counted() override { --alive; }
  static inline int alive = 0;
};

}  // namespace

TEST_F(MessageTest, AnotherBodyMakesTheOldOneTheFirstItem) {
  EXPECT_EQ(contentOf(message), "none");
  message.setBody(content("body"));
  message.addItem(content("a"), true);
  message.addItem(content("b"), true);
  message.setBody(content("new"));
  EXPECT_EQ(contentOf(message), "new,body,!a,!b");
  const std::string refused = "Message item index out of range. in GMAMSG";
  EXPECT_EQ(failureOf([&] { message.getItemData(3); }), refused);
  EXPECT_EQ(failureOf([&] { message.isItemOriginal(3); }), refused);
  EXPECT_EQ(failureOf([&] { message.setItemData(3, nullptr); }), refused);
}

TEST_F(MessageTest, OwnsItsContentButNotWhatWasReplaced) {
  {
    gmatest::Message owner(&postOffice);
    owner.setBody(new Counted);
    owner.setBody(new Counted);
    const std::unique_ptr<DAC_BaseDataAccess> body(owner.getBody());
    const std::unique_ptr<DAC_BaseDataAccess> item(owner.getItemData(0));
    owner.setBodyPointer(new Counted);
    owner.setItemData(0, new Counted);
    EXPECT_EQ(Counted::alive, 4);
    owner.clearContent();
    EXPECT_EQ(Counted::alive, 2);
    EXPECT_EQ(contentOf(owner), "none");
    owner.addItem(new Counted, false);
  }
  EXPECT_EQ(Counted::alive, 0);
}

TEST_F(MessageTest, AnItemTooManyIsDeletedAndTheMessageStaysAsItWas) {
  for (unsigned int i = 0; i < 65535; ++i) {
    message.addItem(nullptr, false);
  }
  message.setBody(new Counted);
  const std::string refused = "Index out of range in sclpvec";
  EXPECT_EQ(failureOf([&] { message.addItem(new Counted, false); }), refused);
  EXPECT_EQ(failureOf([&] { message.setBody(new Counted); }), refused);
  EXPECT_EQ(Counted::alive, 1);
  EXPECT_EQ(message.itemCount(), 65535);
}

TEST_F(MessageTest, ACopyRefersToTheContentOfItsSource) {
  address(gma::TOADDR, "joe");
  message.headers().add(GMA_Mhdr(gma::SUBJECT, "Hello"));
  message.attributes().setString("X", "1");
  message.setBody(content("body"));
  message.addItem(content("item"), true);
  message.addItem(nullptr, false);
  message.setTag(7);
  gmatest::PostOffice other("Other");
  const std::unique_ptr<GMA_Message> copy(message.transferTo(other));
  EXPECT_EQ(contentOf(*copy), "body,!item,none");
  EXPECT_EQ(attributesOf(copy->attributes()), "X=1;");
  EXPECT_EQ(std::string(copy->headers().get(0)->firstLine()), "Hello");
  EXPECT_EQ(gmatest::textOf(*copy->addresses().get(0)), "joe");
  EXPECT_EQ(copy->addresses().get(0)->getFriendly(), "");
  EXPECT_TRUE(message.isTransferred() && message.isInform());
  EXPECT_FALSE(copy->isTransferred() || copy->isInform());
  EXPECT_EQ(copy->tag(), 7U);
  unsigned int status = 0;
  message.getBody()->setSize(2, status);
  EXPECT_EQ(contentOf(*copy), "bo,!item,none");
}

TEST_F(MessageTest, OnlyAddressesKeepAMessageFromAnotherKindOfPostOffice) {
  gmatest::PostOffice other("Other", 1);
  EXPECT_NE(std::unique_ptr<GMA_Message>(message.transferTo(other)), nullptr);
  address(gma::TOADDR, "joe");
  EXPECT_EQ(failureOf([&] { message.transferTo(other); }),
            "Source and destination post offices of different type. in GMATXADR");
}

TEST_F(MessageTest, ListsRecipientsByRoleAndTheLastOfAllElse) {
  const std::pair<std::uint32_t, const char*> addresses[] = {
      {gma::FROMADDR, "first"}, {gma::TOADDR, "a"},           {gma::RESENTTOADDR, "b"},
      {gma::CCADDR, "c"},       {gma::SENTTOADDR, "d"},       {gma::SENTBCCADDR, "e"},
      {gma::RESENTCCADDR, "f"}, {gma::APPARENTLYTOADDR, "g"}, {gma::RESENTFROMADDR, "last"}};
  for (const auto& [type, user] : addresses) {
    address(type, user);
  }
  message.headers().add(GMA_Mhdr(gma::SUBJECT, "old"));
  message.headers().add(GMA_Mhdr(gma::SUBJECT, "new"));
  message.headers().get(1)->value().add(" line");
  message.headers().add(GMA_Mhdr(gma::SENTDATE, "today"));
  message.headers().add(GMA_Mhdr(gma::PRIORITY, "high"));
  EXPECT_EQ(standardAttributes(),
            "To=a, b, d;Cc=c, f;Bcc=e;From=last;Return-Path=last;Recipient=a, b, c, f;"
            "Subject=new line;SentDate=today;Priority=high;"
            "NumAttachments=#0;MessageSize=#0;SourcePostOffice=Main;");
}

TEST_F(MessageTest, AttributesThatAreThereInAnyLetterCaseAreKept) {
  address(gma::TOADDR, "a");
  address(gma::FROMADDR, "b");
  message.attributes().setString("TO", "forged");
  message.attributes().setInteger("from", 1);
  message.attributes().setString("SourcePostOffice", "Elsewhere");
  EXPECT_EQ(standardAttributes(),
            "TO=forged;from=#1;SourcePostOffice=Main;Return-Path=b;Recipient=a;"
            "NumAttachments=#0;MessageSize=#0;");
}

TEST_F(MessageTest, TheSizeIsTheSumOfWhatThePartsCarryOrHave) {
  message.setBody(content("12345"));
  message.addItem(content("123"), true);
  message.addItem(content("12"), true);
  message.addItem(nullptr, false);
  message.getItemData(0)->setIntegerAttribute(dac::ATTACHMENT_SIZE, 100);
  message.getItemData(1)->setStringAttribute(dac::ATTACHMENT_SIZE, "planted");
  EXPECT_EQ(standardAttributes(), "NumAttachments=#3;MessageSize=#107;SourcePostOffice=Main;");
  EXPECT_EQ(attributesOf(message.getBody()->attributes()), "AttachmentSize=#5;");
  EXPECT_EQ(attributesOf(message.getItemData(1)->attributes()), "AttachmentSize=#2;");
  message.getItemData(0)->setIntegerAttribute(dac::ATTACHMENT_SIZE, 0xFFFFFFFF);
  message.setStandardAttributes();
  EXPECT_EQ(message.attributes().find("MessageSize")->getInteger(), 0xFFFFFFFF);
}

TEST_F(MessageTest, TheUniqueIdIsReadOnce) {
  EXPECT_EQ(std::string(message.getUniqueId()), "");
  message.attributes().setInteger("UniqueId", 5);
  EXPECT_EQ(failureOf([&] { message.getUniqueId(); }),
            "Attribute does not have a string value. in ATRATTR");
  message.attributes().setString("uniqueid", "first");
  EXPECT_EQ(std::string(message.getUniqueId()), "first");
  message.attributes().setString("UniqueId", "second");
  EXPECT_EQ(std::string(message.getUniqueId()), "first");
}
