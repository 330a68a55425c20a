// The vocabulary of the tests of RFC 822 and MIME.
#include "rfc/Support.h"

#include <algorithm>
#include <utility>

#include "atr/ATRATLST.h"
#include "dac/DACMEMDA.h"
#include "dac/DACMEMST.h"
#include "gen/GENCODES.h"
#include "gma/GMAMHDRT.h"
#include "log/LOGGLB.h"
#include "log/LOGLOG.h"
#include "rfc/rfcsym.h"

namespace rfctest {

namespace {

class BlockStream : public DAC_MemoryStream {
 public:
  BlockStream(std::size_t block, std::int32_t failAt) : m_block(block), m_failAt(failAt) {}

  std::int32_t read(std::int32_t& position, std::int32_t count, void* buffer,
                    unsigned int& status) override {
    if (status == 0 && position >= m_failAt) {
      status = DAC_READ;
    }
    return DAC_MemoryStream::read(position, std::min(count, m_failAt - position), buffer, status);
  }
  std::int32_t readLine(std::int32_t& position, std::int32_t size, char* buffer,
                        unsigned int& status) override {
    return DAC_Stream::readLine(position, size, buffer, status);
  }
  std::string_view window(std::int32_t position) override {
    const std::size_t most =
        m_block == 0 ? 0 : m_block - static_cast<std::size_t>(position) % m_block;
    return DAC_MemoryStream::window(position).substr(0, most);
  }

 private:
  std::size_t m_block;
  std::int32_t m_failAt;
};

std::string g_logged;

class Recorder : public LOG_Stream {
 public:
  Recorder() : LOG_Stream("Recorder") { setMaximumLevel(LOG_Logging::DEBUG); }
  void writeDataObject(unsigned int, unsigned int, DAC_BaseDataAccess&, bool) override {}
  void writeEntry(unsigned int facility, unsigned int level, unsigned int length, const char* text,
                  bool) override {
    g_logged += std::to_string(facility) + ":" + std::to_string(level) + " " +
                std::string(text, length) + "\n";
  }
};

// The log of the whole test process, bound before the first test.
const bool g_bound = [] {
  static LOG_Logging log;
  unsigned int status = 0;
  log.attach(0, std::make_unique<Recorder>(), status);
  LOG_setGlobalLog(&log);
  return status == 0;
}();

Object withContent(Object object, std::string_view text) {
  unsigned int status = 0;
  object->write(static_cast<std::int32_t>(text.size()), text.data(), status);
  object->setPosition(0, status);
  return object;
}

template <class List, class Show>
std::string joined(const List& list, Show show) {
  std::string text;
  for (std::uint16_t i = 0; i < list.count(); ++i) {
    text += show(list.get(i));
  }
  return text;
}

}  // namespace

Object inBlocks(std::string_view text, std::size_t block, std::int32_t failAt) {
  DAC_Stream* const stream = new BlockStream(block, failAt);
  Object object = std::make_unique<DAC_BaseDataAccess>(stream);
  stream->release();
  return withContent(std::move(object), text);
}

Object inMemory(std::string_view text) {
  return withContent(std::make_unique<DAC_MemoryDataAccess>(), text);
}

std::string contentOf(DAC_BaseDataAccess& object) {
  unsigned int status = 0;
  object.setPosition(0, status);
  return restOf(object);
}

std::string restOf(DAC_BaseDataAccess& object) {
  unsigned int status = 0;
  std::string text(static_cast<std::size_t>(object.size(status)), '\0');
  text.resize(static_cast<std::size_t>(
      object.read(static_cast<std::int32_t>(text.size()), text.data(), status)));
  return text;
}

SCL_StringTable table(std::initializer_list<const char*> lines) {
  SCL_StringTable filled;
  for (const char* line : lines) {
    filled.add(SCL_StringRef(line));
  }
  return filled;
}

std::string print(const ATR_AttributeList& attributes) {
  return joined(attributes, [](const ATR_Attribute* attribute) {
    return std::string(attribute->name()) + "=" + std::string(attribute->string()) + "|";
  });
}

std::string print(const SCL_StringTable& lines) {
  return joined(lines, [](const SCL_StringRef& line) { return std::string(line) + "|"; });
}

std::string print(const GMA_MhdrTable& headers) {
  return joined(headers, [](const GMA_Mhdr* header) {
    return std::to_string(header->type()) + " " + std::string(header->custom()) + "|" +
           print(header->value()) + "\n";
  });
}

std::string print(const RFC_SymbolList& symbols) {
  return joined(symbols, [](const RFC_Symbol& symbol) {
    return std::to_string(symbol.kind) + " " + std::string(symbol.text) + "|";
  });
}

std::string repeated(std::string_view text, int count) {
  std::string all;
  while (count-- > 0) {
    all += text;
  }
  return all;
}

std::string takeLog() {
  return std::exchange(g_logged, {});
}

}  // namespace rfctest
