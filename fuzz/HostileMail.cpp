// The generators of hostile mail.
#include "fuzz/HostileMail.h"

#include <iterator>
#include <random>
#include <string_view>

namespace hostile {
namespace {

constexpr std::size_t MANY = 100000;
constexpr std::size_t MEGABYTE = 1000000;

const std::string FROM_TO = "From: a@example.org\r\nTo: b@example.net\r\nSubject: x\r\n";
const std::string MIME = FROM_TO + "MIME-Version: 1.0\r\n";
const std::string ENVELOPE =
    "Message-ID: <HOSTILE@example.org>\r\nReturn-path: a@example.org\r\nRecipient: "
    "b@example.net\r\n";

Mail withPlainEnvelope(std::string message) {
  return {std::move(message), ENVELOPE};
}

template <class Piece>
std::string repeated(std::size_t count, Piece piece) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) {
    text += piece(i);
  }
  return text;
}

std::string copies(std::size_t count, std::string_view text) {
  return repeated(count, [&](std::size_t) { return text; });
}

std::string numbered(const char* before, std::size_t i, const char* after) {
  return before + std::to_string(i) + after;
}

std::string multipartHeader(const std::string& boundary) {
  return "Content-Type: multipart/mixed; boundary=" + boundary + "\r\n";
}

// A header value that is folded before every piece.
Mail withFoldedValue(const std::string& field, const std::string& pieces) {
  return withPlainEnvelope(MIME + field + pieces + "\r\n\r\ntext\r\n.\r\n");
}

Mail nestedMultiparts(std::uint32_t) {
  return withPlainEnvelope(
      MIME +
      repeated(MANY,
               [](std::size_t i) {
                 return multipartHeader(numbered("b", i, "")) + numbered("\r\n--b", i, "\r\n");
               }) +
      "\r\ntext\r\n" +
      repeated(MANY, [](std::size_t i) { return numbered("--b", MANY - 1 - i, "--\r\n"); }) +
      ".\r\n");
}

Mail nestedMessages(std::uint32_t) {
  return withPlainEnvelope(
      MIME + copies(MANY, "Content-Type: message/rfc822\r\n\r\nMIME-Version: 1.0\r\n") +
      "\r\ntext\r\n.\r\n");
}

Mail parts(std::size_t count) {
  return withPlainEnvelope(MIME + multipartHeader("b") + "\r\n" +
                           copies(count, "--b\r\n\r\nx\r\n") + "--b--\r\n.\r\n");
}

// A part that is multipart itself, so that its parts are found by the view.
Mail nestedParts(std::size_t count) {
  return withPlainEnvelope(MIME + multipartHeader("o") + "\r\n--o\r\n" + multipartHeader("b") +
                           "\r\n" + copies(count, "--b\r\n\r\nx\r\n") + "--b--\r\n--o--\r\n.\r\n");
}

Mail boundaryLines(const std::string& head, const char* tail) {
  return withPlainEnvelope(MIME + head + copies(MEGABYTE, "--b\r\n") + tail + ".\r\n");
}

// Lines that only begin like the boundary.
Mail almostBoundaries(std::uint32_t) {
  const std::string boundary(70, '-');
  return withPlainEnvelope(MIME + multipartHeader('"' + boundary + '"') + "\r\n--" + boundary +
                           "\r\n\r\n" + copies(200000, std::string(71, '-') + "\r\n") + "--" +
                           boundary + "--\r\n.\r\n");
}

Mail headerLines(std::uint32_t) {
  return withPlainEnvelope(
      repeated(MANY, [](std::size_t i) { return numbered("X-Header-", i, ": value\r\n"); }) +
      "\r\ntext\r\n.\r\n");
}

Mail oneNameHeaders(std::uint32_t) {
  return withPlainEnvelope(copies(MANY, "Received: from a by b; today\r\n") + "\r\ntext\r\n.\r\n");
}

