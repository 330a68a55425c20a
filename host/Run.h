// The main job: fetch, list, stamp, deliver, remove.
#pragma once

#include <string>

#include "host/Fetched.h"
#include "host/Notice.h"
#include "host/PostOffices.h"
#include "plat/PlatEvent.h"

namespace host {

struct Counts {
  unsigned long fetched = 0;
  unsigned long delivered = 0;
  unsigned long kept = 0;    // a copy is in the receiver directory
  unsigned long failed = 0;  // could be neither delivered nor kept: the pair stays
};

class Runner {
 public:
  Runner(PostOffices& postOffices, const Config& config, LOG_Logging& log,
         const NoticeFiles& notices);
  // Drains all post offices once, or polls until the process is asked to end; a raised dial-up line
  // (the retry-now event) ends the pause between two polls. The exit status.
  int run(bool once);
  const Counts& counts() const noexcept { return m_counts; }

 private:
  void drainAll();
  void drain(PostOffice& office);
  void handle(PostOffice& office, FetchedMessage& message, unsigned int loadStatus);
  void deliverOrKeep(PostOffice& office, FetchedMessage& message, unsigned int loadStatus);
  bool deliver(PostOffice& office, GMA_Message& message, unsigned int& status, std::string& why);
  void keep(PostOffice& office, FetchedMessage& message, unsigned int status,
            const std::string& why);
  void tellOfPairThatStays(const GMA_Message& message, const std::string& why);
  void showProgress() const;
  void pause();

  PostOffices& m_postOffices;
  const Config& m_config;
  LOG_Logging& m_log;
  const NoticeFiles& m_notices;
  Counts m_counts;
  bool m_terminal;
  plat::NamedEvent m_retryNow;
  bool m_canWait = false;  // the event could be made
};

}  // namespace host
