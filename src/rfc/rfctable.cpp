// The process-wide table of header field names. It is searched once for every field of every mail,
// so a small hash table over the fixed rows stands beside the map.
#include "rfc/rfctable.h"

#include <mutex>
#include <span>
#include <utility>

#include "gma/GMAHDRMP.h"
#include "gma/GMATYPES.h"

namespace {

struct Row {
  const char* name;
  std::uint32_t type;
};

constexpr Row SMTP_ROWS[] = {
    {"Date", gma::SENTDATE},
    {"Resent-Date", gma::RESENTDATE},
    {"Return-path", gma::RETURNPATH},
    {"Received", gma::RECEIVED},
    {"From", gma::FROM},
    {"Sender", gma::SENDER},
    {"Reply-To", gma::REPLY_TO},
    {"Resent-From", gma::RESENT_FROM},
    {"Resent-Sender", gma::RESENT_SENDER},
    {"Resent-Reply-To", gma::RESENT_REPLY_TO},
    {"To", gma::TO},
    {"Cc", gma::CC},
    {"Bcc", gma::BCC},
    {"Resent-To", gma::RESENT_TO},
    {"Resent-Cc", gma::RESENT_CC},
    {"Resent-Bcc", gma::RESENT_BCC},
    {"Message-Id", gma::MESSAGEID},
    {"Resent-Message-Id", gma::RESENTMESSAGEID},
    {"In-Reply-To", gma::IN_REPLY_TO},
    {"References", gma::REFERENCES},
    {"Keywords", gma::KEYWORDS},
    {"Subject", gma::SUBJECT},
    {"Comments", gma::COMMENTS},
    {"Encrypted", gma::ENCRYPTED},
    {"MIME-Version", gma::MIME_VERSION},
    {"Content-Type", gma::CONTENT_TYPE},
    {"Content-Transfer-Encoding", gma::CONTENT_TRANSFER_ENCODING},
    {"Content-ID", gma::CONTENT_ID},
    {"Content-Description", gma::CONTENT_DESCRIPTION},
    {"Content-Disposition", gma::CONTENT_DISPOSITION},
    {"Alternate-Recipient", gma::ALTERNATE_RECIPIENT},
    {"Content-Identifier", gma::CONTENT_IDENTIFIER},
    {"Recipient", gma::RECIPIENT},
    {"Apparently-To", gma::APPARENTLY_TO},
    {"Encoding", gma::ENCODING},
    {"Bad-Header", gma::BAD_FORMAT},
};

// The codes from 123 upwards exist for this vocabulary only and have no names in the model.
constexpr Row HTTP_ROWS[] = {
    {"Content-Transfer-Encoding", gma::CONTENT_TRANSFER_ENCODING},
    {"Allow", 123},
    {"Authorization", 124},
    {"Content-Encoding", 125},
    {"Content-Length", 127},
    {"Content-Type", gma::CONTENT_TYPE},
    {"Date", gma::SENTDATE},
    {"Expires", gma::EXPIREDATE},
    {"From", gma::FROM},
    {"If-Modified-Since", 128},
    {"Last-Modified", 129},
    {"Location", gma::LOCATION},
    {"Pragma", 130},
    {"Referer", 131},
    {"Server", 132},
    {"User-Agent", 133},
    {"WWW-Authenticate", 134},
    {"Accept", 135},
    {"Accept-Charset", 136},
    {"Accept-Encoding", 137},
    {"Accept-Language", 138},
    {"Accept-Ranges", 139},
    {"Age", 140},
    {"Cache-Control", 141},
    {"Connection", 142},
    {"Content-Base", 143},
    {"Content-Language", gma::CONTENT_LANGUAGE},
    {"Content-Location", 144},
    {"Content-MD5", 145},
    {"Content-Range", 146},
    {"ETag", 147},
    {"Host", 148},
    {"If-Match", 149},
    {"If-None-Match", 150},
    {"If-Range", 151},
    {"If-UnModified-Since", 152},
    {"Max-Forwards", 153},
    {"Proxy-Authenticate", 154},
    {"Proxy-Authorization", 155},
    {"Public", 156},
    {"Range", 157},
    {"Retry-After", 158},
    {"Transfer-Encoding", 126},
    {"Upgrade", 159},
    {"Vary", 160},
    {"Via", 161},
    {"Warning", 162},
    {"Bad-Header", gma::BAD_FORMAT},
};

constexpr Row OTHER_ROWS[] = {{"Bad-Header", gma::BAD_FORMAT}};

std::span<const Row> rowsOf(const char* vocabulary) noexcept {
  if (vocabulary == nullptr || SCL_equalNoCase(vocabulary, "SMTP")) {
    return SMTP_ROWS;
  }
  if (SCL_equalNoCase(vocabulary, "HTTP")) {
    return HTTP_ROWS;
  }
  return OTHER_ROWS;
}

class HeaderTable {
 public:
  void build(const char* vocabulary) {
    std::call_once(m_built, [&] { fill(rowsOf(vocabulary)); });
  }
  std::uint32_t typeForName(std::string_view name) const noexcept;
  SCL_String nameForType(std::uint32_t type) const { return m_map.nameForType(type); }

