// Console input, and the settings that the environment or a prompt gives.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <limits>
#include <string>

#include "gen/GENDBG.h"
#include "gen/GENDBGST.h"
#include "plat/PlatConsole.h"
#include "plat/PlatRegistry.h"
#include "scl/SCLASCII.h"
#include "scl/SCLEXCPT.h"

namespace {

constexpr std::size_t LINE_LIMIT = 4095;
constexpr std::size_t USED_CHARACTERS = 100;  // of an answer

std::string_view withoutLeadingSpace(std::string_view text) noexcept {
  while (!text.empty() && SCL_isSpace(text.front())) {
    text.remove_prefix(1);
  }
  return text;
}

std::string_view withoutLineEnd(std::string_view line) noexcept {
  while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) {
    line.remove_suffix(1);
  }
  return line;
}

std::string readConsoleLine() {
  std::string line;
  if (!plat::consoleReadLine(LINE_LIMIT, line)) {
    static scl_exception_base noInput("Exit from GENInputString ()", false);
    gen::runExitHandlers();
    throw &noInput;
  }
  return line;
}

// Copies what fits and fills the rest with zeros; the length.
unsigned int copyPadded(std::string_view text, unsigned int size, char* buffer) noexcept {
  if (size == 0) {
    return 0;
  }
  const std::size_t count = std::min<std::size_t>(text.size(), size - 1);
  std::memset(buffer, 0, size);
  std::memcpy(buffer, text.data(), count);
  return static_cast<unsigned int>(count);
}

// The environment's value of a setting, empty when it has none.
std::string settingOf(const char* name) {
  std::string value;
  return plat::environment(name, value) ? std::string(withoutLeadingSpace(value)) : std::string();
}

std::string ask(const std::string& prompt) {
  char answer[USED_CHARACTERS + 1];
  GENInputString(prompt.c_str(), sizeof answer, answer);
  return answer;
}

std::int32_t leadingDigits(const std::string& text) noexcept {
  constexpr std::int64_t LARGEST = std::numeric_limits<std::int32_t>::max();
  std::int64_t value = 0;
  for (std::size_t i = 0; i < text.size() && SCL_isDigit(text[i]); ++i) {
    value = std::min(value * 10 + (text[i] - '0'), LARGEST);
  }
  return static_cast<std::int32_t>(value);
}

bool beginsWithDigit(const std::string& text) noexcept {
  return !text.empty() && SCL_isDigit(text.front());
}

}  // namespace

unsigned int GENInputString(const char* prompt, unsigned int size, char* buffer) {
  gen::debug::openConsole();
  std::string line("\n");
  line += prompt;
  gen::debug::writeConsole(line);
  line = readConsoleLine();
  const std::string_view used = withoutLineEnd(line).substr(0, USED_CHARACTERS);
  const std::string_view text = withoutLeadingSpace(used);
  return copyPadded(text.substr(0, text.find('\0')), size, buffer);
}

namespace gen {

void readSettingString(const char* name, unsigned int size, char* buffer, bool useDefault) {
  std::string prompt = "Enter string for '" + std::string(name) + "'";
  if (useDefault) {
    prompt += " ['" + std::string(buffer) + "']";
  }
  prompt += ": ";
  std::string value = settingOf(name);
  while (value.empty() || value.size() >= size) {
    value = ask(prompt);
    if (value.empty() && useDefault) {
      return;
    }
  }
  copyPadded(value, size, buffer);
}

std::int32_t readSettingNumber(const char* name, std::int32_t defaultValue, bool hasDefault) {
  std::string prompt = "Enter value for '" + std::string(name) + "'";
  if (hasDefault) {
    prompt += " [" + std::to_string(defaultValue) + "]";
  }
  prompt += ": ";
  std::string value = settingOf(name);
  if (value.empty()) {
    value = ask(prompt);
  }
  while (!beginsWithDigit(value)) {
    if (hasDefault) {
      return defaultValue;
    }
    value = ask(prompt);
  }
  return leadingDigits(value);
}

}  // namespace gen
