#include "krx/Support.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "dac/DACMEMDA.h"
#include "log/LOGGLB.h"
#include "log/LOGLOG.h"
#include "plat/PlatPath.h"

namespace krxtest {
namespace {

class Recorder : public LOG_Stream {
 public:
  Recorder() : LOG_Stream("Recorder") { setMaximumLevel(LOG_Logging::DEBUG); }
  void writeDataObject(unsigned int, unsigned int, DAC_BaseDataAccess&, bool) override {}
  void writeEntry(unsigned int facility, unsigned int level, unsigned int length, const char* text,
                  bool) override {
    lines.push_back(std::to_string(facility) + ":" + std::to_string(level) + " " +
                    std::string(text, length));
  }
  std::vector<std::string> lines;
};

Recorder* g_recorder = nullptr;

// The log that the whole test process writes to, bound before the first test.
const bool g_bound = [] {
  static LOG_Logging log;
  auto recorder = std::make_unique<Recorder>();
  g_recorder = recorder.get();
  unsigned int status = 0;
  log.attach(0, std::move(recorder), status);
  LOG_setGlobalLog(&log);
  return status == 0;
}();

std::string attributeText(DAC_BaseDataAccess& data, const char* name) {
  SCL_String value;
  unsigned int status = 0;
  data.getStringAttribute(name, value, status);
  return value.c_str();
}

void describePart(std::ostream& stream, const char* what, DAC_BaseDataAccess& data) {
  stream << what << " \"" << attributeText(data, "ContentTitle") << "\" "
         << attributeText(data, "ContainerName") << ": " << withLf(content(data)) << "\n";
  unsigned int status = 0;
  const std::uint32_t children = data.childCount(status);
  for (std::uint32_t i = 0; i < children; ++i) {
    stream << "  child: " << withLf(content(*data.getChild(i, status))) << "\n";
  }
  if (const std::string bad = attributeText(data, "BadData"); !bad.empty()) {
    stream << "  bad: " << bad << "\n";
  }
}

}  // namespace

std::vector<std::string> takeLog() {
  return std::exchange(g_recorder->lines, {});
}

std::string takeLogText() {
  std::string text;
  for (const std::string& line : takeLog()) {
    text += line + "\n";
  }
  return text;
}

std::string withCrLf(const std::string& text) {
  std::string out;
  for (const char c : text) {
    out += c == '\n' ? std::string("\r\n") : std::string(1, c);
  }
  return out;
}

std::string withLf(const std::string& text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\r' || i + 1 == text.size() || text[i + 1] != '\n') {
      out += text[i];
    }
  }
  return out;
}

void writeFile(const std::string& path, const std::string& content) {
  std::ofstream(plat::toNative(path), std::ios::binary) << content;
}

std::string readFile(const std::string& path) {
  std::ifstream file(plat::toNative(path), std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::vector<std::string> filesIn(const std::string& directory) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(plat::toNative(directory))) {
    if (entry.path().filename().string().front() != '.') {
      names.push_back(entry.path().filename().string());
    }
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::string content(DAC_BaseDataAccess& data) {
  unsigned int status = 0;
  std::string text(static_cast<std::size_t>(data.size(status)), '\0');
  std::int32_t position = 0;
  if (!text.empty()) {
    data.readAt(position, static_cast<std::int32_t>(text.size()), text.data(), status);
  }
  return status == 0 ? text : "status " + std::to_string(status);
}

DAC_BaseDataAccess* newContent(const std::string& text) {
  auto* data = new DAC_MemoryDataAccess;
  unsigned int status = 0;
  data->write(static_cast<std::int32_t>(text.size()), text.data(), status);
  return data;
}

std::string describe(GMA_Message& message) {
  std::ostringstream stream;
  for (std::uint16_t i = 0; i < message.headers().count(); ++i) {
    const GMA_Mhdr& header = *message.headers().get(i);
    stream << header.getTypeName();
    if (!header.custom().isEmpty()) {
      stream << "(" << header.custom() << ")";
    }
    for (std::uint16_t line = 0; line < header.value().count(); ++line) {
      stream << "|" << header.value().get(line);
    }
    stream << "\n";
  }
  for (std::uint16_t i = 0; i < message.addresses().count(); ++i) {
    const GMA_Maddr& address = *message.addresses().get(i);
    stream << gma::addressTypeName(address.getType()) << " " << address.getUser() << " at "
           << address.getLocation() << "\n";
  }
  if (message.getBody() != nullptr) {
    describePart(stream, "body", *message.getBody());
  }
  for (std::uint16_t i = 0; i < message.itemCount(); ++i) {
    describePart(stream, "item", *message.getItemData(i));
  }
  return stream.str();
}

std::string baseName(const GMA_Message& message) {
  const std::string name = static_cast<const KRX_Message&>(message).envelopeFile().c_str();
  return name.substr(0, name.rfind('.'));
}

Spool::Spool() : m_group("Group"), m_office(new KRX_PostOffice(&m_group, "Office")) {
  unsigned int status = 0;
  for (const auto& [name, value] : {std::pair<std::string, std::string>("SourceDir", in()),
                                    {"DestDir", out()},
                                    {"MailDomain", "here"},
                                    {"ContainerClass", "Class"}}) {
    if (value.back() == '\\') {
      std::filesystem::create_directory(plat::toNative(value));
    }
    m_office->configDirective(name.c_str(), value.c_str(), status);
  }
  m_office->validate(status);
  EXPECT_EQ(status, 0U) << takeLogText();
  takeLog();
}

void Spool::put(const std::string& name, const std::string& message, const std::string& envelope) {
  const std::string plain = "Message-ID: <" + name + "@here>\nReturn-path: s@a\nRecipient: r@b\n";
  writeFile(in() + name + ".MSG", withCrLf(message));
  writeFile(in() + name + ".RCP", withCrLf(envelope.empty() ? plain : envelope));
}

std::unique_ptr<GMA_Message> Spool::next(unsigned int& status) {
  return std::unique_ptr<GMA_Message>(m_office->nextMessage(status));
}

std::unique_ptr<GMA_Message> Spool::fetched(const std::string& message,
                                            const std::string& envelope) {
  put("M", message, envelope);
  unsigned int status = 0;
  auto found = next(status);
  EXPECT_EQ(status, 0U) << takeLogText();
  return found;
}

std::string Spool::load(const std::string& message, const std::string& envelope) {
  put("M", message, envelope);
  unsigned int status = 0;
  const auto loaded = next(status);
  return (status != 0 ? "status " + std::to_string(status) + "\n" : "") + describe(*loaded);
}

unsigned int Spool::store(GMA_Message& message) {
  unsigned int status = 0;
  message.storeMessage(status);
  return status;
}

std::string Spool::roundTrip(const std::string& message, const std::string& envelope) {
  const auto loaded = fetched(message, envelope);
  EXPECT_EQ(store(*loaded), 0U);
  return outMessage(baseName(*loaded));
}

}  // namespace krxtest