 private:
  static constexpr std::size_t SLOTS = 256;  // several times the rows, so a search ends soon
  static_assert(std::size(HTTP_ROWS) < SLOTS / 4);

  void fill(std::span<const Row> rows);
  static std::size_t slotOf(std::string_view name) noexcept;

  std::once_flag m_built;
  GMA_HdrMap m_map;
  std::array<const Row*, SLOTS> m_slots{};  // open addressing
};

// A failed attempt must leave the table empty for the next one, hence the map of its own.
void HeaderTable::fill(std::span<const Row> rows) {
  GMA_HdrMap map;
  for (const Row& row : rows) {
    map.addMapping(row.name, row.type);
  }
  for (const Row& row : rows) {
    std::size_t slot = slotOf(row.name);
    while (m_slots[slot] != nullptr) {
      slot = (slot + 1) % SLOTS;
    }
    m_slots[slot] = &row;
  }
  m_map = std::move(map);
}

std::size_t HeaderTable::slotOf(std::string_view name) noexcept {
  const auto folded = [name](std::size_t i) -> std::size_t {
    return static_cast<unsigned char>(SCL_toLower(name[i]));
  };
  const std::size_t size = name.size();
  return size == 0
             ? 0
             : (size * 5 + folded(0) * 3 + folded(size / 2) * 17 + folded(size - 1) * 29) % SLOTS;
}

std::uint32_t HeaderTable::typeForName(std::string_view name) const noexcept {
  std::size_t slot = slotOf(name);
  while (m_slots[slot] != nullptr) {
    if (SCL_equalNoCase(std::string_view(m_slots[slot]->name), name)) {
      return m_slots[slot]->type;
    }
    slot = (slot + 1) % SLOTS;
  }
  return gma::UNKNOWN;
}

HeaderTable& headerTable() {
  static HeaderTable table;
  return table;
}

}  // namespace

void rfc_build_header_table(const char* vocabulary) {
  headerTable().build(vocabulary);
}

std::uint32_t rfc_header_type(const SCL_StringRef& name) {
  HeaderTable& table = headerTable();
  table.build("SMTP");
  if (rfc_is_x_header(name)) {
    return gma::X_HEADER;
  }
  if (rfc_is_x400_header(name)) {
    return gma::X400;
  }
  return table.typeForName(name);
}

SCL_String rfc_header_name(std::uint32_t type) {
  HeaderTable& table = headerTable();
  table.build("SMTP");
  return table.nameForType(type);
}

bool rfc_is_x_header(const SCL_StringRef& name) noexcept {
  const std::string_view text = name;
  return text.size() >= 3 && SCL_toLower(text[0]) == 'x' && text[1] == '-';
}

bool rfc_is_x400_header(const SCL_StringRef& name) noexcept {
  const std::string_view text = name;
  return text.size() > 5 && SCL_equalNoCase(text.substr(0, 5), std::string_view("X400-"));
}