Mail badHeaders(std::uint32_t) {
  return withPlainEnvelope(copies(MANY, "Subject: x\r\nno field at all\r\n") + "\r\ntext\r\n.\r\n");
}

Mail recipients(std::size_t count) {
  return {MIME + "\r\ntext\r\n.\r\n",
          "Message-ID: <HOSTILE@example.org>\r\nReturn-path: a@example.org\r\n" +
              repeated(count, [](std::size_t i) {
                return numbered("Recipient: user", i, "@example.net\r\n");
              })};
}

Mail sameRecipient(std::uint32_t) {
  return {MIME + "\r\ntext\r\n.\r\n", ENVELOPE + copies(MANY, "Recipient: b@example.net\r\n")};
}

Mail headerRecipients(std::uint32_t) {
  return withPlainEnvelope(
      "From: a@example.org\r\nTo: x@example.net" +
      repeated(60000, [](std::size_t i) { return numbered(",\r\n user", i, "@example.net"); }) +
      "\r\n\r\ntext\r\n.\r\n");
}

Mail longHeaderLine(std::uint32_t) {
  return withPlainEnvelope("Subject: " + std::string(10 * MEGABYTE, 'x') + "\r\n\r\ntext\r\n.\r\n");
}

Mail largeHeader(std::uint32_t) {
  return withFoldedValue("Subject: x",
                         copies(10 * MEGABYTE / 1000, "\r\n " + std::string(997, 'x')));
}

Mail manyLargeHeaders(std::uint32_t) {
  return withPlainEnvelope(copies(10 * MEGABYTE / 1000, "X-A: " + std::string(993, 'x') + "\r\n") +
                           "\r\ntext\r\n.\r\n");
}

Mail longBodyLine(const char* encoding, const char* text) {
  return withPlainEnvelope(MIME + "Content-Transfer-Encoding: " + encoding + "\r\n\r\n" +
                           copies(50 * MEGABYTE / std::string_view(text).size(), text) +
                           "\r\n.\r\n");
}

Mail longEnvelopeLine(std::uint32_t) {
  return {FROM_TO + "\r\ntext\r\n.\r\n",
          ENVELOPE + "Recipient: " + std::string(50 * MEGABYTE, 'x')};
}

Mail nestedComments(std::uint32_t) {
  return withFoldedValue("Content-Type: text/plain",
                         copies(1000, "\r\n " + std::string(1000, '(')) +
                             copies(1000, "\r\n " + std::string(1000, ')')));
}

Mail nestedCommentsInAddress(std::uint32_t) {
  return {FROM_TO + "\r\ntext\r\n.\r\n",
          ENVELOPE + copies(1000, "Recipient: c@d " + std::string(500, '(') +
                                      std::string(500, ')') + "\r\n")};
}

Mail parameters(std::uint32_t) {
  return withFoldedValue("Content-Type: text/plain", repeated(50000, [](std::size_t i) {
                           return numbered(";\r\n p", i, "=v");
                         }));
}

Mail partParameters(std::uint32_t) {
  return withPlainEnvelope(
      MIME + multipartHeader("b") + "\r\n--b\r\nContent-Type: text/plain" +
      repeated(50000, [](std::size_t i) { return numbered(";\r\n p", i, "=v"); }) +
      "\r\n\r\ntext\r\n--b--\r\n.\r\n");
}

Mail nulBody(std::uint32_t) {
  return withPlainEnvelope(FROM_TO + "\r\n" + std::string(10 * MEGABYTE, '\0') + "\r\n.\r\n");
}

Mail nulHeaders(std::uint32_t) {
  const std::string nuls(1000, '\0');
  return withPlainEnvelope(copies(10000, "X-A: " + nuls + "\r\n" + nuls + "\r\n") +
                           "\r\ntext\r\n.\r\n");
}

Mail nulFile(std::uint32_t) {
  return withPlainEnvelope(std::string(10 * MEGABYTE, '\0'));
}

Mail onlyLineEnds(const char* end) {
  return withPlainEnvelope(FROM_TO + "\r\n" + copies(10 * MEGABYTE, end));
}

