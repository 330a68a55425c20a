// The vocabulary of the tests of the mail model: a post office and a message with nothing behind
// them, a log that is kept as text, and state printed as one string.
#pragma once

#include <memory>
#include <regex>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "dac/DACMEMDA.h"
#include "gma/GMAMSG.h"
#include "gma/GMAPO.h"
#include "log/LOGGLB.h"
#include "log/LOGLOG.h"
#include "scl/Failure.h"
#include "scl/SCLDUMP.h"

namespace gmatest {

class Message : public GMA_Message {
 public:
  using GMA_Message::GMA_Message;
  GMA_Maddr* newAddress() override { return new GMA_Maddr; }
  bool getDate(DV_Date&) override { return false; }
  void loadMessage(unsigned int&) override {}
  void storeMessage(unsigned int&) override {}
  void save(void*, unsigned int&) override {}

  using GMA_Message::m_described;
};

// Writes what it is asked to do into `calls`.
class PostOffice : public GMA_PostOffice {
 public:
  explicit PostOffice(const char* name = "Main", int kind = 0, GMA_POGroup* group = nullptr)
      : GMA_PostOffice(group, name), m_kind(kind) {}
  int type() override { return m_kind; }
  void reservedHook(void*) override {}
  GMA_Message* nextMessage(unsigned int&) override { return nullptr; }
  GMA_Message* newMessage() override { return new Message(this); }
  void configDirective(const SCL_StringRef& name, const SCL_StringRef& value,
                       unsigned int& status) override {
    calls += std::string(name) + "=" + std::string(value) + ";";
    status = SCL_equalNoCase(name, "Refused") ? 11917 : 0;
  }
  void validate(unsigned int&) override { calls += "validate;"; }
  void doOpen(unsigned int&) override { calls += "open;"; }
  void doClose(unsigned int&) override { calls += "close;"; }

  std::string calls;

 private:
  int m_kind;
};

// The log that startLog binds, as text: "slot facility/level text" for each entry.
inline std::string& logText() {
  static std::string text;
  return text;
}

class LogStream : public LOG_Stream {
 public:
  explicit LogStream(unsigned int slot) : LOG_Stream("Test"), m_slot(std::to_string(slot)) {}
  void writeDataObject(unsigned int, unsigned int, DAC_BaseDataAccess&, bool) override {}
  void writeEntry(unsigned int facility, unsigned int level, unsigned int length, const char* text,
                  bool) override {
    logText() += m_slot + " " + std::to_string(facility) + "/" + std::to_string(level) + " " +
                 std::string(text, length) + "\n";
  }

 private:
  std::string m_slot;
};

// Binds a log with streams 0 and 1 and empties its text. Entries of mask 15 reach both streams,
// those of mask 5 only stream 0, those of mask 6 only stream 1.
inline void startLog() {
  static LOG_Logging log;
  if (!LOG_hasGlobalLog()) {
    unsigned int status = 0;
    log.attach(0, std::make_unique<LogStream>(0), status);
    log.attach(1, std::make_unique<LogStream>(1), status);
    LOG_setGlobalLog(&log);
  }
  logText().clear();
}

inline DAC_BaseDataAccess* content(std::string_view text) {
  unsigned int status = 0;
  auto* data = new DAC_MemoryDataAccess;
  data->write(static_cast<std::int32_t>(text.size()), text.data(), status);
  EXPECT_EQ(status, 0U);
  return data;
}

inline std::string contentOf(DAC_BaseDataAccess* data) {
  if (data == nullptr) {
    return "none";
  }
  unsigned int status = 0;
  std::int32_t position = 0;
  std::string text(static_cast<std::size_t>(data->size(status)), '\0');
  data->readAt(position, static_cast<std::int32_t>(text.size()), text.data(), status);
  return text;
}

inline std::string attributesOf(const ATR_AttributeList& attributes) {
  std::string text;
  for (std::uint16_t i = 0; i < attributes.count(); ++i) {
    const ATR_Attribute& attribute = *attributes.get(i);
    text += std::string(attribute.name()) + "=";
    text += attribute.getType() == STRING ? std::string(attribute.string())
                                          : "#" + std::to_string(attribute.getInteger());
    text += ";";
  }
  return text;
}

inline std::string textOf(const GMA_Maddr& address) {
  SCL_String text;
  address.getText(text);
  return std::string(text);
}

// The type that `read` finds at the start of `text`.
template <class Read>
std::uint32_t typeIn(const std::string& text, Read&& read) {
  std::istringstream stream(text);
  std::uint32_t type = 0;
  read(stream, type);
  return type;
}

// The dump of `object` with one blank between its lines and every address in memory as "@".
template <class Object>
std::string dumpOf(Object& object, const char* name = "it") {
  std::ostringstream stream;
  SCL_DumpIndent indent(2);
  object.dump(name, stream, indent);
  const std::string text = std::regex_replace(stream.str(), std::regex("0x[0-9a-f]+"), "@");
  return std::regex_replace(text, std::regex("\\n *"), " ");
}

}  // namespace gmatest
