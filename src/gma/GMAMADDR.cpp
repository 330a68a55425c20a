// Addresses of the generic form user@location, and the names of the address types.
#include "gma/GMAMADDR.h"

#include <algorithm>
#include <istream>
#include <new>
#include <ostream>
#include <typeinfo>

#include "gen/GENCODES.h"
#include "gen/GENWNT.h"
#include "scl/SCLDUMP.h"

namespace {

// What composeText may add to the two parts without growing again: the "@" and a few escapes.
constexpr unsigned int COMPOSE_ROOM = 10;

struct TypeName {
  std::uint32_t type;
  const char* name;
};

constexpr TypeName TYPE_NAMES[] = {
    {gma::TOADDR, "TOADDR"},
    {gma::FROMADDR, "FROMADDR"},
    {gma::CCADDR, "CCADDR"},
    {gma::BCCADDR, "BCCADDR"},
    {gma::NULLADDR, "NULLADDR"},
    {gma::AMUADDR, "AMUADDR"},
    {gma::SENTTOADDR, "SENTTOADDR"},
    {gma::SENTCCADDR, "SENTCCADDR"},
    {gma::SENTBCCADDR, "SENTBCCADDR"},
    {gma::RESENTTOADDR, "RESENTTOADDR"},
    {gma::RESENTCCADDR, "RESENTCCADDR"},
    {gma::RESENTBCCADDR, "RESENTBCCADDR"},
    {gma::APPARENTLYTOADDR, "APPARENTLYTOADDR"},
};

bool needsQuotes(std::string_view part) noexcept {
  return std::any_of(part.begin(), part.end(), [](char c) { return c == '@' || SCL_isSpace(c); });
}

void appendPart(const SCL_String& part, SCL_String& text) {
  if (!needsQuotes(part)) {
    text += part;
    return;
  }
  SCL_String quoted;
  SCL_quote(part.c_str(), part.c_str() + part.length(), quoted);
  text += quoted;
}

// Takes the user off the front of `text`; what stays begins with the "@". False when it does not.
bool takeUser(std::string_view& text, SCL_String& user) {
  std::size_t end = 0;
  if (SCL_firstChar(text) == '"') {
    end = SCL_unquote(text.data(), text.data() + text.size(), user);
  } else {
    end = std::min(text.find('@'), text.size());
    user.assign(text.substr(0, end));
  }
  text.remove_prefix(end);
  return SCL_firstChar(text) == '@';
}

// A quoted location must end where the text ends.
bool readLocation(std::string_view text, SCL_String& location) {
  if (SCL_firstChar(text) == '"') {
    return SCL_unquote(text.data(), text.data() + text.size(), location) == text.size();
  }
  location.assign(text);
  return true;
}

}  // namespace

GMA_Maddr::GMA_Maddr(std::uint32_t type, const SCL_StringRef& user, const SCL_StringRef& location)
    : m_user(user), m_location(location) {
  setType(type);
}

GMA_Maddr::GMA_Maddr(const GMA_Maddr& other)
    : m_type(other.m_type),
      m_user(other.m_user),
      m_location(other.m_location),
      m_original(other.m_original),
      m_friendly(other.m_friendly) {}

GMA_Maddr& GMA_Maddr::operator=(const GMA_Maddr& other) {
  if (this != &other) {
    m_type = other.m_type;
    m_user = other.m_user;
    m_location = other.m_location;
    m_original = other.m_original;
    m_friendly = other.m_friendly;
    partsChanged();
  }
  return *this;
}

GMA_Maddr::~GMA_Maddr() = default;

GMA_Maddr* GMA_Maddr::clone() const {
  return new (std::nothrow) GMA_Maddr(*this);
}

void GMA_Maddr::parse(const SCL_StringRef& text, unsigned int& status) {
  if (status != 0) {
    return;
  }
  std::string_view rest = SCL_trimmed(text);
  SCL_String user;
  SCL_String location;
  if (!takeUser(rest, user) || !readLocation(rest.substr(1), location)) {
    status = GMA_BAD_ADDRESS;
    return;
  }
  setUser(user);
  setLocation(location);
}

void GMA_Maddr::getText(SCL_String& text) const {
  if (m_original.isEmpty()) {
    composeText(text);
  } else {
    text = m_original;
  }
}

void GMA_Maddr::composeText(SCL_String& text) const {
  text.clear();
  text.reserve(m_user.length() + m_location.length() + COMPOSE_ROOM);
  appendPart(m_user, text);
  text += '@';
  appendPart(m_location, text);
}

bool GMA_Maddr::equals(const GMA_Maddr& other) const {
  return m_type == other.m_type && SCL_equalNoCase(m_user, other.m_user) &&
         SCL_equalNoCase(m_location, other.m_location);
}

bool GMA_Maddr::isFoundByParts() const noexcept {
  return typeid(*this) == typeid(GMA_Maddr);
}

void GMA_Maddr::setType(std::uint32_t type) {
  if (type == gma::NO_ADDRESS_TYPE) {
    GENAssertText("Inappropriate address type supplied.", "GMAMADDR", __LINE__);
  }
  m_type = type;
  partsChanged();
}

void GMA_Maddr::dump(const SCL_StringRef& name, std::ostream& stream,
                     SCL_DumpIndent& indent) const {
  const SCL_Dump dump(stream, indent, name, "GMA_Maddr", this);
  dumpFields(stream, indent);
}

void GMA_Maddr::dumpFields(std::ostream& stream, SCL_DumpIndent& indent) const {
  const auto quoted = [&](const char* field, const SCL_String& value) {
    stream << indent << field << " = \"" << value << "\";" << std::endl;
  };
  stream << indent << "m_type = " << gma::addressTypeName(m_type) << ";" << std::endl;
  quoted("m_user", m_user);
  quoted("m_location", m_location);
  quoted("m_original", m_original);
  quoted("m_friendly", m_friendly);
}

bool operator==(const GMA_Maddr& a, const GMA_Maddr& b) {
  return b.getType() == gma::AMUADDR ? b.equals(a) : a.equals(b);
}

bool operator!=(const GMA_Maddr& a, const GMA_Maddr& b) {
  return !(a == b);
}

const char* gma::addressTypeName(std::uint32_t type) {
  for (const TypeName& entry : TYPE_NAMES) {
    if (entry.type == type) {
      return entry.name;
    }
  }
  GENAssert(GEN_BAD_SWITCH_VALUE, "GMAMADDR", __LINE__);
}

void gma::writeAddressType(std::ostream& stream, std::uint32_t type) {
  stream << addressTypeName(type);
}

std::istream& gma::readAddressType(std::istream& stream, std::uint32_t& type) {
  SCL_String word;
  SCL_readWord(stream, word);
  type = NO_ADDRESS_TYPE;
  for (const TypeName& entry : TYPE_NAMES) {
    if (word == entry.name) {
      type = entry.type;
    }
  }
  return stream;
}
