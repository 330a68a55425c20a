#include <gmock/gmock.h>

#include "krx/Support.h"
#include "krx/krxmaddr.h"

namespace krxtest {
namespace {

constexpr char PLAIN[] = "Subject: x\n\nbody\n.\n";

class Envelope : public Spool {
 protected:
  // The envelope that comes out when the message is loaded with this one and stored.
  std::string rewrite(const std::string& envelope) {
    put("M", PLAIN, envelope);
    unsigned int status = 0;
    const auto message = next(status);
    message->storeMessage(status);
    EXPECT_EQ(status, 0U);
    return withLf(
        readFile(out() + static_cast<KRX_Message&>(*message).envelopeFile().c_str()));
  }
};

TEST_F(Envelope, FieldsBecomeHeadersAndAddresses) {
  const std::string state =
      load(PLAIN, "MESSAGE-ID: <M@here>\nreturn-path: s@a\nX-Queue: 7\nRecipient: a@b\n"
                  "RECIPIENT:\n c@\n d\nRecipient: a@B\n\n \t\n");
  EXPECT_EQ(state,
            "RCPMESSAGEID| <M@here>\n"
            "Rcp-Unknown(X-Queue)| 7\n"
            "SUBJECT| x\n"
            "FROMADDR s at a\n"
            "BCCADDR a at b\n"
            "BCCADDR c at d\n"
            "body \"<body>\" MIME_Text: body\n\n");
}

TEST_F(Envelope, WhatIsNoEnvelopeIsRefused) {
  const std::string start = "Message-ID: <M@here>\n";
  for (const std::string& bad : std::vector<std::string>
       {start + "no field\n", " starts with a blank: x\n", start + "\ntext after the block\n",
        start + "bad-header: x\n", start + "Recipient: " + std::string(1077, 'a') + "\n",
        start + "X: " + std::string(1200, 'a') + "\n",
        start + "Recipient: " + std::string(600, 'a') + "\n " + std::string(600, 'b') + "\n"}) {
    EXPECT_EQ(load(PLAIN, bad).substr(0, 13), "status 11981\n") << bad.substr(0, 60);
  }
  EXPECT_NE(load(PLAIN, start + "Recipient: " + std::string(1076, 'a') + "\n").substr(0, 6),
            "status");
}

TEST_F(Envelope, AnAddressThatIsNoneEndsTheReading) {
  EXPECT_EQ(load(PLAIN, "Return-path: <>\nRecipient: a@b\n"), "status 10132\n");
  EXPECT_EQ(load(PLAIN, "Recipient: <postmaster>\n"), "status 10132\n");
  EXPECT_EQ(takeLogText(),
            "11:1 Message M.RCP could not be loaded, status 10132.\n"
            "11:1 Message M.RCP could not be loaded, status 10132.\n");
}

TEST_F(Envelope, ARelayedAddressMarksTheMessageAndTheMailCannotClearTheMark) {
  put("M", "SpoofWarning: FALSE\nspoofwarning: no\n\nx\n",
      "Recipient: h!u@gw\nReturn-path: s@a\n");
  put("N", "SpoofWarning: TRUE\n\nx\n");
  unsigned int status = 0;
  for (int i = 0; i < 2; ++i) {
    const auto message = next(status);
    const bool relayed =
        static_cast<KRX_Message&>(*message).envelopeFile() == SCL_StringRef("M.RCP");
    const ATR_Attribute* mark = message->attributes().find("SpoofWarning");
    EXPECT_EQ(mark != nullptr ? mark->getString() : SCL_String("none"),
              SCL_StringRef(relayed ? "TRUE" : "none"));
  }
}

TEST_F(Envelope, IsWrittenInItsFixedOrder) {
  EXPECT_EQ(rewrite("Recipient: a@b\nX-Queue: 7\n more\nRecipient: Bob <c@d>\nReturn-path:\n"
                    "Message-ID: <M@here>\n"),
            "Message-ID: <M@here>\nX-Queue: 7\n more\nReturn-path: \nRecipient: a@b\n"
            "Recipient: Bob <c@d>\n");
  const std::string again = rewrite("Return-path: s@a\nMessage-ID: <M@here>\n");
  EXPECT_THAT(again, testing::MatchesRegex("Message-ID: <C[0-9]*@here>\nReturn-path: s@a\n"));
}

TEST_F(Envelope, NoValueCanBeginALineOfItsOwn) {
  unsigned int status = 0;
  const std::unique_ptr<GMA_Message> message(m_office->newMessage());
  KRX_Maddr address(gma::TOADDR, "x", "y");
  address.setOriginal("x@y\r\nRecipient: victim@z");
  message->addAddress(address);
  SCL_StringTable lines;
  lines.add(" one");
  lines.add("Recipient: victim@z");
  lines.add("  ");
  message->headers().add(GMA_Mhdr(gma::RCP_UNKNOWN, "X-A\nB", lines));
  message->storeMessage(status);
  ASSERT_EQ(status, 0U);
  const std::string name = static_cast<KRX_Message&>(*message).envelopeFile().c_str();
  const std::string envelope = withLf(readFile(out() + name));
  EXPECT_EQ(envelope.substr(envelope.find('\n') + 1),
            "X-A B: one\n Recipient: victim@z\nReturn-path: \n"
            "Recipient: x@y  Recipient: victim@z\n");
}

TEST_F(Envelope, SentAddressesAreNotDeliveredAgain) {
  unsigned int status = 0;
  const std::unique_ptr<GMA_Message> message(m_office->newMessage());
  for (const std::uint32_t type : {gma::SENTTOADDR, gma::TOADDR, gma::CCADDR, gma::BCCADDR,
                                   gma::RESENTTOADDR, gma::APPARENTLYTOADDR, gma::FROMADDR}) {
    message->addAddress(KRX_Maddr(type, std::to_string(type).c_str(), "x"));
  }
  message->storeMessage(status);
  const std::string name = static_cast<KRX_Message&>(*message).envelopeFile().c_str();
  const std::string envelope = withLf(readFile(out() + name));
  EXPECT_EQ(envelope.substr(envelope.find('\n') + 1),
            "Return-path: 1@x\nRecipient: 2@x\nRecipient: 4@x\nRecipient: 8@x\nRecipient: 34@x\n"
            "Recipient: 66@x\n");
}

}  // namespace
}  // namespace krxtest
