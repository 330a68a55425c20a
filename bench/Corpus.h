// Seeded mail for the benchmarks. The same seed gives the same bytes everywhere: nothing here uses
// a distribution of the standard library, whose results differ from one library to the next.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace bench {

class Random {
 public:
  explicit Random(std::uint64_t seed) noexcept : m_state(seed) {}
  std::uint64_t next() noexcept;
  // Evenly from `low` to `high`, both included.
  std::size_t between(std::size_t low, std::size_t high) noexcept;

 private:
  std::uint64_t m_state;
};

// The two files of a pair.
struct Mail {
  std::string envelope;
  std::string message;
};

class MailMaker {
 public:
  explicit MailMaker(std::uint64_t seed) noexcept : m_random(seed) {}

  // Text of 2 to 4 KB, its header block included.
  Mail plain();
  // Text and HTML, both in quoted-printable.
  Mail alternative();
  // A text and a Base64 attachment of `bytes` before it is encoded.
  Mail attachment(std::size_t bytes);
  // One of 60 % plain, 30 % alternative, 10 % with an attachment of 20 to 500 KB.
  Mail typical();

  // Mail with `count` of one thing, and little of everything else.
  Mail recipients(std::size_t count);
  Mail headers(std::size_t count);
  Mail parts(std::size_t count);
  Mail lines(std::size_t count);
  // The addresses of recipients(count) as one list, comma between them.
  static std::string addressList(std::size_t count);

 private:
  std::string envelope();
  std::string commonHeaders();
  Mail finish(std::string message);
  std::string_view word() noexcept;
  std::string sentence(std::size_t width);
  void addText(std::string& text, std::size_t bytes);
  void addQuotedPrintable(std::string& text, std::size_t bytes, bool html);
  void addBase64(std::string& text, std::size_t bytes);
  std::string boundary();

  Random m_random;
  unsigned int m_number = 0;
};

// Writes the pair number `number` into the directory; ends the program when that is impossible.
void writePair(const std::string& directory, unsigned int number, const Mail& mail);
void writeFile(const std::string& path, std::string_view content);

}  // namespace bench
