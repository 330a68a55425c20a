// The dial-up schedule of a post office: events that fall due at a time of day, or one interval
// after the other. Nothing here waits: time passes only when somebody asks what is due. All times
// are local, so a day on which summer time begins or ends is an hour shorter or longer.
//
//   KRX_RasSchedule schedule;
//   schedule.add("08:30", status);    // every day at half past eight
//   schedule.add("+01:00", status);   // every hour, the first time in a quarter of an hour
//   if (schedule.isDue()) ...
#pragma once

#include <cstdint>
#include <memory>

#include "dv/DVDATTIM.h"
#include "dv/DVTIMOFF.h"
#include "scl/SCLPVEC.h"
#include "scl/SCLSTRNG.h"

class KRX_RasEvent {
 public:
  enum Type : std::uint32_t { TIME_OF_DAY = 1, INTERVAL = 2 };

  // `value` is one value of a RasSchedule entry. 11917 when it is not a time of day (of 24 hours)
  // or an interval (of one second to 24854 days); the event is of no use then.
  void initialise(const SCL_StringRef& value, unsigned int& status);
  // One period on. False when that is no date any more: due stays as it was.
  bool moveOn();

  const DV_DateTime& due() const noexcept { return m_due; }
  // False when the event stands at the end of the calendar and can never be due again.
  bool canMove() const noexcept { return m_canMove; }

 private:
  void decode(const SCL_StringRef& value, unsigned int& status);
  void setFirstDue(const DV_DateTime& now);
  void clearHundredths();

  DV_DateTime m_due = DV_DateTime::NULL_VALUE;
  Type m_type = TIME_OF_DAY;
  DV_TimeOffset m_control;  // the time of day, or the interval
  bool m_canMove = true;
};

class KRX_RasSchedule {
 public:
  // Adds the event that `value` describes. 11917: it describes none, and nothing was added.
  void add(const SCL_StringRef& value, unsigned int& status);
  // True when the earliest event has fallen due; it has then been moved on by one period. One event
  // at a time: after a long pause every call catches up one period.
  bool isDue();

 private:
  void insert(unsigned int at, std::unique_ptr<KRX_RasEvent> event);

  // In ascending order of their due times; the events that cannot move any more stand behind the
  // pending ones and are not looked at.
  SCL_PtrVector<KRX_RasEvent> m_events;
  unsigned int m_pending = 0;
};
