// The event-log stream: what it reports.
#include "log/LOGEvtSt.h"

#include <gmock/gmock.h>

#include "dac/DACMEMDA.h"
#include "log/Support.h"

namespace logtest {
namespace {

TEST_F(LogTest, EventsHaveTextAsTheirStringAndBytesAsTheirData) {
  setenv("KRX_EVENTLOG", folder.path("events").c_str(), 1);
  LOG_EventStream stream("Events");
  unsigned status = 0;
  DAC_MemoryDataAccess object;
  object.fill(9000, 'x', status);
  stream.endOfConfiguration(status);
  stream.writeEntry(11, 1, 4, "a %n", false);
  stream.writeEntry(11, 1, 2, "\0x", true);
  stream.writeDataObject(11, 1, object, false);
  EXPECT_EQ(set(stream, "CategoryId", "x"), 10613U);
  EXPECT_EQ(set(stream, "Colour", "red"), 121U);
  set(stream, "EventSource", "My Source");
  set(stream, "categoryid", "7");
  set(stream, "EventId", "4026531841");
  stream.writeEntry(11, 1, 0, "", true);
  unsetenv("KRX_EVENTLOG");

  const std::string events = read("events");
  const std::string at = ", \"strings\": [\"14:05:09.27 (KRX:001) ";
  const std::string qdx = R"("QDX.EXE", "type": "error", "category": 0, "id": 3221225504)" + at;
  const std::string own = R"("My Source", "type": "error", "category": 7, "id": 4026531841)" + at;
  EXPECT_THAT(events, testing::HasSubstr(qdx + R"( a %n"], "data": "")"));
  EXPECT_THAT(events, testing::HasSubstr(qdx + R"("], "data": "0078")"));
  EXPECT_THAT(events, testing::HasSubstr(qdx + R"( DAC partial Dump."], "data": "7878)"));
  EXPECT_EQ(events.find("\"}", events.find("7878")) - events.find("7878"), 2 * 8192U);
  EXPECT_THAT(events, testing::HasSubstr(own));
}

}  // namespace
}  // namespace logtest
