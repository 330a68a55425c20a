// The envelope file, read and written.
#include "krx/Support.h"
#include "krx/krxmaddr.h"

namespace krxtest {
namespace {

constexpr char PLAIN[] = "Subject: x\n\nbody\n.\n";

class Envelope : public Spool {
 protected:
  Envelope() : m_message(m_office->newMessage()) {}
  // The envelope as which a message is stored, or "status N".
  std::string stored(GMA_Message& message) {
    const unsigned int status = store(message);
    return status == 0 ? outEnvelope(baseName(message)) : "status " + std::to_string(status);
  }
  static std::string withoutId(const std::string& envelope) {
    return envelope.substr(envelope.find('\n') + 1);
  }
  void add(const char* name, const SCL_StringTable& lines) {
    m_message->headers().add(GMA_Mhdr(gma::RCP_UNKNOWN, name, lines));
  }

  const std::unique_ptr<GMA_Message> m_message;
};

TEST_F(Envelope, FieldsBecomeHeadersAndAddresses) {
  EXPECT_EQ(load(PLAIN,
                 "MESSAGE-ID: <M@here>\nreturn-path: s@a\nX-Queue: 7\nRecipient: a@b\n"
                 "RECIPIENT:\n c@\n d\nRecipient: a@B\n\n \t\n"),
            "RCPMESSAGEID| <M@here>\nRcp-Unknown(X-Queue)| 7\nSUBJECT| x\nFROMADDR s at a\n"
            "BCCADDR a at b\nBCCADDR c at d\nbody \"<body>\" MIME_Text: body\n\n");
}

TEST_F(Envelope, WhatIsNoEnvelopeIsRefused) {
  const std::string start = "Message-ID: <M@here>\n";
  const std::string half(600, 'a');
  for (const std::string& bad : {start + "no field\n", std::string(" starts with a blank: x\n"),
                                 start + "\ntext after the block\n", start + "bad-header: x\n",
                                 start + "X: " + std::string(1084, 'a') + "Recipient: a@b\n",
                                 start + "Recipient: " + std::string(1077, 'a') + "\n",
                                 start + "Recipient: " + half + "\n " + half + "\n"}) {
    EXPECT_EQ(load(PLAIN, bad).substr(0, 13), "status 11981\n") << bad.substr(0, 60);
  }
  EXPECT_THAT(load(PLAIN, start + "Recipient: " + std::string(1076, 'a') + "\n"),
              testing::StartsWith("RCPMESSAGEID"));
  for (const char* none : {"Return-path: <>\nRecipient: a@b\n", "Recipient: <postmaster>\n"}) {
    EXPECT_EQ(load(PLAIN, none), "status 10132\n");
  }
}

TEST_F(Envelope, MoreThanTheTablesHoldIsRefusedAndTold) {
  std::string headers;
  std::string recipients;
  for (int i = 0; i < 65536; ++i) {
    headers += "X:\n";
    recipients += "Recipient: " + std::to_string(i) + "\n";
  }
  EXPECT_THAT(load(PLAIN, headers), testing::StartsWith("status 11981\n"));
  EXPECT_THAT(load(PLAIN, recipients + "Recipient: 0\n"), testing::StartsWith("status 11981\n"));
  EXPECT_EQ(takeLogText(),
            "11:1 Too many headers, the rest is left out.\n"
            "11:1 Message M.RCP could not be loaded, status 11981.\n"
            "11:1 Too many addresses, the rest is left out.\n"
            "11:1 Message M.RCP could not be loaded, status 11981.\n");
}

TEST_F(Envelope, ARelayedAddressMarksTheMessageAndTheMailCannotChangeTheMark) {
  for (const auto& [recipient, mark] : {std::pair("h!u@gw", "TRUE"), std::pair("u@gw", "none")}) {
    const auto message = fetched("SpoofWarning: FALSE\nspoofwarning: no\n\nx\n",
                                 std::string("Recipient: ") + recipient + "\n");
    const ATR_Attribute* found = message->attributes().find("SpoofWarning");
    EXPECT_EQ(found != nullptr ? found->getString() : SCL_String("none"), mark);
  }
}

TEST_F(Envelope, IsWrittenInItsFixedOrder) {
  EXPECT_EQ(stored(*fetched(PLAIN,
                            "Recipient: a@b\nX-Queue: 7\n more\nRecipient: Bob <c@d>\n"
                            "Return-path:\nMessage-ID: <M@here>\n")),
            "Message-ID: <M@here>\nX-Queue: 7\n more\nReturn-path: \nRecipient: a@b\n"
            "Recipient: Bob <c@d>\n");
}

TEST_F(Envelope, NoValueCanBeginALineOfItsOwn) {
  KRX_Maddr address(gma::TOADDR, "x", "y");
  address.setOriginal("x@y\r\nRecipient: victim@z");
  m_message->addAddress(address);
  SCL_StringTable lines;
  for (const char* line : {" one", "Recipient: victim@z", "  "}) {
    lines.add(line);
  }
  add("X-A\nB", lines);
  lines.set(0, "Recipient: victim@z");
  add("", lines);
  EXPECT_EQ(withoutId(stored(*m_message)),
            "X-A B: one\n Recipient: victim@z\nReturn-path: \n"
            "Recipient: x@y  Recipient: victim@z\n");
}

TEST_F(Envelope, AnAddressThatNoReaderWouldTakeIsNotWritten) {
  m_message->addAddress(KRX_Maddr(gma::BCCADDR, std::string(1074, 'u').c_str(), "x"));
  EXPECT_EQ(withoutId(stored(*m_message)).size(), 14U + 1088);
  m_message->addAddress(KRX_Maddr(gma::BCCADDR, std::string(1075, 'u').c_str(), "x"));
  EXPECT_EQ(stored(*m_message), "status 11981");
}

TEST_F(Envelope, SentAddressesAreNotDeliveredAgain) {
  for (const std::uint32_t type : {gma::SENTTOADDR, gma::TOADDR, gma::CCADDR, gma::BCCADDR,
                                   gma::RESENTTOADDR, gma::APPARENTLYTOADDR, gma::FROMADDR}) {
    m_message->addAddress(KRX_Maddr(type, std::to_string(type).c_str(), "x"));
  }
  EXPECT_EQ(withoutId(stored(*m_message)),
            "Return-path: 1@x\nRecipient: 2@x\nRecipient: 4@x\nRecipient: 8@x\nRecipient: 34@x\n"
            "Recipient: 66@x\n");
}

}  // namespace
}  // namespace krxtest
