// The vocabulary of the fuzz targets.
#include "fuzz/Fuzz.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>

#include "dac/DACMEMST.h"
#include "dv/DVDATE.h"
#include "gma/GMAMHDRT.h"
#include "gma/GMAPOGRP.h"
#include "krx/krxpo.h"
#include "log/LOGGLB.h"
#include "log/LOGLOG.h"
#include "plat/PlatPath.h"
#include "plat/PlatTerminal.h"

namespace fuzz {
namespace {

class BlockStream : public DAC_MemoryStream {
 public:
  explicit BlockStream(std::size_t block) : m_block(block) {}
  std::int32_t readLine(std::int32_t& position, std::int32_t size, char* buffer,
                        unsigned int& status) override {
    return DAC_Stream::readLine(position, size, buffer, status);
  }
  std::string_view window(std::int32_t position) override {
    const std::string_view whole = DAC_MemoryStream::window(position);
    return m_block == 0 ? whole
                        : whole.substr(0, m_block - static_cast<std::size_t>(position) % m_block);
  }

 private:
  std::size_t m_block;
};

// Takes every entry, so that all of them are put together, and forgets it.
class ForgetfulStream : public LOG_Stream {
 public:
  ForgetfulStream() : LOG_Stream("Fuzz") { setMaximumLevel(LOG_Logging::DEBUG); }
  void writeDataObject(unsigned int, unsigned int, DAC_BaseDataAccess&, bool) override {}
  void writeEntry(unsigned int, unsigned int, unsigned int, const char*, bool) override {}
};

const bool g_bound = [] {
  static LOG_Logging log;
  unsigned int status = 0;
  log.attach(0, std::make_unique<ForgetfulStream>(), status);
  LOG_setGlobalLog(&log);
  return status == 0;
}();

const std::string& directory() {
  static const plat::TemporaryDirectory made;
  return made.path();
}

void readChildren(DAC_BaseDataAccess& data) {
  unsigned int status = 0;
  const std::uint32_t count = data.childCount(status);
  for (std::uint32_t i = 0; i < count; ++i) {
    unsigned int childStatus = 0;
    if (DAC_BaseDataAccess* const child = data.getChild(i, childStatus)) {
      bytesOf(*child);
    }
  }
}

}  // namespace

void fail(const std::string& what) {
  std::fprintf(stderr, "FINDING: %s\n", what.c_str());
  std::abort();
}

std::vector<std::string> split(std::string_view input, std::size_t count) {
  std::vector<std::string> fields;
  while (fields.size() + 1 < count) {
    const std::size_t end = std::min(input.find('\x1f'), input.size());
    fields.emplace_back(input.substr(0, end));
    input.remove_prefix(std::min(end + 1, input.size()));
  }
  fields.emplace_back(input);
  return fields;
}

Content content(std::string_view bytes, std::size_t block) {
  auto* const stream = new BlockStream(block);
  auto data = std::make_unique<DAC_BaseDataAccess>(stream);
  stream->release();
  unsigned int status = 0;
  data->write(static_cast<std::int32_t>(bytes.size()), bytes.data(), status);
  data->setPosition(0, status);
  require(status == 0, "an input fits into memory");
  return data;
}

std::string bytesOf(DAC_BaseDataAccess& data) {
  unsigned int status = 0;
  std::string text(static_cast<std::size_t>(data.size(status)), '\0');
  std::int32_t position = 0;
  if (!text.empty()) {
    const std::int32_t got =
        data.readAt(position, static_cast<std::int32_t>(text.size()), text.data(), status);
    require(static_cast<std::size_t>(got) == text.size(), "a content is as long as it says");
  }
  require(status == 0, "a content in memory can be read");
  return text;
}

std::unique_ptr<KRX_Message> newMessage() {
  static GMA_POGroup group("Fuzz");
  static KRX_PostOffice office(&group, "Office");
  const SCL_String place(directory().c_str());
  return std::make_unique<KRX_Message>(
      &office, KRX_MessageSettings{place, place, "example.org", "Mail", nullptr});
}

void askForEverything(KRX_Message& message) {
  DV_Date date;
  message.getDate(date);
  if (message.getBody() != nullptr) {
    readChildren(*message.getBody());
  }
  for (std::uint16_t i = 0; i < message.itemCount(); ++i) {
    readChildren(*message.getItemData(i));
  }
  message.setStandardAttributes();
  message.dumpContents("Fuzz");
}

std::vector<std::string> partContents(KRX_Message& message) {
  std::vector<std::string> contents;
  if (message.getBody() != nullptr) {
    contents.push_back(bytesOf(*message.getBody()));
  }
  for (std::uint16_t i = 0; i < message.itemCount(); ++i) {
    contents.push_back(bytesOf(*message.getItemData(i)));
  }
  return contents;
}

std::string printHeaders(const GMA_MhdrTable& headers) {
  std::string text;
  for (std::uint16_t i = 0; i < headers.count(); ++i) {
    const GMA_Mhdr& header = *headers.get(i);
    text += std::to_string(header.type()) + " " + header.custom().c_str();
    for (std::uint16_t line = 0; line < header.value().count(); ++line) {
      text += std::string("|") + header.value().get(line).c_str();
    }
    text += "\n";
  }
  return text;
}

std::string fileWith(std::string_view bytes) {
  const std::string path = directory() + "input.ini";
  std::ofstream(plat::toNative(path), std::ios::binary | std::ios::trunc) << bytes;
  return path;
}

}  // namespace fuzz
