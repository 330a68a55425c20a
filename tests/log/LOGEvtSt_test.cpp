// The event-log stream: what it reports.
#include "log/LOGEvtSt.h"

#include <gmock/gmock.h>

#include "dac/DACMEMDA.h"
#include "log/Support.h"

namespace logtest {
namespace {

class EventStream : public LogTest {
 protected:
  EventStream() { setenv("KRX_EVENTLOG", (directory + "events").c_str(), 1); }
  ~EventStream() override { unsetenv("KRX_EVENTLOG"); }

  // The reported events without their time, one a line.
  std::string reported() {
    std::string text;
    const std::string lines = read("events");
    for (std::size_t at = 0; (at = lines.find("\"source\"", at)) != std::string::npos; ++at) {
      text += lines.substr(at, lines.find('}', at) - at) + "\n";
    }
    return text;
  }

  LOG_EventStream stream{"Events"};
};

TEST_F(EventStream, TextIsAStringAndBytesAreData) {
  unsigned status = 0;
  DAC_MemoryDataAccess object;
  object.fill(9000, 'x', status);
  stream.endOfConfiguration(status);
  stream.writeEntry(11, 1, 4, "a %n", false);
  stream.writeEntry(11, 1, 2, "\0x", true);
  stream.writeDataObject(11, 1, object, false);
  const std::string head =
      "\"source\": \"QDX.EXE\", \"type\": \"error\", \"category\": 0, \"id\": 3221225504, "
      "\"strings\": [\"14:05:09.27 (KRX:001) ";
  std::string dump;
  for (int i = 0; i < 8192; ++i) {
    dump += "78";
  }
  EXPECT_EQ(reported(), head + " a %n\"], \"data\": \"\"\n" + head + "\"], \"data\": \"0078\"\n" +
                            head + " DAC partial Dump.\"], \"data\": \"" + dump + "\"\n");
}

TEST_F(EventStream, KeysSetSourceCategoryAndId) {
  EXPECT_EQ(set(stream, "EventSource", "My Source"), 0U);
  EXPECT_EQ(set(stream, "CategoryId", "7"), 0U);
  EXPECT_EQ(set(stream, "EventId", "4026531841"), 0U);
  EXPECT_EQ(set(stream, "CategoryId", "x"), 10613U);
  EXPECT_EQ(set(stream, "Colour", "red"), 121U);
  stream.writeEntry(11, 1, 0, "", true);
  EXPECT_THAT(reported(), testing::StartsWith("\"source\": \"My Source\", \"type\": \"error\", "
                                              "\"category\": 7, \"id\": 4026531841, "));
}

}  // namespace
}  // namespace logtest
