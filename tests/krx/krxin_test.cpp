// The message file on its way in.
#include "dac/DACMEMDA.h"
#include "dv/DVDATE.h"
#include "gen/Variable.h"
#include "krx/Support.h"
#include "plat/PlatPath.h"

namespace krxtest {
namespace {

constexpr char MULTIPART[] = "MIME-Version: 1.0\nContent-Type: multipart/mixed; boundary=b\n\n";

class Inbound : public Spool {
 protected:
  // The state that a mail is read as, without what its envelope gave.
  std::string read(const std::string& mail) {
    return without("RCPMESSAGEID| <M@here>\n", load(mail, "Message-ID: <M@here>\n"));
  }
  // The same for the parts of a multipart mail, without its own two header fields.
  std::string readParts(const std::string& parts) {
    return without("Mime-Version| 1.0\nContent-Type| multipart/mixed; boundary=b\n",
                   read(MULTIPART + parts));
  }

 private:
  static std::string without(const std::string& known, std::string state) {
    const std::size_t at = state.find(known);
    EXPECT_NE(at, std::string::npos) << state;
    return at == std::string::npos ? state : state.erase(at, known.size());
  }
};

TEST_F(Inbound, WithoutMimeVersionAllIsOneText) {
  EXPECT_EQ(read("Content-Type: image/gif\n\n..dots\n.x\nplain\r"),
            "Content-Type| image/gif\nbody \"<body>\" MIME_Text: .dots\n.x\nplain\n\n");
  EXPECT_EQ(read("Content-Transfer-Encoding: base64\n\nTWFu\n"),
            "Content-Transfer-Encoding| base64\nbody \"<body>\" MIME_Text: TWFu\n\n  child: Man\n");
}

TEST_F(Inbound, ALineWithOneFullStopEndsASinglePart) {
  EXPECT_EQ(read("Subject: x\n\none\n.\ntwo\n"), "SUBJECT| x\nbody \"<body>\" MIME_Text: one\n\n");
  EXPECT_EQ(read(".\nnot read\n"), "body \"<body>\" MIME_Text: \n");
  EXPECT_EQ(read(""), "body \"<body>\" MIME_Text: \n");
}

TEST_F(Inbound, MultipartGivesBodyItemsPreambleAndEpilogue) {
  EXPECT_EQ(readParts("pre 1\n.pre 2\n--b\n\nfirst\n--b\nContent-Type: image/gif\n"
                      "Content-Transfer-Encoding: Base64\n\nTWFu\n--b\nContent-Type: text/plain\n\n"
                      "second\n--b--\npost\n.\nafter\n"),
            "PREAMBLE|pre 1|.pre 2\nPOSTAMBLE|post\nbody \"<body>\" MIME_Text: first\n\n"
            "item \"<attachment>\" MIME_Image: TWFu\n\n  child: Man\n"
            "item \"<attachment>\" MIME_Text: second\n\n");
  EXPECT_EQ(readParts("--b\n\nx\n.\nafter\n"), "POSTAMBLE|after\nbody \"<body>\" MIME_Text: x\n\n");
  EXPECT_EQ(readParts("..pre\n--b\n\n..x\n--b--\n..post\n"),
            "PREAMBLE|..pre\nPOSTAMBLE|..post\nbody \"<body>\" MIME_Text: .x\n\n");
}

TEST_F(Inbound, ANameMakesAnItemAndHtmlIsNoBody) {
  for (const auto& [type, title] :
       {std::pair<std::string, std::string>("text/html", "<attachment>"),
        {"text/plain; name=a.txt", "a.txt"}}) {
    EXPECT_EQ(
        read("MIME-Version: 1.0\nContent-Type: " + type + "\n\nx\n"),
        "Mime-Version| 1.0\nContent-Type| " + type + "\nitem \"" + title + "\" MIME_Text: x\n\n");
  }
}

TEST_F(Inbound, EmptyPartsAndPartsWithoutBlankLineStayApart) {
  EXPECT_EQ(readParts("--b\n--b\n\ntext\n--b--\n"),
            "body \"<body>\" MIME_Text: \nitem \"<attachment>\" MIME_Text: text\n\n");
  EXPECT_EQ(readParts("--b--\n"), "status 11990\n");
  EXPECT_EQ(readParts("--b \n--b\nContent-Type:\n\nx\n"),
            "PREAMBLE|--b \nbody \"<body>\" MIME_Text: x\n\n");
}

TEST_F(Inbound, NestedStructuresAreViewsThatOpenOnDemand) {
  EXPECT_EQ(
      readParts("--b\nContent-Type: multipart/x; boundary=i\n\n--i\n\none\n--i\n\ntwo\n--i--\n"
                "--b\nContent-Type: message/rfc822\n\nSubject: in\n\nx\n"
                "--b\nContent-Type: multipart/x\nContent-Transfer-Encoding: base64\n\nx\n"
                "--b--\n"),
      "item \"<attachment>\" MIME_Multipart: --i\n\none\n--i\n\ntwo\n--i--\n\n"
      "  child: \none\n  child: \ntwo\n"
      "item \"<attachment>\" MIME_Message: Subject: in\n\nx\n\n  child: Subject: in\n\nx\n\n"
      "item \"<attachment>\" MIME_Multipart: x\n\n"
      "  bad: No boundary parameter on nested Multipart.\n");
  EXPECT_EQ(takeLogText(),
            "11:1 No boundary parameter on nested Multipart.\n"
            "11:1 Illegal content encoding field base64 on Content Type multipart\n");
}

TEST_F(Inbound, BadStructureIsAStatusOrALogEntry) {
  EXPECT_THAT(load("MIME-Version: 1.0\nContent-Type: multipart/mixed\n\nx\n"),
              testing::StartsWith("status 11982\n"));
  takeLog();
  EXPECT_THAT(load("MIME-Version: 1.0\nContent-Type: text/\n plain; a\n\nx\n"),
              testing::StartsWith("status 12001\n"));
  EXPECT_EQ(load("MIME-Version: 1.0\nContent-Transfer-Encoding: 7bit;\n\nx\n").find("status"),
            std::string::npos);
  EXPECT_EQ(takeLogText(),
            "11:1 Bad Content-Type header field value \" text/  plain; a\" found.\n"
            "11:1 Message M.RCP could not be loaded, status 12001.\n"
            "11:1 Bad Content-Transfer-Encoding header field value \" 7bit;\" found.\n");
}

TEST_F(Inbound, LongLinesArriveWholeAndOnlyTheirStartIsTested) {
  const std::string tail = "\n.y\n-" + std::string(2046, 'z') + "..dots\n";
  for (const std::size_t length : {2046U, 2047U, 2048U, 4094U, 5000U}) {
    const std::string line(length, 'x');
    EXPECT_EQ(read("A: b\n\n" + line + "\n." + tail.substr(1)),
              "UNKNOWN(A)| b\nbody \"<body>\" MIME_Text: " + line + tail + "\n")
        << length;
  }
  const std::string boundary = "--b" + std::string(3000, ' ');
  EXPECT_EQ(readParts("--b\n\n" + boundary + "\nx\n--b--\n"),
            "body \"<body>\" MIME_Text: " + boundary + "\nx\n\n");
}

TEST_F(Inbound, EveryLineEndEndsALine) {
  put("M", "");
  writeFile(in() + "M.MSG", "A: b\r\rone\rtwo\n\rthree\r\n.\r");
  unsigned int status = 0;
  EXPECT_EQ(withLf(content(*next(status)->getBody())), "one\ntwo\nthree\n");
}

TEST_F(Inbound, PartFieldsBecomeAttributesButNotWhatWeKnowBetter) {
  const auto message =
      fetched("SENTDATE: forged\nDate: Tue, 3 Feb 98\n" + std::string(MULTIPART) +
              "--b\nContent-Type: text/plain\nContent-Type: x\nAttachmentSize: huge\nBadData: x\n"
              "ContainerName: y\nMailSystemType: z\nX-Own:  v \n\nabc\n--b--\n");
  DAC_BaseDataAccess& body = *message->getBody();
  unsigned int status = 0;
  std::uint32_t size = 0;
  body.getIntegerAttribute("AttachmentSize", size, status);
  EXPECT_EQ(size, 5U);
  SCL_String text;
  for (const auto& [name, value] : {std::pair{"ContainerName", "MIME_Text"},
                                    {"MailSystemType", "SMTP"},
                                    {"X-Own", "v"},
                                    {"Content-Type", "text/plain"}}) {
    body.getStringAttribute(name, text, status);
    EXPECT_EQ(text, value);
  }
  EXPECT_EQ(status, 0U);
  EXPECT_EQ(body.findAttribute("BadData"), nullptr);
  EXPECT_EQ(message->attributes().find("SENTDATE")->getString(), "Tue, 3 Feb 98");
}

TEST_F(Inbound, TooManyPreambleLinesAreCutAndTold) {
  std::string parts;
  for (int i = 0; i < 66000; ++i) {
    parts += "x\n";
  }
  const auto message = fetched(MULTIPART + parts + "--b\n\ntext\n--b--\n");
  EXPECT_EQ(message->headers().findByType(gma::PREAMBLE)->value().count(), 65535);
  EXPECT_EQ(content(*message->getBody()), "text\r\n");
  EXPECT_EQ(takeLogText(), "11:1 Too many preamble lines, the rest is left out.\n");
}

TEST_F(Inbound, TooManyItemsAreRefusedAndTold) {
  std::string parts;
  for (int i = 0; i < 65537; ++i) {  // the body, what the list holds, and one more
    parts += "--b\n\n";
  }
  put("M", MULTIPART + parts);
  unsigned int status = 0;
  EXPECT_TRUE(next(status));
  EXPECT_EQ(status, 11990U);
  EXPECT_THAT(takeLogText(), testing::StartsWith("11:1 Too many items, the rest is left out.\n"));
}

// Content on a disk that gives no more than the header block.
class BadDisk : public DAC_MemoryDataAccess {
 public:
  std::int32_t readLine(std::int32_t size, char* buffer, unsigned int& status) override {
    if (getPosition() >= HEADERS) {
      status = status == 0 ? 10021 : status;
    }
    return DAC_MemoryDataAccess::readLine(size, buffer, status);
  }
  std::string_view window(std::int32_t) override { return {}; }

