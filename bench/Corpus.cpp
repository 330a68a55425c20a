// Seeded mail.
#include "bench/Corpus.h"

#include <cstdio>
#include <cstdlib>

namespace bench {
namespace {

constexpr std::size_t KILOBYTE = 1000;
constexpr std::size_t TEXT_WIDTH = 72;
constexpr std::size_t BASE64_WIDTH = 76;
constexpr std::string_view END_OF_DATA = ".\r\n";

constexpr std::string_view WORDS[] = {
    "the",     "of",       "contract", "meeting", "please",  "and",    "to",       "schedule",
    "budget",  "review",   "we",       "have",    "server",  "report", "attached", "is",
    "quarter", "delivery", "on",       "Monday",  "a",       "with",   "customer", "order",
    "regards", "thanks",   "for",      "your",    "message", "about",  "draft",    "version"};
constexpr std::string_view ACCENTED[] = {"caf=E9", "na=EFve", "Gr=FC=DFe", "=C9t=E9", "pi=F1ata"};
constexpr std::string_view HOSTS[] = {"example.org", "example.net", "mail.example.com",
                                      "relay.example.org"};
constexpr std::string_view PEOPLE[] = {"ann", "bob", "carol", "dave", "erin", "frank"};

template <std::size_t SIZE>
std::string_view pick(Random& random, const std::string_view (&from)[SIZE]) noexcept {
  return from[random.between(0, SIZE - 1)];
}

std::string recipientAddress(std::size_t index) {
  char text[64];
  std::snprintf(text, sizeof text, "recipient%06zu@host%02zu.example.org", index, index % 97);
  return text;
}

void addField(std::string& text, std::string_view name, std::string_view value) {
  text.append(name).append(": ").append(value).append("\r\n");
}

}  // namespace

// SplitMix64: a few operations, the same on every machine.
std::uint64_t Random::next() noexcept {
  m_state += 0x9E3779B97F4A7C15U;
  std::uint64_t mixed = m_state;
  mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9U;
  mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBU;
  return mixed ^ (mixed >> 31);
}

std::size_t Random::between(std::size_t low, std::size_t high) noexcept {
  return low + next() % (high - low + 1);
}

std::string_view MailMaker::word() noexcept {
  return pick(m_random, WORDS);
}

std::string MailMaker::sentence(std::size_t width) {
  std::string line(word());
  while (line.size() < width) {
    line.append(" ").append(word());
  }
  return line;
}

void MailMaker::addText(std::string& text, std::size_t bytes) {
  const std::size_t end = text.size() + bytes;
  while (text.size() < end) {
    text.append(sentence(m_random.between(TEXT_WIDTH / 2, TEXT_WIDTH))).append("\r\n");
    if (m_random.between(0, 7) == 0) {
      text.append("\r\n");
    }
  }
}

// Paragraphs longer than a line, broken softly, with characters that had to be encoded.
void MailMaker::addQuotedPrintable(std::string& text, std::size_t bytes, bool html) {
  const std::size_t end = text.size() + bytes;
  while (text.size() < end) {
    if (html) {
      text.append("<p style=3D\"margin: 0\">");
    }
    for (std::size_t line = m_random.between(1, 4); line > 0; --line) {
      text.append(sentence(TEXT_WIDTH / 2)).append(" ").append(pick(m_random, ACCENTED));
      text.append(" ").append(word()).append(line > 1 ? " =\r\n" : "");
    }
    text.append(html ? "</p>\r\n" : "\r\n\r\n");
  }
}

void MailMaker::addBase64(std::string& text, std::size_t bytes) {
  constexpr char ALPHABET[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  const std::size_t groups = (bytes + 2) / 3;
  text.reserve(text.size() + groups * 4 + groups * 8 / BASE64_WIDTH + KILOBYTE);
  for (std::size_t group = 0; group < groups; ++group) {
    std::uint64_t bits = m_random.next();
    for (int i = 0; i < 4; ++i, bits >>= 6) {
      text += ALPHABET[bits & 63];
    }
    if ((group + 1) % (BASE64_WIDTH / 4) == 0) {
      text.append("\r\n");
    }
  }
  if (groups % (BASE64_WIDTH / 4) != 0) {
    text.append("\r\n");
  }
}

std::string MailMaker::boundary() {
  char text[64];
  std::snprintf(text, sizeof text, "----=_NextPart_%08llX",
                static_cast<unsigned long long>(m_random.next() & 0xFFFFFFFFU));
  return text;
}

std::string MailMaker::envelope() {
  std::string text;
  std::string id("<");
  id.append("M").append(std::to_string(m_number)).append("@example.org>");
  addField(text, "Message-ID", id);
  addField(text, "Return-path", std::string(pick(m_random, PEOPLE)).append("@example.org"));
  for (std::size_t i = m_random.between(1, 3); i > 0; --i) {
    std::string address(pick(m_random, PEOPLE));
    addField(text, "Recipient", address.append(std::to_string(i)).append("@example.net"));
  }
  return text;
}

// What a mail has collected when it has passed two or three relays.
std::string MailMaker::commonHeaders() {
  std::string text;
  for (std::size_t hop = m_random.between(2, 3); hop > 0; --hop) {
    text.append("Received: from ").append(pick(m_random, HOSTS)).append(" by ");
    text.append(pick(m_random, HOSTS)).append("\r\n\t(8.8.8/8.8.8) with SMTP id ");
    text.append(std::to_string(m_random.next() % 100000000)).append(";\r\n\t");
    text.append("Mon, 5 Jan 1998 09:04:33 +0000\r\n");
  }
  std::string id("<");
  id.append(std::to_string(m_random.next())).append("@example.org>");
  addField(text, "Message-Id", id);
  addField(text, "Date", "Mon, 5 Jan 1998 09:04:33 +0000");
  addField(text, "From", "Ann Example <ann@example.org>");
  addField(text, "To", "Bob Example <bob@example.net>, \"Carol, Sales\" <carol@example.net>");
  addField(text, "Subject", sentence(TEXT_WIDTH / 2));
  addField(text, "X-Mailer", "Example Mail 4.03");
  addField(text, "MIME-Version", "1.0");
  return text;
}

Mail MailMaker::finish(std::string message) {
  ++m_number;
  message.append(END_OF_DATA);
  return {envelope(), std::move(message)};
}

Mail MailMaker::plain() {
  std::string text = commonHeaders();
  addField(text, "Content-Type", "text/plain; charset=\"us-ascii\"");
  addField(text, "Content-Transfer-Encoding", "7bit");
  text.append("\r\n");
  const std::size_t target = m_random.between(2 * KILOBYTE, 4 * KILOBYTE);
  addText(text, target - text.size());
  return finish(std::move(text));
}

Mail MailMaker::alternative() {
  const std::string separator = boundary();
  std::string text = commonHeaders();
  text.append("Content-Type: multipart/alternative;\r\n\tboundary=\"").append(separator);
  text.append("\"\r\n\r\nThis is a multi-part message in MIME format.\r\n\r\n");
  for (const bool html : {false, true}) {
    text.append("--").append(separator).append("\r\nContent-Type: ");
    text.append(html ? "text/html" : "text/plain").append("; charset=\"iso-8859-1\"\r\n");
    addField(text, "Content-Transfer-Encoding", "quoted-printable");
    text.append("\r\n");
    addQuotedPrintable(text, m_random.between(KILOBYTE, 4 * KILOBYTE), html);
  }
  text.append("--").append(separator).append("--\r\n");
  return finish(std::move(text));
}

Mail MailMaker::attachment(std::size_t bytes) {
  const std::string separator = boundary();
  std::string text = commonHeaders();
  text.append("Content-Type: multipart/mixed; boundary=\"").append(separator);
  text.append("\"\r\n\r\n--").append(separator).append("\r\n");
  addField(text, "Content-Type", "text/plain; charset=\"us-ascii\"");
  text.append("\r\n");
  addText(text, KILOBYTE);
  text.append("--").append(separator).append("\r\n");
  addField(text, "Content-Type", "application/octet-stream; name=\"data.bin\"");
  addField(text, "Content-Transfer-Encoding", "base64");
  addField(text, "Content-Disposition", "attachment; filename=\"data.bin\"");
  text.append("\r\n");
  addBase64(text, bytes);
  text.append("--").append(separator).append("--\r\n");
  return finish(std::move(text));
}

Mail MailMaker::typical() {
  const std::size_t kind = m_random.between(0, 9);
  if (kind < 6) {
    return plain();
  }
  return kind < 9 ? alternative() : attachment(m_random.between(20 * KILOBYTE, 500 * KILOBYTE));
}

Mail MailMaker::recipients(std::size_t count) {
  Mail mail = plain();
  mail.envelope = "Message-ID: <WIDE@example.org>\r\nReturn-path: ann@example.org\r\n";
  for (std::size_t i = 0; i < count; ++i) {
    addField(mail.envelope, "Recipient", recipientAddress(i));
  }
  return mail;
}

std::string MailMaker::addressList(std::size_t count) {
  std::string list;
  for (std::size_t i = 0; i < count; ++i) {
    list.append(i == 0 ? "" : ", ").append(recipientAddress(i));
  }
  return list;
}

Mail MailMaker::headers(std::size_t count) {
  std::string text = commonHeaders();
  for (std::size_t i = 0; i < count; ++i) {
    addField(text, std::string("X-Field-").append(std::to_string(i)), sentence(TEXT_WIDTH / 2));
  }
  text.append("\r\n");
  addText(text, KILOBYTE);
  return finish(std::move(text));
}

Mail MailMaker::parts(std::size_t count) {
  const std::string separator = boundary();
  std::string text = commonHeaders();
  text.append("Content-Type: multipart/mixed; boundary=\"").append(separator).append("\"\r\n\r\n");
  for (std::size_t i = 0; i < count; ++i) {
    text.append("--").append(separator).append("\r\n");
    addField(text, "Content-Type", "text/plain; charset=\"us-ascii\"");
    addField(text, "Content-Disposition", "attachment");
    text.append("\r\n").append(sentence(TEXT_WIDTH)).append("\r\n");
  }
  text.append("--").append(separator).append("--\r\n");
  return finish(std::move(text));
}

Mail MailMaker::lines(std::size_t count) {
  std::string text = commonHeaders();
  text.append("\r\n");
  for (std::size_t i = 0; i < count; ++i) {
    text.append(sentence(TEXT_WIDTH / 2)).append("\r\n");
  }
  return finish(std::move(text));
}

void writeFile(const std::string& path, std::string_view content) {
  std::FILE* file = std::fopen(path.c_str(), "wb");
  const bool written =
      file != nullptr && std::fwrite(content.data(), 1, content.size(), file) == content.size();
  if (file == nullptr || std::fclose(file) != 0 || !written) {
    std::perror(path.c_str());
    std::exit(EXIT_FAILURE);
  }
}

void writePair(const std::string& directory, unsigned int number, const Mail& mail) {
  char name[32];
  std::snprintf(name, sizeof name, "/M%07u", number);
  const std::string path = directory + name;
  writeFile(path + ".MSG", mail.message);
  writeFile(path + ".RCP", mail.envelope);
}

}  // namespace bench
