// Loading pairs and counting what came of them.
#include "bench/Loader.h"

#include <algorithm>
#include <cstdio>
#include <system_error>

#include "dac/DACFILDA.h"
#include "gen/GENCATCH.h"
#include "log/LOGGLB.h"
#include "plat/PlatMemory.h"
#include "plat/PlatSearch.h"

namespace bench {
namespace {

constexpr unsigned int PAIR_FILE =
    DAC_FileDataAccess::READ_ONLY | DAC_FileDataAccess::SPOOL | DAC_FileDataAccess::OTHER_CASE;

// What the connector itself notes about a part; every other attribute is a header field.
bool isOwnAttribute(std::string_view name) noexcept {
  constexpr std::string_view OWN[] = {dac::CONTAINER_CLASS, dac::MAIL_SYSTEM_TYPE,
                                      dac::ATTACHMENT_SIZE, dac::CONTAINER_NAME,
                                      dac::CONTENT_TITLE,   dac::BAD_DATA};
  return std::find(std::begin(OWN), std::end(OWN), name) != std::end(OWN);
}

std::uint64_t partFields(DAC_BaseDataAccess& part) {
  std::uint64_t fields = 0;
  for (std::uint16_t i = 0; i < part.attributes().count(); ++i) {
    fields += isOwnAttribute(part.attributes().get(i)->name().view()) ? 0 : 1;
  }
  return fields;
}

std::uint64_t messageFields(const GMA_MhdrTable& headers) {
  std::uint64_t fields = 0;
  for (std::uint16_t i = 0; i < headers.count(); ++i) {
    switch (headers.get(i)->type()) {
      case gma::RCPMESSAGEID:
      case gma::RCP_UNKNOWN:
      case gma::PREAMBLE:
      case gma::POSTAMBLE:
        break;
      default:
        ++fields;
    }
  }
  return fields;
}

std::uint64_t sizeOf(DAC_BaseDataAccess& data) {
  unsigned int status = 0;
  return static_cast<std::uint64_t>(std::max(data.size(status), 0));
}

}  // namespace

Loader::Loader(bool decode) : m_decode(decode) {
  plat::keepFreedMemory();  // as krxhost does
  static LOG_Logging log;
  LOG_setGlobalLog(&log);
  m_settings.mailDomain = "example.org";
  m_settings.containerClass = "Mail";
}

std::vector<KRX_PairNames> Loader::findPairs(const std::string& directory) {
  std::vector<KRX_PairNames> pairs;
  plat::DirectorySearch search;
  std::string name;
  bool maybeDirectory = false;
  int error = search.open(directory);
  while (error == 0 && (error = search.next(name, maybeDirectory)) == 0 && !name.empty()) {
    if (name.size() > 4 &&
        SCL_equalNoCase(std::string_view(name).substr(name.size() - 4), ".RCP")) {
      const bool lower = SCL_isLower(name.back());
      const std::string message = name.substr(0, name.size() - 4).append(lower ? ".msg" : ".MSG");
      pairs.push_back({name.c_str(), message.c_str()});
    }
  }
  if (error != 0) {
    throw std::system_error(error, std::generic_category(), directory);
  }
  return pairs;
}

std::unique_ptr<KRX_Message> Loader::load(const std::string& directory, const KRX_PairNames& pair) {
  auto message = std::make_unique<KRX_Message>(nullptr, m_settings);
  unsigned int status = 0;
  const auto failure = GENCatch([&] { readFiles(*message, directory, pair, status); });
  if (failure || status != 0) {
    std::fprintf(stderr, "%s: %s, status %u\n", pair.envelope.c_str(),
                 failure ? failure->c_str() : "cannot be loaded", status);
  }
  return message;
}

void Loader::readFiles(KRX_Message& message, const std::string& directory,
                       const KRX_PairNames& pair, unsigned int& status) {
  std::string path = directory;
  path += '/';
  const std::size_t name = path.size();
  {
    DAC_FileDataAccess envelope(path.append(pair.envelope.view()).c_str(), PAIR_FILE, status);
    message.readEnvelope(envelope, status);
  }
  path.resize(name);
  DAC_FileDataAccess content(path.append(pair.message.view()).c_str(), PAIR_FILE, status);
  m_totals.bytes += static_cast<std::uint64_t>(content.size(status));
  message.readMessage(content, status);
}

void Loader::count(KRX_Message& message) {
  ++m_totals.messages;
  m_totals.headers += messageFields(message.headers());
  if (message.getBody() != nullptr) {
    countPart(*message.getBody());
  }
  for (std::uint16_t i = 0; i < message.itemCount(); ++i) {
    countPart(*message.getItemData(i));
  }
}

void Loader::countPart(DAC_BaseDataAccess& part) {
  ++m_totals.parts;
  m_totals.headers += partFields(part);
  m_totals.decoded += contentSize(part);
}

std::uint64_t Loader::contentSize(DAC_BaseDataAccess& part) const {
  unsigned int status = 0;
  if (!m_decode || !part.hasChildren(status)) {
    return sizeOf(part);
  }
  std::uint64_t size = 0;
  for (std::uint32_t i = 0; i < part.childCount(status); ++i) {
    unsigned int childStatus = 0;
    DAC_BaseDataAccess* child = part.getChild(i, childStatus);
    size += child != nullptr ? sizeOf(*child) : 0;
  }
  return size;
}

}  // namespace bench