 private:
  static constexpr std::int32_t HEADERS = 8;  // "A: b" and the blank line
};

TEST_F(Inbound, AReadErrorIsAStatusAndNotAShorterMail) {
  BadDisk disk;
  unsigned int status = 0;
  disk.write(11, "A: b\r\n\r\nx\r\n", status);
  disk.setPosition(0, status);
  const std::unique_ptr<GMA_Message> message(m_office->newMessage());
  static_cast<KRX_Message&>(*message).readMessage(disk, status);
  EXPECT_EQ(status, 10021U);
  EXPECT_EQ(message->getBody(), nullptr);
}

TEST_F(Inbound, APartWithoutATemporaryNameHasNoFile) {
  const auto message = fetched("\nx\n");
  const Variable noRunDirectory("KRX_RUN_DIR", plat::toNative(in() + "M.MSG"));
  char name[260];
  unsigned int status = 0;
  message->getBody()->getFileName(sizeof name, name, status);
  EXPECT_EQ(status, 10027U);
}

TEST_F(Inbound, TheDateIsReadFromItsField) {
  const std::pair<const char*, const char*> cases[] = {
      {"Date: Tue, 3 Feb 98 10:00:00 GMT", "19980203"},
      {"Date: 3 Feb 2001", "20010203"},
      {"Date: Feb 3 2001", ""},
      {"Date: 3 (third) FEB\n 2001", "20010203"},
      {"Resent-Date: 4 Mar 99 1\nDate: 3 Feb 98 1", "19990304"},
      {"Date: 99 Jan 99999", "00000199"},
      {"Date: -3 Feb 98", ""},
      {"Date: 3 Foo 98", ""},
      {"Date: 3 Feb", ""},
      {"Date: 3 Feb x", "00000203"},
      {"Date: 3 Feb 98 (", "19980203"},
      {"Date:", ""},
      {"Subject: x", ""}};
  for (const auto& [fields, expected] : cases) {
    const auto message = fetched(std::string(fields) + "\n\nx\n");
    DV_Date date(1900, 1, 1);
    const bool found = message->getDate(date);
    EXPECT_EQ(found ? std::string(date.digits(), 8) : "", expected) << fields;
  }
}

}  // namespace
}  // namespace krxtest
