// The matching engine. One object is one match: the pattern position, the output cursor and the
// furthest offset are its state, while the input offset and the mode belong to each sequence.
// Sequences are in DVSEQ, groups in DVGROUP, conversions in DVCONV.
//
// Every element is matched `live`, or only laid out: when the alternative that it is in has failed
// or is not tried, it moves the pattern position and the output cursor as if it had matched, and
// consumes and stores nothing.
#pragma once

#include <cstdint>
#include <string_view>

#include "dv/DVELEM.h"
#include "dv/DVOUTPUT.h"

namespace dv {

class Matcher {
 public:
  // Pattern, record and input must outlive the matcher.
  Matcher(std::string_view pattern, bool caseSensitive, const OutputRecord& output,
          std::string_view input) noexcept
      : m_pattern(pattern), m_output(output), m_input(input), m_caseSensitive(caseSensitive) {}

  // As dv::decode; once for each object.
  int match();
  int furthest() const noexcept { return static_cast<int>(m_furthest); }

 private:
  enum class Mode {
    match,
    abbreviate,  // what matched before the first failure counts
    layOut       // from the start only laid out
  };
  struct Choice {
    unsigned int index = 0;  // 1-based, 0 while nothing has matched
    int length = 0;
  };

  int matchSequence(std::size_t start, Mode mode);
  int matchElement(const PatternElement& element, std::size_t offset, bool live);
  int matchEnd(std::size_t offset, bool live) const noexcept;
  int skipBlanks(std::size_t offset, bool live) const noexcept;
  int matchLiteral(char literal, std::size_t offset, bool live) const noexcept;

  int matchGroup(const PatternElement& group, std::size_t offset, bool live);
  int matchRepeated(const PatternElement& group, std::size_t offset, bool live);
  int matchAlternatives(char modifier, std::size_t offset, bool live);
  int matchOneOf(std::size_t offset, bool live);
  int matchAnyOf(std::size_t offset, bool live);
  int matchAbbreviation(std::size_t offset, bool live);
  int choose(std::size_t offset, bool live, const std::uint32_t* taken, Choice& choice);
  OutputRecord::Offset reserveWord(bool live) noexcept;

  int convert(const PatternElement& element, std::size_t offset, bool live);
  int convertNumber(const PatternElement& element, int base, std::size_t offset, bool live);
  template <class T>
  int convertFloat(std::size_t offset, bool live);
  int convertAnswer(std::size_t offset, bool live);
  int convertText(const PatternElement& element, std::size_t offset, bool live);
  int convertPath(const PatternElement& element, std::size_t offset, bool live);
  int moveCursor(std::int64_t distance) noexcept;
  int storeCount(unsigned int count, bool live) noexcept;
  std::string_view rest(std::size_t offset) const noexcept { return m_input.substr(offset); }

  PatternReader m_pattern;
  OutputRecord m_output;
  std::string_view m_input;
  bool m_caseSensitive;
  std::size_t m_furthest = 0;
  ElementKind m_last = ElementKind::end;  // what ended the last sequence
};

}  // namespace dv
