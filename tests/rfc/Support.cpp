// The vocabulary of the tests of RFC 822 and MIME.
#include "rfc/Support.h"

#include <utility>

#include "atr/ATRATLST.h"
#include "gma/GMAMHDRT.h"
#include "log/LOGGLB.h"
#include "log/LOGLOG.h"
#include "rfc/rfcsym.h"

namespace rfctest {

namespace {

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

template <class List, class Show>
std::string joined(const List& list, Show show) {
  std::string text;
  for (std::uint16_t i = 0; i < list.count(); ++i) {
    text += show(list.get(i));
  }
  return text;
}

}  // namespace

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
