#include <gmock/gmock.h>

#include "dac/DACBASDA.h"
#include "dv/DVDATE.h"
#include "krx/Support.h"

namespace krxtest {
namespace {

constexpr char MIXED[] =
    "MIME-Version: 1.0\nContent-Type: multipart/mixed; boundary=\"b\"\n\npre 1\n.pre 2\n--b\n\n"
    "first\n--b\nContent-Type: image/gif\nContent-Transfer-Encoding: Base64\n\nTWFu\n--b\n"
    "Content-Type: text/plain\n\nsecond\n--b--\npost\n.\nafter\n";

class Inbound : public Spool {
 protected:
  // The state without the envelope's part.
  std::string read(const std::string& message) {
    std::string state = load(message, "Message-ID: <M@here>\n");
    const std::string id = "RCPMESSAGEID| <M@here>\n";
    if (const std::size_t at = state.find(id); at != std::string::npos) {
      state.erase(at, id.size());
    }
    return state;
  }
};

TEST_F(Inbound, WithoutMimeVersionAllIsOneText) {
  EXPECT_EQ(read("Content-Type: image/gif\n\n..dots\n.x\nplain\r"),
            "Content-Type| image/gif\nbody \"<body>\" MIME_Text: .dots\n.x\nplain\n\n");
  EXPECT_EQ(read("Content-Transfer-Encoding: base64\n\nTWFu\n"),
            "Content-Transfer-Encoding| base64\nbody \"<body>\" MIME_Text: TWFu\n\n"
            "  child: Man\n");
}

TEST_F(Inbound, ALineWithOneFullStopEndsASinglePart) {
  EXPECT_EQ(read("Subject: x\n\none\n.\ntwo\n"),
            "SUBJECT| x\nbody \"<body>\" MIME_Text: one\n\n");
  EXPECT_EQ(read(".\nnot read\n"), "body \"<body>\" MIME_Text: \n");
  EXPECT_EQ(read(""), "body \"<body>\" MIME_Text: \n");
}

TEST_F(Inbound, MultipartGivesBodyItemsPreambleAndEpilogue) {
  EXPECT_EQ(read(MIXED),
            "Mime-Version| 1.0\nContent-Type| multipart/mixed; boundary=\"b\"\n"
            "PREAMBLE|pre 1|.pre 2\nPOSTAMBLE|post\n"
            "body \"<body>\" MIME_Text: first\n\n"
            "item \"<attachment>\" MIME_Image: TWFu\n\n  child: Man\n"
            "item \"<attachment>\" MIME_Text: second\n\n");
}

TEST_F(Inbound, TextAfterTheEndOfDataLineIsNotDropped) {
  EXPECT_EQ(read("MIME-Version: 1.0\nContent-Type: multipart/mixed; boundary=b\n\n--b\n\nx\n.\n"
                 "after\n"),
            "Mime-Version| 1.0\nContent-Type| multipart/mixed; boundary=b\nPOSTAMBLE|after\n"
            "body \"<body>\" MIME_Text: x\n\n");
}

TEST_F(Inbound, ANameMakesAnItemAndHtmlIsNoBody) {
  EXPECT_EQ(read("MIME-Version: 1.0\nContent-Type: text/html\n\n<p>\n"),
            "Mime-Version| 1.0\nContent-Type| text/html\n"
            "item \"<attachment>\" MIME_Text: <p>\n\n");
  EXPECT_EQ(read("MIME-Version: 1.0\nContent-Type: text/plain; name=a.txt\n\nx\n"),
            "Mime-Version| 1.0\nContent-Type| text/plain; name=a.txt\n"
            "item \"a.txt\" MIME_Text: x\n\n");
}

TEST_F(Inbound, EmptyPartsAndPartsWithoutBlankLineStayApart) {
  const std::string start = "MIME-Version: 1.0\nContent-Type: multipart/mixed; boundary=b\n\n";
  const std::string header =
      "Mime-Version| 1.0\nContent-Type| multipart/mixed; boundary=b\n";
  EXPECT_EQ(read(start + "--b\n--b\n\ntext\n--b--\n"),
            header + "body \"<body>\" MIME_Text: \n"
                     "item \"<attachment>\" MIME_Text: text\n\n");
  EXPECT_EQ(read(start + "--b--\n"), "status 11990\n" + header);
  EXPECT_EQ(read(start + "--b \n--b\nContent-Type:\n\nx\n"),
            header + "PREAMBLE|--b \nbody \"<body>\" MIME_Text: x\n\n");
}

TEST_F(Inbound, NestedStructuresAreViewsThatOpenOnDemand) {
  EXPECT_EQ(read("MIME-Version: 1.0\nContent-Type: multipart/mixed; boundary=b\n\n--b\n"
                 "Content-Type: multipart/alternative; boundary=i\n\n--i\n\none\n--i\n\ntwo\n--i--\n"
                 "--b\nContent-Type: message/rfc822\n\nSubject: in\n\nx\n--b\n"
                 "Content-Type: multipart/x\nContent-Transfer-Encoding: base64\n\nx\n--b--\n"),
            "Mime-Version| 1.0\nContent-Type| multipart/mixed; boundary=b\n"
            "item \"<attachment>\" MIME_Multipart: --i\n\none\n--i\n\ntwo\n--i--\n\n"
            "  child: \none\n  child: \ntwo\n"
            "item \"<attachment>\" MIME_Message: Subject: in\n\nx\n\n  child: Subject: in\n\nx\n\n"
            "item \"<attachment>\" MIME_Multipart: x\n\n"
            "  bad: No boundary parameter on nested Multipart.\n");
  EXPECT_EQ(takeLogText(),
            "11:1 No boundary parameter on nested Multipart.\n"
            "11:1 Illegal content encoding field base64 on Content Type multipart\n");
}

TEST_F(Inbound, BadStructureIsAStatusAndALogEntry) {
  EXPECT_EQ(read("MIME-Version: 1.0\nContent-Type: multipart/mixed\n\nx\n").substr(0, 12),
            "status 11982");
  EXPECT_EQ(read("MIME-Version: 1.0\nContent-Type: text/\n plain; a\n\nx\n").substr(0, 12),
            "status 12001");
  const std::vector<std::string> log = takeLog();
  EXPECT_EQ(log[1],
            "11:1 Bad Content-Type header field value \" text/  plain; a\" found.");
  EXPECT_EQ(read("MIME-Version: 1.0\nContent-Transfer-Encoding: 7bit;\n\nx\n").substr(0, 6),
            "Mime-V");
  EXPECT_EQ(takeLogText(),
            "11:1 Bad Content-Transfer-Encoding header field value \" 7bit;\" found.\n");
}

TEST_F(Inbound, LongLinesArriveWholeAndOnlyTheirStartIsTested) {
  for (const std::size_t length : {2046U, 2047U, 2048U, 4094U, 5000U}) {
    const std::string line(length, 'x');
    EXPECT_EQ(read("A: b\n\n" + line + "\n..y\n" + std::string(2047, 'z') + "..dots\n"),
              "UNKNOWN(A)| b\nbody \"<body>\" MIME_Text: " + line + "\n.y\n" +
                  std::string(2047, 'z') + "..dots\n\n")
        << length;
  }
  const std::string boundary = "--b" + std::string(3000, ' ');
  EXPECT_NE(read("MIME-Version: 1.0\nContent-Type: multipart/mixed; boundary=b\n\n--b\n\n" +
                 boundary + "\nx\n--b--\n")
                .find(boundary),
            std::string::npos);
}

TEST_F(Inbound, EveryLineEndEndsALine) {
  put("M", "", "");
  writeFile(in() + "M.MSG", "A: b\r\rone\rtwo\n\rthree\r\n.\r");
  unsigned int status = 0;
  EXPECT_EQ(withLf(content(*next(status)->getBody())), "one\ntwo\nthree\n");
}

TEST_F(Inbound, PartFieldsBecomeAttributesButNotWhatWeKnowBetter) {
  put("M",
      "MIME-Version: 1.0\nContent-Type: multipart/mixed; boundary=b\nSENTDATE: forged\n"
      "Date: Tue, 3 Feb 98\n\n--b\nContent-Type: text/plain\nAttachmentSize: huge\nBadData: x\n"
      "ContainerName: y\nMailSystemType: z\nX-Own:  v \n\nabc\n--b--\n");
  unsigned int status = 0;
  const auto message = next(status);
  DAC_BaseDataAccess& body = *message->getBody();
  std::uint32_t size = 0;
  body.getIntegerAttribute("AttachmentSize", size, status);
  EXPECT_EQ(size, 5U);
  SCL_String text;
  for (const auto& [name, value] :
       {std::pair{"ContainerName", "MIME_Text"}, {"MailSystemType", "SMTP"}, {"X-Own", "v"}}) {
    body.getStringAttribute(name, text, status);
    EXPECT_EQ(text, value);
  }
  EXPECT_EQ(status, 0U);
  EXPECT_EQ(body.findAttribute("BadData"), nullptr);
  EXPECT_EQ(message->attributes().find("SENTDATE")->getString(), "Tue, 3 Feb 98");
}

TEST_F(Inbound, TooManyPreambleLinesAreCutAndTold) {
  std::string mail = "MIME-Version: 1.0\nContent-Type: multipart/mixed; boundary=b\n\n";
  for (int i = 0; i < 66000; ++i) {
    mail += "x\n";
  }
  put("M", mail + "--b\n\ntext\n--b--\n");
  unsigned int status = 0;
  const auto message = next(status);
  EXPECT_EQ(status, 0U);
  EXPECT_EQ(message->headers().findByType(gma::PREAMBLE)->value().count(), 65535);
  EXPECT_EQ(content(*message->getBody()), "text\r\n");
  EXPECT_EQ(takeLogText(), "11:1 Too many preamble lines, the rest is left out.\n");
}

struct DateCase {
  const char* fields;
  const char* date;  // "" when there is none
};

class MessageDate : public Spool, public testing::WithParamInterface<DateCase> {};

TEST_P(MessageDate, IsReadFromTheField) {
  put("M", std::string(GetParam().fields) + "\n\nx\n");
  unsigned int status = 0;
  const auto message = next(status);
  DV_Date date(1900, 1, 1);
  const bool found = message->getDate(date);
  EXPECT_EQ(found ? std::string(date.digits(), 8) : "", GetParam().date);
}

INSTANTIATE_TEST_SUITE_P(
    All, MessageDate,
    testing::Values(DateCase{"Date: Tue, 3 Feb 98 10:00:00 GMT", "19980203"},
                    DateCase{"Date: 3 Feb 2001", "20010203"}, DateCase{"Date: Feb 3 2001", ""},
                    DateCase{"Date: 3 (third) FEB\n 2001", "20010203"},
                    DateCase{"Resent-Date: 4 Mar 99 1\nDate: 3 Feb 98 1", "19990304"},
                    DateCase{"Date: 99 Jan 99999", "00000199"}, DateCase{"Date: -3 Feb 98", ""},
                    DateCase{"Date: 3 Foo 98", ""}, DateCase{"Date: 3 Feb", ""},
                    DateCase{"Date: 3 Feb x", "00000203"}, DateCase{"Date: 3 Feb 98 (", "19980203"},
                    DateCase{"Date:", ""}, DateCase{"Subject: x", ""}));

}  // namespace
}  // namespace krxtest
