// Matching groups: alternatives, sets, abbreviations and their repetition.
#include <algorithm>
#include <climits>

#include "dv/DVDECODE.h"
#include "dv/DVMATCH.h"

namespace dv {

namespace {

constexpr unsigned int WORD = 4;
constexpr unsigned int MASK_BITS = 32;  // alternatives that the selector of a "#" group can tell

bool isModifier(char c) noexcept {
  return c == ' ' || c == '+' || c == '*' || c == '#' || c == '/';
}

bool canRepeat(char modifier) noexcept {
  return modifier == '+' || modifier == '*';
}

// Alternatives are counted from 1; 0 is none and has no bit.
std::uint32_t maskBit(unsigned int index) noexcept {
  return static_cast<std::uint32_t>((std::uint64_t{1} << index) >> 1);
}

// Whether a "#" group has taken this alternative already, or could not tell that it did.
bool isTaken(std::uint32_t taken, unsigned int index) noexcept {
  return index > MASK_BITS || (taken & maskBit(index)) != 0;
}

}  // namespace

int Matcher::matchGroup(const PatternElement& group, std::size_t offset, bool live) {
  if (!isModifier(group.code)) {
    return BAD_PATTERN;
  }
  const int result = canRepeat(group.code) && group.count > 1
                         ? matchRepeated(group, offset, live)
                         : matchAlternatives(group.code, offset, live);
  if (result < NO_MATCH) {
    return result;
  }
  if (!m_output.cursorFits()) {
    return NO_ROOM;
  }
  return !live || group.code == '*' ? std::max(result, 0) : result;
}

// Each repetition has its place in the record, also one that does not match.
int Matcher::matchRepeated(const PatternElement& group, std::size_t offset, bool live) {
  const OutputRecord::Offset counter = reserveWord(live);
  const std::size_t body = m_pattern.position();
  std::uint32_t matched = 0;
  int consumed = 0;
  for (unsigned int i = 0; i < group.count; ++i) {
    m_pattern.seek(body);
    const int result =
        matchAlternatives(group.code, offset + static_cast<std::size_t>(consumed), live);
    if (result < NO_MATCH) {
      return result;
    }
    if (result >= 0) {
      consumed += result;
      ++matched;
    }
  }
  if (matched == 0) {
    return NO_MATCH;
  }
  m_output.store(counter, matched);
  return consumed;
}

// One pass over a group: the characters consumed, or a no-match, which is also the result while
// the group is only laid out.
int Matcher::matchAlternatives(char modifier, std::size_t offset, bool live) {
  switch (modifier) {
    case '#':
      return matchAnyOf(offset, live);
    case '/':
      return matchAbbreviation(offset, live);
    default:
      return matchOneOf(offset, live);
  }
}

int Matcher::matchOneOf(std::size_t offset, bool live) {
  const OutputRecord::Offset selector = reserveWord(live);
  Choice choice;
  const int result = choose(offset, live, nullptr, choice);
  if (result < 0) {
    return result;
  }
  m_output.store(selector, std::uint32_t{choice.index});
  return choice.length;
}

// Every match starts over with the first alternative, until none of those left matches.
int Matcher::matchAnyOf(std::size_t offset, bool live) {
  const OutputRecord::Offset selector = reserveWord(live);
  const OutputRecord::Offset start = m_output.cursor();
  const std::size_t body = m_pattern.position();
  std::uint32_t taken = 0;
  int consumed = 0;
  Choice choice;
  int result = choose(offset, live, &taken, choice);
  while (result >= 0) {
    taken |= maskBit(choice.index);
    consumed += choice.length;
    m_pattern.seek(body);
    m_output.moveTo(start);
    choice = Choice();
    result = choose(offset + static_cast<std::size_t>(consumed), live, &taken, choice);
  }
  if (result < NO_MATCH || taken == 0) {
    return result;
  }
  m_output.store(selector, taken);
  return consumed;
}

// The group is laid out before it is matched, because an abbreviation may leave off anywhere. The
// first alternative always matches; others only have their place.
int Matcher::matchAbbreviation(std::size_t offset, bool live) {
  const OutputRecord::Offset start = m_output.cursor();
  const std::size_t body = m_pattern.position();
  Choice none;
  const int layout = choose(offset, false, nullptr, none);
  if (layout < NO_MATCH || !live) {
    return layout;
  }
  const OutputRecord::Offset after = m_output.cursor();
  const std::size_t end = m_pattern.position();
  m_output.moveTo(start);
  m_pattern.seek(body);
  const int result = matchSequence(offset, Mode::abbreviate);
  m_output.moveTo(after);
  m_pattern.seek(end);
  return result;
}

// Reads all alternatives of a group, each with its outputs from the same offset. The first that
// matches is the choice; those after it, and those that `taken` rules out, are only laid out. What
// a failed alternative stored is undone. 0 when there is a choice.
int Matcher::choose(std::size_t offset, bool live, const std::uint32_t* taken, Choice& choice) {
  const OutputRecord::Offset start = m_output.cursor();
  const std::string saved = live ? m_output.save(start) : std::string();
  OutputRecord::Offset after = start;
  unsigned int index = 0;
  do {
    ++index;
    const bool attempt = live && choice.index == 0 && (taken == nullptr || !isTaken(*taken, index));
    m_output.moveTo(start);
    const int result = matchSequence(offset, attempt ? Mode::match : Mode::layOut);
    if (result < NO_MATCH) {
      return result;
    }
    if (result == NO_MATCH) {
      m_output.restore(start, saved);
    } else if (attempt) {
      choice = {index, result};
    }
    after = std::max(after, m_output.cursor());
  } while (m_last == ElementKind::alternative);
  m_output.moveTo(after);
  return choice.index != 0 ? 0 : NO_MATCH;
}

OutputRecord::Offset Matcher::reserveWord(bool live) noexcept {
  const OutputRecord::Offset place = m_output.reserve(WORD, WORD);
  if (live) {
    m_output.store(place, std::uint32_t{0});
  }
  return place;
}

}  // namespace dv
