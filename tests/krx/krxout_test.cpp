#include <gmock/gmock.h>

#include "dac/DACMEMDA.h"
#include "dv/DVDATTIM.h"
#include "krx/Support.h"
#include "krx/krxmaddr.h"
#include "plat/PlatClock.h"
#include "scl/SCLEXCPT.h"
#include "scl/SCLTOKEN.h"

namespace krxtest {
namespace {

class Outbound : public Spool {
 protected:
  Outbound() : m_message(m_office->newMessage()) { m_message->setInform(false); }

  static DAC_BaseDataAccess* data(const std::string& text) {
    auto* made = new DAC_MemoryDataAccess;
    unsigned int status = 0;
    made->write(static_cast<std::int32_t>(text.size()), text.data(), status);
    return made;
  }
  void add(std::uint32_t type, const std::string& user) {
    m_message->addAddress(KRX_Maddr(type, user.c_str(), "x"));
  }
  void addHeader(std::uint32_t type, const std::string& value) {
    m_message->headers().add(GMA_Mhdr(type, value.c_str()));
  }
  // What the message is written as; a made boundary shows as TOKEN.
  std::string written() { return write(*m_message); }
  static std::string write(GMA_Message& message) {
    DAC_MemoryDataAccess stream;
    unsigned int status = 0;
    static_cast<KRX_Message&>(message).writeMessage(stream, status);
    if (status != 0) {
      return "status " + std::to_string(status);
    }
    std::string text = withLf(content(stream));
    const std::string mark = "boundary=\"";
    if (const std::size_t at = text.find(mark); at != std::string::npos) {
      const std::size_t begin = at + mark.size();
      const std::string token = text.substr(begin, text.find('"', begin) - begin);
      for (std::size_t i = text.find(token); i != std::string::npos; i = text.find(token, i)) {
        text.replace(i, token.size(), "TOKEN");
      }
    }
    return text;
  }
  std::unique_ptr<GMA_Message> loaded(const std::string& mail) {
    put("M", mail);
    unsigned int status = 0;
    auto message = next(status);
    EXPECT_EQ(status, 0U) << takeLogText();
    return message;
  }