Mail emptyPreamble(std::uint32_t) {
  return withPlainEnvelope(MIME + multipartHeader("b") + "\r\n" + copies(MEGABYTE, "x\r\n") +
                           "--b\r\n\r\ntext\r\n--b--\r\n" + copies(MEGABYTE, "y\r\n") + ".\r\n");
}

// Text drawn from what the readers look at, but for the lines that would end it.
Mail mixture(std::uint32_t seed) {
  static constexpr const char* PIECES[] = {
      "\r\n", "\n", "\r",   "..",   "--b",  "\r\n--b\r\n\r\n", "=", "=3D", "=\r\n", "((", "\"", ";",
      " ",    ":",  "%s%n", "\xe9", "AAAA", "X-A: b",          "-", "--",  "\t"};
  std::mt19937 random(seed);
  return withPlainEnvelope(
      MIME + multipartHeader("b") + "\r\n--b\r\n\r\n" +
      repeated(MEGABYTE, [&](std::size_t) { return PIECES[random() % std::size(PIECES)]; }));
}

template <class Make, class... Arguments>
std::function<Mail(std::uint32_t)> with(Make make, Arguments... arguments) {
  return [=](std::uint32_t) { return make(arguments...); };
}

}  // namespace

const std::vector<Case>& cases() {
  static const std::vector<Case> table = {
      {"100,000 nested multiparts", nestedMultiparts},
      {"100,000 nested embedded messages", nestedMessages},
      {"60,000 parts", with(parts, 60000)},
      {"100,000 parts", with(parts, MANY)},
      {"60,000 parts in a nested multipart", with(nestedParts, 60000)},
      {"100,000 parts in a nested multipart", with(nestedParts, MANY)},
      {"1,000,000 boundary lines", with(boundaryLines, multipartHeader("b") + "\r\n", "--b--\r\n")},
      {"1,000,000 boundary lines in a nested multipart",
       with(boundaryLines, multipartHeader("o") + "\r\n--o\r\n" + multipartHeader("b") + "\r\n",
            "--b--\r\n--o--\r\n")},
      {"200,000 lines that only begin like a boundary", almostBoundaries},
      {"2,000,000 lines before and behind the parts", emptyPreamble},
      {"100,000 header lines", headerLines},
      {"100,000 header lines of one name", oneNameHeaders},
      {"200,000 header lines, every other one malformed", badHeaders},
      {"60,000 recipients", with(recipients, 60000)},
      {"100,000 recipients", with(recipients, MANY)},
      {"100,000 times the same recipient", sameRecipient},
      {"60,000 recipients in the header", headerRecipients},
      {"a header line of 10 MB", longHeaderLine},
      {"one header of 10 MB in 10,000 lines", largeHeader},
      {"10,000 headers of 1 KB", manyLargeHeaders},
      {"a body line of 50 MB", with(longBodyLine, "7bit", "x")},
      {"a Base64 line of 50 MB", with(longBodyLine, "base64", "AAAA")},
      {"a quoted-printable line of 50 MB", with(longBodyLine, "quoted-printable", "=3D")},
      {"a quoted-printable line of 50 MB of blanks", with(longBodyLine, "quoted-printable", " ")},
      {"an envelope line of 50 MB", longEnvelopeLine},
      {"1,000,000 nested comments", nestedComments},
      {"1,000 recipients with 500 nested comments", nestedCommentsInAddress},
      {"50,000 parameters", parameters},
      {"50,000 parameters of a part", partParameters},
      {"10 MB of NUL in the body", nulBody},
      {"20 MB of NUL in the header", nulHeaders},
      {"10 MB of NUL and nothing else", nulFile},
      {"10,000,000 line feeds", with(onlyLineEnds, "\n")},
      {"10,000,000 carriage returns", with(onlyLineEnds, "\r")},
      {"1,000,000 pieces of syntax at random", mixture},
  };
  return table;
}

}  // namespace hostile
