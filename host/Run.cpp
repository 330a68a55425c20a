// The host's main loop. It ends with the first message that can be neither delivered nor kept: its
// pair stays, and the same message would be fetched again.
#include "host/Run.h"

#include <algorithm>
#include <cstdio>

#include "gen/GENCATCH.h"
#include "gma/GMAPAIR.h"
#include "host/Exit.h"
#include "host/Log.h"
#include "plat/PlatClock.h"
#include "plat/PlatError.h"
#include "plat/PlatTerminal.h"

namespace host {
namespace {

constexpr char RETRY_NOW_EVENT[] = "Torvanix-Brindlemark-RetryNow";

std::string pairName(const GMA_Message& message) {
  return dynamic_cast<const GMA_FilePair&>(message).fetchedEnvelope().c_str();
}

std::string describe(unsigned int status) {
  std::string text = "status " + std::to_string(status);
  const plat::Failure& failure = plat::lastFailure();
  if (failure.error != 0) {
    text += std::string(", ") + failure.operation + " " + failure.path + ": " +
            plat::errorText(failure.error);
  }
  return text;
}

}  // namespace

Runner::Runner(PostOffices& postOffices, const Config& config, LOG_Logging& log,
               const NoticeFiles& notices)
    : m_postOffices(postOffices),
      m_config(config),
      m_log(log),
      m_notices(notices),
      m_terminal(plat::standardErrorIsTerminal()) {}

int Runner::run(bool once) {
  plat::catchEndRequests();
  if (!once) {
    const int error = m_retryNow.create(RETRY_NOW_EVENT);
    m_canWait = error == 0;
    if (!m_canWait) {
      m_log.writeText(ALL_STREAMS, HOST_FACILITY, LOG_Logging::BRIEF,
                      "The event %s cannot be waited for, %s.", RETRY_NOW_EVENT,
                      plat::errorText(error).c_str());
    }
  }
  do {
    drainAll();
    if (once || m_counts.failed != 0) {
      break;
    }
    pause();
  } while (!plat::endRequested());
  for (PostOffice& office : m_postOffices.all()) {
    unsigned int status = 0;
    GENSwallow([&] { office.object->close(status); });
  }
  if (m_terminal) {
    std::fputc('\n', stderr);
  }
  std::printf("fetched %lu, delivered %lu, kept %lu, failed %lu\n", m_counts.fetched,
              m_counts.delivered, m_counts.kept, m_counts.failed);
  return m_counts.failed == 0 ? Exit::done : Exit::inputOutput;
}

void Runner::drainAll() {
  for (PostOffice& office : m_postOffices.all()) {
    if (plat::endRequested() || m_counts.failed != 0) {
      return;
    }
    drain(office);
  }
}

void Runner::drain(PostOffice& office) {
  if (!m_postOffices.holdSource(office, m_log)) {
    return;
  }
  unsigned int status = 0;
  office.object->open(status);
  if (status != 0) {
    m_log.writeText(ALL_STREAMS, HOST_FACILITY, LOG_Logging::BRIEF,
                    "Post office \"%s\" cannot be opened, status %u.", office.name.c_str(), status);
    return;
  }
  if (const unsigned int count = office.quarantine->putBackDue(); count != 0) {
    m_log.writeText(ALL_STREAMS, HOST_FACILITY, LOG_Logging::NORMAL,
                    "%u kept messages of post office \"%s\" are tried again.", count,
                    office.name.c_str());
  }
  while (office.object->isOpen() && !plat::endRequested() && m_counts.failed == 0) {
    unsigned int loadStatus = 0;
    plat::clearFailure();
    FetchedMessage message(office.object->nextMessage(loadStatus));
    if (!message) {
      return;
    }
    ++m_counts.fetched;
    handle(office, message, loadStatus);
    showProgress();
  }
}

void Runner::handle(PostOffice& office, FetchedMessage& message, unsigned int loadStatus) {
  const auto failure = GENCatch([&] { deliverOrKeep(office, message, loadStatus); });
  if (failure && !message.isSafe()) {
    ++m_counts.failed;
    GENSwallow([&] { tellOfPairThatStays(*message, *failure); });
  }
}

void Runner::deliverOrKeep(PostOffice& office, FetchedMessage& message, unsigned int loadStatus) {
  std::string why;
  unsigned int status = loadStatus;
  if (loadStatus != 0) {
    keep(office, message, status, "it cannot be loaded, " + describe(loadStatus));
  } else if (deliver(office, *message, status, why)) {
    message.setSafe();
    ++m_counts.delivered;
    office.quarantine->delivered(pairName(*message));
  } else {
    keep(office, message, status, "it cannot be delivered, " + why);
  }
}

bool Runner::deliver(PostOffice& office, GMA_Message& message, unsigned int& status,
                     std::string& why) {
  const auto failure = GENCatch([&] {
    message.dumpContents(pairName(message).c_str());
    message.setStandardAttributes();
    addNotices(message, m_notices, status);
    PostOffice& target = m_postOffices.target(office);
    if (&target == &office) {
      message.storeMessage(status);
    } else {
      const std::unique_ptr<GMA_Message> copy(message.transferTo(*target.object));
      copy->storeMessage(status);
    }
  });
  if (failure) {
    why = *failure;
  } else if (status != 0) {
    why = describe(status);
  }
  return !failure && status == 0;
}

void Runner::keep(PostOffice& office, FetchedMessage& message, unsigned int status,
                  const std::string& why) {
  std::string failure;
  if (!office.quarantine->keep(*message, status, why, failure)) {
    tellOfPairThatStays(*message, why + "; no copy can be kept, " + failure);
    ++m_counts.failed;
    return;
  }
  message.setSafe();
  ++m_counts.kept;
  m_log.writeText(ALL_STREAMS, HOST_FACILITY, LOG_Logging::BRIEF,
                  "Message %s is kept in the receiver directory: %s.", pairName(*message).c_str(),
                  why.c_str());
}

void Runner::tellOfPairThatStays(const GMA_Message& message, const std::string& why) {
  m_log.writeText(ALL_STREAMS, HOST_FACILITY, LOG_Logging::BRIEF,
                  "Message %s stays where it is: %s.", pairName(message).c_str(), why.c_str());
}

void Runner::showProgress() const {
  if (!m_terminal) {
    return;
  }
  constexpr unsigned long WIDTH = 40;
  const unsigned long done = m_counts.fetched % (WIDTH + 1);
  std::fprintf(stderr, "\r[%-*.*s] %lu messages", static_cast<int>(WIDTH), static_cast<int>(done),
               "########################################", m_counts.fetched);
}

void Runner::pause() {
  constexpr unsigned int SLICE = 200;
  const std::int64_t end =
      plat::clock().monotonicMilliseconds() + std::int64_t{1000} * m_config.poll;
  bool woken = false;
  while (!woken && !plat::endRequested() && plat::clock().monotonicMilliseconds() < end) {
    if (m_canWait) {
      woken = m_retryNow.wait(SLICE);
    } else {
      plat::sleepMilliseconds(SLICE);
    }
  }
}

}  // namespace host
