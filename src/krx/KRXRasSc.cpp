// When the dial-up events of a post office fall due.
#include "krx/KRXRasSc.h"

#include "gen/GENCATCH.h"
#include "gen/GENCODES.h"
#include "krx/krxapi.h"
#include "log/LOGGLB.h"
#include "log/LOGLOG.h"

namespace {

constexpr char SOURCE[] = "KRXRasSc";
constexpr unsigned int EVENT_STREAMS = 5;

constexpr std::uint32_t MINUS = 2;
// Longer intervals have more seconds than a signed 32-bit number.
constexpr std::uint32_t MAX_INTERVAL_DAYS = 24854;

// Dates, times and offsets as the log shows them.
struct Text {
  template <class Value>
  explicit Text(const Value& value) {
    value.format(text, sizeof text);
  }
  char text[24];
};

bool isTimeOfDay(const DV_TimeOffsetFields& fields) {
  return fields.hours <= 23 && fields.minutes <= 59 && fields.seconds <= 59 &&
         fields.hundredths <= 99;
}

bool isInterval(const DV_TimeOffsetFields& fields) {
  const bool isNegative = fields.sign == MINUS && fields.days != 0;
  const bool isEmpty =
      fields.days == 0 && fields.hours == 0 && fields.minutes == 0 && fields.seconds == 0;
  return !isNegative && !isEmpty && fields.days <= MAX_INTERVAL_DAYS;
}

}  // namespace

void KRX_RasEvent::initialise(const SCL_StringRef& value, unsigned int& status) {
  decode(value, status);
  if (status != 0) {
    return;
  }
  const DV_DateTime now;
  setFirstDue(now);
  if (m_due.compare(now) <= 0) {
    LOG_globalLog().writeText(KRX_LOG_ALL, KRX_FACILITY, LOG_Logging::BRIEF,
                              "Had to push an event forward.");
    moveOn();
  }
  LOG_globalLog().writeText(EVENT_STREAMS, KRX_FACILITY, LOG_Logging::NORMAL,
                            "RAS Event initialised to %s, Control %s, Type %u", Text(m_due).text,
                            Text(m_control).text, static_cast<unsigned int>(m_type));
}

// The fields are checked before they are set, because a time asserts its ranges.
void KRX_RasEvent::decode(const SCL_StringRef& value, unsigned int& status) {
  if (status != 0) {
    return;
  }
  m_type = SCL_firstChar(value) == '+' ? INTERVAL : TIME_OF_DAY;
  const SCL_StringRef text(m_type == INTERVAL ? value.c_str() + 1 : value.c_str());
  DV_TimeOffsetFields fields;
  if (DV_decodeTimeOffset(text, fields) < 0 || !isTimeOfDay(fields) ||
      (m_type == INTERVAL && !isInterval(fields))) {
    status = KRX_SCHEDULE;
    return;
  }
  const auto days = m_type == INTERVAL ? static_cast<std::int32_t>(fields.days) : 0;
  m_control = DV_TimeOffset(days, fields.hours, fields.minutes, fields.seconds, fields.hundredths);
}

// A quarter of the interval, so that a post office that is started anew does not stay away from its
// mail for a whole one; else the time of day, today or tomorrow.
void KRX_RasEvent::setFirstDue(const DV_DateTime& now) {
  m_due = now;
  if (m_type == INTERVAL) {
    m_due.addTime(0, 0, m_control.totalSeconds() / 4, 0);
    clearHundredths();
    return;
  }
  m_due.time() = m_control.time();
  clearHundredths();
  if (m_due.time().compare(now.time()) < 0) {
    m_due.add(0, 0, 1);
  }
}

void KRX_RasEvent::clearHundredths() {
  unsigned int hours = 0;
  unsigned int minutes = 0;
  unsigned int seconds = 0;
  unsigned int hundredths = 0;
  m_due.time().get(hours, minutes, seconds, hundredths);
  m_due.time().set(hours, minutes, seconds, 0);
}

bool KRX_RasEvent::moveOn() {
  const DV_DateTime before = m_due;
  if (m_type == INTERVAL) {
    m_due.addOffset(m_control);
  } else {
    m_due.add(0, 0, 1);
  }
  clearHundredths();
  m_canMove = m_due.compare(before) > 0;
  if (!m_canMove) {
    m_due = before;
    LOG_globalLog().writeText(KRX_LOG_ALL, KRX_FACILITY, LOG_Logging::BRIEF,
                              "RAS Event %s cannot be rescheduled.", Text(m_due).text);
    return false;
  }
  LOG_globalLog().writeText(EVENT_STREAMS, KRX_FACILITY, LOG_Logging::NORMAL,
                            "RAS Event due at %s rescheduled to %s", Text(before).text,
                            Text(m_due).text);
  return true;
}

// Events of one moment stay in the order in which they were added.
void KRX_RasSchedule::add(const SCL_StringRef& value, unsigned int& status) {
  if (status != 0) {
    return;
  }
  auto event = GENMake<KRX_RasEvent>(SOURCE, __LINE__);
  event->initialise(value, status);
  if (status != 0) {
    return;
  }
  unsigned int at = m_pending;
  while (at > 0 && m_events[at - 1]->due().compare(event->due()) > 0) {
    --at;
  }
  insert(at, std::move(event));
}

// An event that has just been due goes before those that wait for the same moment.
bool KRX_RasSchedule::isDue() {
  if (m_pending == 0 || m_events[0]->due().compare(DV_DateTime()) >= 0) {
    return false;
  }
  auto event = m_events.take(0);
  --m_pending;
  event->moveOn();
  unsigned int at = 0;
  while (at < m_pending && m_events[at]->due().compare(event->due()) < 0) {
    ++at;
  }
  insert(at, std::move(event));
  return true;
}

void KRX_RasSchedule::insert(unsigned int at, std::unique_ptr<KRX_RasEvent> event) {
  if (!event->canMove()) {
    m_events.append(std::move(event));
    return;
  }
  m_events.insert(at, std::move(event));
  ++m_pending;
}
