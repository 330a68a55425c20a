// The names of an outbound pair: the base name of its identifying header where that is a name that
// every reader takes, else one made from the clock.
#include <cstdio>

#include "dv/DVPATH.h"
#include "gen/GENCODES.h"
#include "krx/krxdraw.h"
#include "krx/krxmsg.h"
#include "plat/PlatClock.h"
#include "rfc/rfcread.h"

namespace {

constexpr std::size_t MAX_BASE_NAME = 200;
constexpr int ABSENT = -3;

// A base name comes from the mail: it must be one plain file name, here and at the next hop.
bool isAcceptableBaseName(std::string_view name) {
  if (name.empty() || name.size() > MAX_BASE_NAME) {
    return false;
  }
  for (const char c : name) {
    if (static_cast<unsigned char>(c) < 0x20 ||
        std::string_view("/\\:*?\"<>|").find(c) != std::string_view::npos) {
      return false;
    }
  }
  const auto isEdge = [](char c) { return c == '.' || c == ' '; };
  return !isEdge(name.front()) && !isEdge(name.back());
}

bool isAbsent(const SCL_StringRef& path) {
  return dv::checkFile(path) == ABSENT;
}

// Either spelling of the extension takes the name.
bool isFreeName(const SCL_StringRef& directory, const SCL_StringRef& name) {
  const SCL_String path = directory + name;
  SCL_String other(path);
  const bool lower = SCL_isLower(SCL_lastChar(path));
  for (unsigned int i = path.length() - 3; i < path.length(); ++i) {
    other[i] = lower ? SCL_toUpper(path.c_str()[i]) : SCL_toLower(path.c_str()[i]);
  }
  return isAbsent(path) && isAbsent(other);
}

}  // namespace

bool KRX_NameDraw::draw(SCL_String& base) {
  if (m_draws == MAX_DRAWS) {
    return false;
  }
  if (m_draws++ > 0) {
    plat::sleepMilliseconds(1);
  }
  const plat::Moment now = plat::now();
  char text[32];
  std::snprintf(text, sizeof text, "C%010lu%03u", static_cast<unsigned long>(now.seconds),
                static_cast<unsigned int>(now.milliseconds));
  base = text;
  return true;
}

bool KRX_Message::baseNameFromHeader(SCL_String& base) const {
  const GMA_Mhdr* header = m_headers.findByType(gma::RCPMESSAGEID);
  if (header == nullptr) {
    return false;
  }
  const SCL_String value = rfc_unfold(header->value());
  const std::string_view text = value.view();
  const std::size_t open = text.find('<');
  const std::size_t at = open == std::string_view::npos ? open : text.find('@', open);
  if (at == std::string_view::npos || !isAcceptableBaseName(text.substr(open + 1, at - open - 1))) {
    return false;
  }
  base = SCL_String(text.substr(open + 1, at - open - 1));
  return true;
}

// Every one of them: an older one that stayed would no longer match the file.
void KRX_Message::dropMessageIdHeaders() {
  for (int i = m_headers.count() - 1; i >= 0; --i) {
    if (m_headers.get(static_cast<std::uint16_t>(i))->type() == gma::RCPMESSAGEID) {
      m_headers.remove(i);
    }
  }
}

void KRX_Message::addMessageIdHeader(const SCL_StringRef& base) {
  SCL_String value("<");
  value += base;
  value += '@';
  value += m_dflt_domain;
  value += '>';
  m_headers.add(GMA_Mhdr(gma::RCPMESSAGEID, value));
}

void KRX_Message::forgetNames() {
  dropMessageIdHeaders();
  m_rcp_file.clear();
  m_msg_file.clear();
}

bool KRX_Message::namesAreFree() const {
  return isFreeName(m_dst_dir, m_rcp_file) && isFreeName(m_dst_dir, m_msg_file);
}

void KRX_Message::chooseFileNames(unsigned int& status) {
  KRX_NameDraw draw;
  chooseFileNames(draw, status);
}

void KRX_Message::chooseFileNames(KRX_NameDraw& draw, unsigned int& status) {
  while (status == 0) {
    if (m_rcp_file.isEmpty() || m_msg_file.isEmpty()) {
      SCL_String base;
      if (!baseNameFromHeader(base)) {
        dropMessageIdHeaders();
        if (!draw.draw(base)) {
          status = KRX_MESSAGE_CREATE;
          return;
        }
        addMessageIdHeader(base);
      }
      m_rcp_file = base + ".RCP";
      m_msg_file = base + ".MSG";
    }
    if (namesAreFree()) {
      break;
    }
    forgetNames();
  }
  // A fetched pair may have come without the identifying header; its own name makes one.
  if (status == 0 && m_headers.findByType(gma::RCPMESSAGEID) == nullptr) {
    addMessageIdHeader(m_rcp_file.extract(0, m_rcp_file.length() - 4));
  }
}