  std::unique_ptr<GMA_Message> m_message;
};

TEST_F(Outbound, WithoutPartsIsHeaderLinesAnEmptyLineAndTheEnd) {
  addHeader(gma::SUBJECT, "x");
  EXPECT_EQ(written(), "Subject: x\n\n.\n");
}

TEST_F(Outbound, AddressesMakeTheFieldsThatAreMissing) {
  add(gma::FROMADDR, "f");
  add(gma::TOADDR, "a");
  add(gma::BCCADDR, "hidden");
  add(gma::SENTTOADDR, "sent");
  add(gma::TOADDR, "b");
  add(gma::CCADDR, "c");
  EXPECT_EQ(written(), "From: f@x\nTo: a@x,\n   b@x\nCc: c@x\n\n.\n");
  addHeader(gma::FROM, "Frank");
  addHeader(gma::RESENT_TO, "Rita");
  EXPECT_EQ(written(), "From: Frank\nResent-To: Rita\nCc: c@x\n\n.\n");
  add(34, "resent");
  m_message->headers().clear();
  EXPECT_EQ(written(),
            "From: f@x\nResent-To: resent@x\nTo: a@x,\n   b@x,\n   resent@x\nCc: c@x\n\n.\n");
  m_message->addresses().clear();
  add(130, "no name");
  EXPECT_THROW(written(), scl_exception_base*);
}

TEST_F(Outbound, OnlyAnInformMessageGetsADate) {
  plat::ManualClock clock({884000000, 70});
  plat::setClock(&clock);
  m_message->setInform(true);
  const SCL_String date = KRX_Message::formatDate(DV_DateTime());
  const char* blank = SCL_firstChar(date) == ' ' ? "" : " ";
  EXPECT_EQ(written(), std::string("Date:") + blank + date.c_str() + "\n\n.\n");
  plat::setClock(nullptr);
  EXPECT_EQ(KRX_Message::formatDate(DV_DateTime(DV_Date(1998, 1, 5), DV_Time(9, 4, 33, 0))),
            " 5 Jan 98 09:04:33");
  EXPECT_EQ(KRX_Message::formatDate(DV_DateTime(DV_Date(2012, 13, 31), DV_Time(23, 59, 0, 0))),
            "31  12 23:59:00");
}

TEST_F(Outbound, HeadersThatWouldHurtTheirNeighboursAreMadeSafe) {
  addHeader(gma::SUBJECT, "a\r\nBcc: v@x");
  addHeader(gma::PRIORITY, "high");
  m_message->headers().add(GMA_Mhdr(gma::X_HEADER, "X-A", "b"));
  SCL_StringTable lines;
  for (const char* line : {"one", "two", "", " three", "   "}) {
    lines.add(line);
  }
  m_message->headers().add(GMA_Mhdr(gma::TO, lines));
  SCL_StringTable bad;
  for (const char* line : {"  ", "no field", ".", "\r"}) {
    bad.add(line);
  }
  m_message->headers().add(GMA_Mhdr(gma::BAD_FORMAT, bad));
  EXPECT_EQ(written(), "Subject: a  Bcc: v@x\nX-A: b\nTo: one\n two\n three\nno field\n..\n\n.\n");
  EXPECT_EQ(takeLogText(), "11:3 Header of type 15 has no field name, it is left out.\n");
}

TEST_F(Outbound, ContentIsStuffedAndItsLastLineEnded) {
  m_message->setBody(data(".\r\n..x\r\n\r\nlast without end"));
  EXPECT_EQ(written(), "\n..\n...x\n\nlast without end\n.\n");
  m_message->clearContent();
  m_message->setBody(data(std::string(32768, 'x') + "\r\nend\r\n"));
  EXPECT_EQ(written(), "status 10014");
  m_message->clearContent();
  m_message->setBody(data(std::string(32766, 'x') + "\r\n" + std::string(32767, 'y')));
  EXPECT_EQ(written(),
            "\n" + std::string(32766, 'x') + "\n" + std::string(32767, 'y') + "\n.\n");
}

TEST_F(Outbound, SeveralPartsBecomeAGeneratedMultipart) {
  m_message->setBody(data("text\r\n"));
  m_message->addItem(data("item\r\n"), false);
  DAC_BaseDataAccess* titled = data("TWFu\r\n");
  titled->setStringAttribute("ContentTitle", "a \"b\"\r\n.txt");
  titled->setStringAttribute("Content-Transfer-Encoding", "base64");
  titled->setStringAttribute("Content-ID", "<1>");
  m_message->addItem(titled, false);
  EXPECT_EQ(written(),
            "MIME-Version: 1.0\nContent-Type: multipart/mixed; boundary=\"TOKEN\"\n\n"
            "--TOKEN\nContent-Type: text/plain\n\ntext\n"
            "--TOKEN\nContent-Type: text/plain\nContent-Disposition: attachment\n\nitem\n"
            "--TOKEN\nContent-Type: text/plain; name=\"a \\\"b\\\".txt\"\n"
            "Content-Transfer-Encoding: base64\nContent-ID: <1>\n"
            "Content-Disposition: attachment; filename=\"a \\\"b\\\".txt\"\n\nTWFu\n"
            "--TOKEN--\n.\n");
}

TEST_F(Outbound, AnItemAddedToALoadedMailIsNeverDropped) {
  const auto message = loaded(
      "MIME-Version: 1.0\nDate: d\nContent-Type: text/html\n"
      "Content-Transfer-Encoding: base64\n\nPHA+\n.\n");
  message->addItem(data("more\r\n"), false);
  EXPECT_EQ(write(*message),
            "MIME-Version: 1.0\nDate: d\nFrom: s@a\n"
            "Content-Type: multipart/mixed; boundary=\"TOKEN\"\n\n"
            "--TOKEN\nContent-Type: text/html\nContent-Transfer-Encoding: base64\n"
            "Content-Disposition: attachment; filename=\"<attachment>\"\n\nPHA+\n"
            "--TOKEN\nContent-Type: text/plain\nContent-Disposition: attachment\n\nmore\n"
            "--TOKEN--\n.\n");
}

TEST_F(Outbound, AMultipartHeaderWithoutMimeVersionGoesOntoItsPart) {
  const auto message =
      loaded("From: f\nDate: d\nContent-Type: multipart/mixed; boundary=b\n\n--b\n\nx\n--b--\n.\n");
  EXPECT_EQ(write(*message), "From: f\nDate: d\nContent-Type: multipart/mixed; boundary=b\n\n"
                             "--b\n\nx\n--b--\n.\n");
  message->addItem(data("more\r\n"), false);
  EXPECT_EQ(write(*message),
            "From: f\nDate: d\nMIME-Version: 1.0\n"
            "Content-Type: multipart/mixed; boundary=\"TOKEN\"\n\n"
            "--TOKEN\nContent-Type: multipart/mixed; boundary=b\n\n--b\n\nx\n--b--\n"
            "--TOKEN\nContent-Type: text/plain\nContent-Disposition: attachment\n\nmore\n"
            "--TOKEN--\n.\n");
}

TEST_F(Outbound, WhatWasLoadedComesOutAsItWentIn) {
  for (const std::string& mail : std::vector<std::string>{
           "From: f\nDate: d\n\nplain\n..\n...x\n.\n",
           "From: f\nDate: d\nMIME-Version: 1.0\nContent-Type: multipart/mixed; boundary=\"b\"\n\n"
           "pre\n.x\n..\n--b\nContent-Type: text/plain\nContent-ID: <1>\n\n..stuffed\n...\n--b\n"
           "Content-Type: multipart/x; boundary=i\n\n--i\n\n..\n--i--\n--b--\npost\n..\n.\n",
           "From: f\n more\nDate: d\nX-A: b\nno field\n.x\nTo: a,\n\tb\n\n.\n",
           "Return-path: <x>\nDate: d\nContent-Type: image/gif\n\nraw \x01\x80\xff\n.\n"}) {
    EXPECT_EQ(roundTrip(mail), mail);
  }
}

TEST_F(Outbound, ContentBytesSurviveWhateverTheyAre) {
  std::string body;
  for (int i = 0; i < 256; ++i) {
    if (i != '\r' && i != '\n') {
      body += static_cast<char>(i);
    }
  }
  const std::string mail = "From: f\nDate: d\n\n" + body + "\n.\n";
  EXPECT_EQ(roundTrip(mail), mail);
}

TEST_F(Outbound, TheBoundaryIsNoLineOfTheContent) {
  // Every token of the next seconds but one, as a sender would guess them.
  plat::ManualClock clock({884000000, 0});
  plat::setClock(&clock);
  SCL_String last;
  SCL_uniqueToken(last);
  const std::string token = last.c_str();
  const std::size_t point = token.rfind('.') + 1;
  const unsigned long counter = std::stoul(token.substr(point));
  std::string text;
  for (unsigned long i = 1; i <= 50; ++i) {
    text += "--" + token.substr(0, point) + std::to_string(counter + i) + (i % 2 ? "--" : "") +
            "\r\n";
  }
  m_message->setBody(data(text));
  m_message->addItem(data("x\r\n"), false);
  DAC_MemoryDataAccess stream;
  unsigned int status = 0;
  static_cast<KRX_Message&>(*m_message).writeMessage(stream, status);
  plat::setClock(nullptr);
  EXPECT_NE(content(stream).find("boundary=\"" + token.substr(0, point) +
                                 std::to_string(counter + 51) + "\""),
            std::string::npos);
}

}  // namespace
}  // namespace krxtest
