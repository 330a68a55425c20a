// Values of a profile's entries: reading and storing them, as text, numbers and booleans.
#include <algorithm>
#include <cstdio>
#include <string>

#include "dv/DVDECODE.h"
#include "gen/GENCODES.h"
#include "pfa/PFAPROF.h"
#include "pfa/PFATEXT.h"

namespace {

constexpr unsigned int NUMBER_SIZE = 32;  // the buffer of the typed reads
constexpr const char* BOOLEAN_PATTERN = "{* T{/RUE}| Y{/ES}| ON| F{/ALSE}| N{/O}| OFF}";
constexpr std::uint32_t LAST_TRUE = 3;  // the pattern's alternatives 1 to 3 are yes

bool decodes(const char* pattern, const char* text, void* value, unsigned int size) {
  int furthest = 0;
  return dv::decode(pattern, false, value, size, furthest, text) >= 0;
}

const char* booleanText(bool value) noexcept {
  return value ? "TRUE" : "FALSE";
}

// The longest number and its sign.
struct NumberText {
  char text[24];
};

NumberText signedText(std::int32_t value) noexcept {
  NumberText result;
  std::snprintf(result.text, sizeof result.text, "%li", static_cast<long>(value));
  return result;
}

}  // namespace

void PFA_Profile::transformValue(char* buffer, unsigned int size, int /*direction*/) {
  std::reverse(buffer, std::find(buffer, buffer + size, '\0'));
}

unsigned int PFA_Profile::getValue(char* buffer, unsigned int size, bool transform,
                                   unsigned int field, const char* name, unsigned int index) {
  if (name != nullptr) {
    if (const unsigned int status = findEntry(name, index); status != 0) {
      return status;
    }
  }
  if (!m_entry) {
    return PFA_NO_ENTRY;
  }
  const PFA_Entry& entry = **m_entry;
  if (entry.isComment()) {
    return PFA_COMMENT;
  }
  if (field > entry.valueCount()) {
    return PFA_FIELD;
  }
  const unsigned int status = PFA_copyText(SCL_trimmed(entry.field(field)), buffer, size);
  if (transform && size > 0) {
    transformValue(buffer, size, 0);
  }
  return status;
}

unsigned int PFA_Profile::getSigned(std::int32_t& value, bool transform, unsigned int field,
                                    const char* name, unsigned int index) {
  char text[NUMBER_SIZE];
  if (const auto status = getValue(text, sizeof text, transform, field, name, index); status != 0) {
    return status;
  }
  std::int32_t decoded = 0;
  if (*text != '\0' && !decodes(" %LI", text, &decoded, sizeof decoded)) {
    return PFA_NUMBER;
  }
  value = decoded;
  return 0;
}

unsigned int PFA_Profile::getUnsigned(std::uint32_t& value, bool transform, unsigned int field,
                                      const char* name, unsigned int index) {
  char text[NUMBER_SIZE];
  if (const auto status = getValue(text, sizeof text, transform, field, name, index); status != 0) {
    return status;
  }
  std::int32_t sign = 0;
  if (decodes(" %LI", text, &sign, sizeof sign) && sign < 0) {
    return PFA_NEGATIVE;
  }
  std::uint32_t decoded = 0;
  if (*text != '\0' && !decodes(" %LU", text, &decoded, sizeof decoded)) {
    return PFA_NUMBER;
  }
  value = decoded;
  return 0;
}

unsigned int PFA_Profile::getBoolean(bool& value, bool transform, unsigned int field,
                                     const char* name, unsigned int index) {
  char text[NUMBER_SIZE];
  if (const auto status = getValue(text, sizeof text, transform, field, name, index); status != 0) {
    return status;
  }
  std::uint32_t selected = 0;
  if (!decodes(BOOLEAN_PATTERN, text, &selected, sizeof selected)) {
    return PFA_BOOLEAN;
  }
  value = selected >= 1 && selected <= LAST_TRUE;
  return 0;
}

unsigned int PFA_Profile::getNameNumber(std::int32_t& value) const {
  if (!m_entry) {
    return PFA_NO_ENTRY;
  }
  if ((*m_entry)->isComment()) {
    return PFA_COMMENT;
  }
  std::int32_t decoded = 0;
  const std::string name((*m_entry)->name());
  if (!decodes("%LI", name.c_str(), &decoded, sizeof decoded)) {
    return PFA_NUMBER;
  }
  value = decoded;
  return 0;
}

unsigned int PFA_Profile::setValue(const SCL_StringRef& text, bool transform, unsigned int field,
                                   const char* name, unsigned int index) {
  if (!m_writable) {
    return PFA_NOT_WRITABLE;
  }
  bool stands = m_entry.has_value();
  const unsigned int status = name != nullptr ? seek(name, index, stands) : PFA_NO_ENTRY;
  return stands ? store(text, transform, field) : status;
}

unsigned int PFA_Profile::store(const SCL_StringRef& text, bool transform, unsigned int field) {
  const PFA_Entry& entry = **m_entry;
  if (entry.isComment()) {
    return PFA_COMMENT;
  }
  if (field < 1 || field > PFA_Entry::MAX_VALUES) {
    return PFA_FIELD;
  }
  const std::string line = entry.textWithField(field, storable(text, transform));
  if (line.size() > PFA_Entry::MAX_TEXT) {
    return PFA_CUT;
  }
  m_section->store(*m_entry, line);
  m_modified = true;
  return 0;
}

// The transform may lengthen the value to twice its length, and may make characters that would end
// the line.
std::string PFA_Profile::storable(const SCL_StringRef& text, bool transform) {
  std::string value(PFA_firstLine(text));
  if (transform) {
    value.resize(value.size() * 2 + 1, '\0');
    transformValue(value.data(), static_cast<unsigned int>(value.size()), 1);
    value.resize(std::min(value.find('\0'), value.size()));
    value.resize(PFA_firstLine(value).size());
  }
  return value;
}

unsigned int PFA_Profile::setSigned(std::int32_t value, bool transform, unsigned int field,
                                    const char* name, unsigned int index) {
  return setValue(signedText(value).text, transform, field, name, index);
}

unsigned int PFA_Profile::setUnsigned(std::uint32_t value, bool transform, unsigned int field,
                                      const char* name, unsigned int index) {
  char text[24];
  std::snprintf(text, sizeof text, "%lu", static_cast<unsigned long>(value));
  return setValue(text, transform, field, name, index);
}

unsigned int PFA_Profile::setBoolean(bool value, bool transform, unsigned int field,
                                     const char* name, unsigned int index) {
  return setValue(booleanText(value), transform, field, name, index);
}

unsigned int PFA_Profile::addSigned(const SCL_StringRef& name, unsigned int index,
                                    std::int32_t value, unsigned int field) {
  return addEntry(name, index, signedText(value).text, field);
}

unsigned int PFA_Profile::addBoolean(const SCL_StringRef& name, unsigned int index, bool value,
                                     unsigned int field) {
  return addEntry(name, index, booleanText(value), field);
}
