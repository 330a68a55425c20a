// The message file on its way out.
#include "dac/DACMEMDA.h"
#include "dv/DVDATTIM.h"
#include "krx/Support.h"
#include "krx/krxmaddr.h"
#include "plat/PlatClock.h"
#include "scl/Failure.h"
#include "scl/SCLEXCPT.h"
#include "scl/SCLTOKEN.h"

namespace krxtest {
namespace {

constexpr char GENERATED[] = "Content-Type: multipart/mixed; boundary=\"TOKEN\"\n\n";
constexpr char ADDED[] =
    "--TOKEN\nContent-Type: text/plain\nContent-Disposition: attachment\n\nmore\n--TOKEN--\n.\n";

class Outbound : public Spool {
 protected:
  Outbound() : m_message(m_office->newMessage()) { m_message->setInform(false); }
  ~Outbound() override { plat::setClock(nullptr); }

  void add(std::uint32_t type, const std::string& user) {
    m_message->addAddress(KRX_Maddr(type, user.c_str(), "x"));
  }
  void addHeader(std::uint32_t type, const std::vector<const char*>& lines) {
    SCL_StringTable table;
    for (const char* line : lines) {
      table.add(line);
    }
    m_message->headers().add(GMA_Mhdr(type, table));
  }
  // What the message is written as; a made boundary shows as TOKEN.
  std::string written() { return write(*m_message); }
  static std::string write(GMA_Message& message) {
    DAC_MemoryDataAccess stream;
    unsigned int status = 0;
    static_cast<KRX_Message&>(message).writeMessage(stream, status);
    std::string text = withLf(content(stream));
    const std::string mark = "multipart/mixed; boundary=\"";
    if (const std::size_t at = text.find(mark); at != std::string::npos) {
      const std::size_t begin = at + mark.size();
      const std::string token = text.substr(begin, text.find('"', begin) - begin);
      for (std::size_t i = text.find(token); i != std::string::npos; i = text.find(token, i)) {
        text.replace(i, token.size(), "TOKEN");
      }
    }
    return status == 0 ? text : "status " + std::to_string(status);
  }
  // What a loaded mail is written as once an item is added.
  std::string writtenWithItem(const std::string& mail) {
    const auto message = fetched(mail);
    const std::unique_ptr<GMA_Message> copy(message->transferTo(*m_office));
    copy->addItem(newContent("more\r\n"), false);
    message->addItem(newContent("more\r\n"), false);
    EXPECT_EQ(write(*copy), write(*message));
    return write(*message);
  }

