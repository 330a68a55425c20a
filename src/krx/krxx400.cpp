// X.400 attribute lists in a local part (RFC 1327): "/G=Ann/S=Lee" and their like.
#include <string_view>

#include "krx/krxaddr.h"
#include "rfc/rfcwrite.h"

namespace {

// Calls `visit` with each key (its leading "/" kept) and value; false ends the walk.
template <class Visitor>
void walkPairs(std::string_view text, Visitor visit) {
  std::size_t at = text.find('/');
  while (at != std::string_view::npos && at + 1 < text.size()) {
    const std::size_t equals = text.find('=', at);
    if (equals == std::string_view::npos) {
      return;
    }
    std::size_t end = text.find('/', equals + 1);
    const std::size_t stop = end == std::string_view::npos ? text.size() : end;
    visit(text.substr(at, equals - at), text.substr(equals + 1, stop - equals - 1));
    at = end;
  }
}

struct Attributes {
  std::optional<std::string_view> rfc822, personalName, givenName, initials, surname;
};

// The first pair with a key wins.
Attributes readAttributes(std::string_view text) {
  Attributes found;
  const struct {
    std::string_view key;
    std::optional<std::string_view>& value;
  } wanted[] = {{"/RFC-822", found.rfc822},
                {"/PN", found.personalName},
                {"/G", found.givenName},
                {"/I", found.initials},
                {"/S", found.surname}};
  walkPairs(text, [&](std::string_view key, std::string_view value) {
    for (const auto& attribute : wanted) {
      if (!attribute.value && SCL_equalNoCase(key, attribute.key)) {
        attribute.value = value;
        return;
      }
    }
  });
  return found;
}

void appendWithPoint(SCL_String& name, std::string_view part) {
  if (!name.isEmpty()) {
    name += '.';
  }
  name.append(part);
}

// Given name, each initial and the surname, with points between.
SCL_String composeName(const Attributes& attributes) {
  SCL_String name;
  if (attributes.givenName) {
    name.append(*attributes.givenName);
  }
  if (attributes.initials) {
    for (const char& initial : *attributes.initials) {
      appendWithPoint(name, {&initial, 1});
    }
  }
  if (attributes.surname) {
    appendWithPoint(name, *attributes.surname);
  }
  return name;
}

}  // namespace

std::optional<SCL_String> KRX_mapX400Local(SCL_String& user) {
  if (SCL_firstChar(user) != '/') {
    return std::nullopt;
  }
  const Attributes attributes = readAttributes(user.view());
  if (attributes.rfc822) {
    return rfc_ps_decode(SCL_String(*attributes.rfc822));
  }
  if (attributes.personalName) {
    user = SCL_String(*attributes.personalName);
  } else if (attributes.givenName || attributes.initials || attributes.surname) {
    user = composeName(attributes);
  }
  return std::nullopt;
}
