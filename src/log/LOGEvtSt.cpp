// The event-log stream.
#include "log/LOGEvtSt.h"

#include <cstdlib>
#include <utility>
#include <vector>

#include "dac/DACBASDA.h"
#include "dv/DVDECODE.h"
#include "gen/GENCATCH.h"
#include "gen/GENCODES.h"
#include "log/LOGLINE.h"
#include "plat/PlatEventLog.h"

namespace {

enum Key : unsigned int { CATEGORY_ID = 1, EVENT_ID, EVENT_SOURCE };

constexpr std::int32_t DUMPED_BYTES = 8192;

std::string prefixOf(unsigned int facility, unsigned int level) {
  char prefix[logging::PREFIX_SIZE];
  return {prefix, logging::formatPrefix(prefix, sizeof prefix, facility, level)};
}

}  // namespace

void LOG_EventStream::endOfConfiguration(unsigned int& status) {
  if (status == 0 && m_source.isEmpty()) {
    m_source = "QDX.EXE";
  }
}

void LOG_EventStream::configureKey(const SCL_StringRef& key, const SCL_StringRef& value,
                                   unsigned int& status) {
  if (status != 0) {
    return;
  }
  switch (dv::keywordIndex("{ CategoryId | EventId | EventSource }", key)) {
    case CATEGORY_ID:
      status = dv::decodeUnsigned(value, m_category) ? 0 : LOG_CATEGORY;
      break;
    case EVENT_ID:  // above what the decoder takes, so the C library reads it, unchecked
      m_eventId = static_cast<std::uint32_t>(std::strtoul(value.c_str(), nullptr, 10));
      break;
    case EVENT_SOURCE:
      m_source = value;
      break;
    default:
      LOG_Stream::configureKey(key, value, status);
  }
}

void LOG_EventStream::writeEntry(unsigned int facility, unsigned int level, unsigned int length,
                                 const char* text, bool raw) {
  GENSwallow([&] {
    const std::string_view entry(text, length);
    std::string prefix = prefixOf(facility, level);
    if (raw) {
      report(std::move(prefix), entry);
    } else {
      report(prefix.append(1, ' ').append(entry), {});
    }
  });
}

void LOG_EventStream::writeDataObject(unsigned int facility, unsigned int level,
                                      DAC_BaseDataAccess& object, bool /*raw*/) {
  GENSwallow([&] {
    std::vector<char> data(DUMPED_BYTES);
    unsigned int status = 0;
    object.seek(DAC_BaseDataAccess::FROM_START, 0, status);
    const std::int32_t count = object.read(DUMPED_BYTES, data.data(), status);
    report(prefixOf(facility, level) + " DAC partial Dump.",
           {data.data(), count > 0 ? static_cast<std::size_t>(count) : 0});
  });
}

void LOG_EventStream::report(std::string text, std::string_view data) const {
  plat::Event event;
  event.source = m_source.view();
  event.category = static_cast<std::uint16_t>(m_category);
  event.id = m_eventId;
  event.strings.push_back(std::move(text));
  event.data = data;
  plat::reportEvent(event);
}