  std::unique_ptr<GMA_Message> m_message;
};

TEST_F(Outbound, AddressesMakeTheFieldsThatAreMissing) {
  add(gma::FROMADDR, "f");
  add(gma::TOADDR, "a");
  add(gma::BCCADDR, "hidden");
  add(gma::SENTTOADDR, "sent");
  add(gma::TOADDR, "b");
  add(gma::CCADDR, "c");
  EXPECT_EQ(written(), "From: f@x\nTo: a@x,\n   b@x\nCc: c@x\n\n.\n");
  addHeader(gma::FROM, {"Frank"});
  addHeader(gma::RESENT_TO, {"Rita"});
  EXPECT_EQ(written(), "From: Frank\nResent-To: Rita\nCc: c@x\n\n.\n");
  add(gma::RESENTTOADDR, "resent");
  m_message->headers().clear();
  EXPECT_EQ(written(),
            "From: f@x\nResent-To: resent@x\nTo: a@x,\n   b@x,\n   resent@x\nCc: c@x\n\n.\n");
  m_message->addresses().clear();
  add(130, "no field");
  EXPECT_EQ(failureOf([&] { written(); }), "Bad value in switch in krxmsg");
}

TEST_F(Outbound, OnlyAnInformMessageGetsADate) {
  plat::ManualClock clock({884000000, 70});
  plat::setClock(&clock);
  m_message->setInform(true);
  const std::string date = KRX_Message::formatDate(DV_DateTime()).c_str();
  EXPECT_EQ(written(), "Date:" + std::string(date[0] == ' ' ? "" : " ") + date + "\n\n.\n");
  EXPECT_EQ(KRX_Message::formatDate(DV_DateTime(DV_Date(1998, 1, 5), DV_Time(9, 4, 33, 0))),
            " 5 Jan 98 09:04:33");
  EXPECT_EQ(KRX_Message::formatDate(DV_DateTime(DV_Date(2012, 13, 31), DV_Time(23, 59, 0, 0))),
            "31  12 23:59:00");
}

TEST_F(Outbound, HeadersThatWouldHurtTheirNeighboursAreMadeSafe) {
  addHeader(gma::SUBJECT, {"a\r\nBcc: v@x"});
  addHeader(gma::PRIORITY, {"high"});
  addHeader(gma::TO, {"one", "two", "", " three", "   "});
  addHeader(gma::BAD_FORMAT, {"  ", "no field", ".", "\r"});
  KRX_Maddr address(gma::CCADDR, "x", "y");
  address.setOriginal("x@y\r\nBcc: v@x");
  m_message->addAddress(address);
  EXPECT_EQ(written(),
            "Subject: a  Bcc: v@x\nTo: one\n two\n three\nBad-Header:no field\n..\nCc: x@y  Bcc: "
            "v@x\n\n.\n");
  EXPECT_EQ(takeLogText(), "11:3 Header of type 15 has no field name, it is left out.\n");
}

TEST_F(Outbound, ContentIsStuffedAndItsLastLineEnded) {
  const std::string longest(32766, 'x');
  for (const auto& [text, expected] :
       {std::pair<std::string, std::string>(".\r\n..x\r\n\r\nlast without end",
                                            "\n..\n...x\n\nlast without end\n.\n"),
        {longest + "xx\r\nend\r\n", "status 10014"},
        {longest + "\r\n" + longest + "x", "\n" + longest + "\n" + longest + "x\n.\n"}}) {
    m_message->clearContent();
    m_message->setBody(newContent(text));
    EXPECT_EQ(written(), expected);
  }
}

TEST_F(Outbound, SeveralPartsBecomeAGeneratedMultipart) {
  m_message->setBody(newContent("text\r\n"));
  DAC_BaseDataAccess* titled = newContent("TWFu\r\n");
  titled->setStringAttribute("ContentTitle", "a \"b\"\r\n.txt");
  titled->setStringAttribute("Content-Transfer-Encoding", "base64");
  titled->setStringAttribute("Content-ID", "<1>");
  m_message->addItem(titled, false);
  m_message->addItem(newContent("more\r\n"), false);
  EXPECT_EQ(written(),
            "MIME-Version: 1.0\n" + std::string(GENERATED) +
                "--TOKEN\nContent-Type: text/plain\n\ntext\n"
                "--TOKEN\nContent-Type: text/plain; name=\"a \\\"b\\\".txt\"\n"
                "Content-Transfer-Encoding: base64\nContent-ID: <1>\n"
                "Content-Disposition: attachment; filename=\"a \\\"b\\\".txt\"\n\nTWFu\n" +
                ADDED);
}

TEST_F(Outbound, AnItemAddedToALoadedMailIsNeverDropped) {
  EXPECT_EQ(writtenWithItem("MIME-Version: 1.0\nDate: d\nContent-Type: text/html\n"
                            "Content-Transfer-Encoding: base64\n\nPHA+\n.\n"),
            "MIME-Version: 1.0\nDate: d\nFrom: s@a\n" + std::string(GENERATED) +
                "--TOKEN\nContent-Type: text/html\nContent-Transfer-Encoding: base64\n"
                "Content-Disposition: attachment; filename=\"<attachment>\"\n\nPHA+\n" +
                ADDED);
}

TEST_F(Outbound, ATypeWithoutMimeVersionGoesOntoItsPartWhereItCanBeRead) {
  for (const auto& [type, shown] :
       {std::pair<std::string, std::string>("multipart/x; boundary=b", "multipart/x; boundary=b"),
        {"no type", "text/plain"}}) {
    const std::string mail = "From: f\nDate: d\nContent-Type: " + type + "\n\n--b\n\nx\n--b--\n.\n";
    EXPECT_EQ(write(*fetched(mail)), mail);
    EXPECT_EQ(writtenWithItem(mail),
              "From: f\nDate: d\nMIME-Version: 1.0\n" + std::string(GENERATED) +
                  "--TOKEN\nContent-Type: " + shown + "\n\n--b\n\nx\n--b--\n" + ADDED);
  }
}

TEST_F(Outbound, WhatWasLoadedComesOutAsItWentIn) {
  std::string bytes;
  for (int i = 0; i < 256; ++i) {
    bytes += i == '\r' || i == '\n' ? ' ' : static_cast<char>(i);
  }
  for (const std::string& mail :
       {"From: f\nDate: d\n\nplain\n..\n...x\n" + bytes + "\n.\n",
        std::string(
            "From: f\nDate: d\nMIME-Version: 1.0\nContent-Type: multipart/mixed; boundary=b\n\n"
            "pre\n.x\n..\n--b\nContent-Type: text/plain\nContent-ID: <1>\n\n..stuffed\n...\n--b\n"
            "Content-Type: multipart/x; boundary=i\n\n--i\n\n..\n--i--\n--b--\npost\n..\n.\n"),
        std::string("From: f\n more\nDate: d\nX-A: b\nno field\n.x\nTo: a,\n\tb\n\n.\n"),
        std::string("From: f\nDate: d\nMIME-Version: 1.0\nContent-Type: text/html\n"
                    "Bad-Header:named so\n\nx\n.\n")}) {
    EXPECT_EQ(roundTrip(mail), mail);
  }
}

TEST_F(Outbound, NoLineBesideThePartsBecomesABoundary) {
  const std::string start =
      "From: f\nDate: d\nMIME-Version: 1.0\nContent-Type: multipart/mixed; boundary=b\n\n";
  const std::string part = "--b\nContent-Type: text/plain\n\nx\n--b--\n";
  const std::string mail = start + "--?b\n" + part + "--?.\nrest\n.\n";
  std::string hidden = mail;
  std::replace(hidden.begin(), hidden.end(), '?', '\0');
  EXPECT_EQ(roundTrip(hidden), start + " --b\n" + part + " --.\nrest\n.\n");
}

TEST_F(Outbound, TheBoundaryIsNoLineOfTheContent) {
  // Every token but the last of the next 51, as a sender would guess them.
  plat::ManualClock clock({884000000, 0});
  plat::setClock(&clock);
  SCL_String last;
  SCL_uniqueToken(last);
  const std::string token = last.c_str();
  const std::string stem = token.substr(0, token.rfind('.') + 1);
  const unsigned long counter = std::stoul(token.substr(stem.size()));
  std::string text;
  for (unsigned long i = 1; i <= 50; ++i) {
    text += "--" + stem + std::to_string(counter + i) + (i % 2 ? "--" : "") + "\r\n";
  }
  m_message->setBody(newContent(text));
  m_message->addItem(newContent("x\r\n"), false);
  DAC_MemoryDataAccess stream;
  unsigned int status = 0;
  static_cast<KRX_Message&>(*m_message).writeMessage(stream, status);
  EXPECT_THAT(content(stream),
              testing::HasSubstr("boundary=\"" + stem + std::to_string(counter + 51) + "\""));
}

}  // namespace
}  // namespace krxtest
