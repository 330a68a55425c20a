// The log's configuration from a profile: which streams there are.
#include <utility>

#include "dv/DVDECODE.h"
#include "gen/GENCODES.h"
#include "log/LOGKINDS.h"
#include "log/LOGLOG.h"
#include "log/LOGPROF.h"

void LOG_Logging::configure(PFA_Profile& profile, const SCL_StringRef& section,
                            unsigned int& status) {
  const std::lock_guard guard(m_lock);
  if (status != 0) {
    return;
  }
  status = profile.selectSection(section);
  if (status == 0) {
    status =
        logging::forEachEntry(profile, [&](const SCL_StringRef& name, const SCL_StringRef& number) {
          return addStream(profile, name, number);
        });
  }
  for (unsigned int slot = 0; slot < STREAMS; ++slot) {
    const unsigned int failure = configureStream(profile, slot);
    if (status == 0) {
      status = failure;
    }
  }
}

unsigned int LOG_Logging::addStream(PFA_Profile& profile, const SCL_StringRef& name,
                                    const SCL_StringRef& number) {
  std::uint32_t slot = 0;
  if (!dv::decodeUnsigned(number, slot) || slot >= STREAMS) {
    return LOG_STREAM_NUMBER;
  }
  if (m_streams[slot] != nullptr) {
    return LOG_STREAM_TAKEN;
  }
  const PFA_Profile::Position position = profile.savePosition();
  const unsigned int status = makeStream(profile, name, slot);
  const unsigned int restored = profile.restorePosition(position);
  return status != 0 ? status : restored;
}

unsigned int LOG_Logging::makeStream(PFA_Profile& profile, const SCL_StringRef& name,
                                     unsigned int slot) {
  unsigned int status = logging::selectStreamSection(profile, name);
  LOG_StreamType type = LOG_NO_TYPE;
  if (status == 0) {
    status = logging::readStreamType(profile, type);
  }
  char sectionName[PFA_Profile::VALUE_SIZE];
  if (status == 0) {
    status = profile.sectionName(sectionName, sizeof sectionName);
  }
  if (status == 0) {
    m_streams[slot] = logging::makeStream(type, sectionName);
    status = m_streams[slot] != nullptr ? 0 : LOG_NO_STREAM_MEMORY;
  }
  return status;
}

// The slot is empty while its stream is configured, so a stream that fails, or throws, is gone.
unsigned int LOG_Logging::configureStream(PFA_Profile& profile, unsigned int slot) {
  if (m_streams[slot] == nullptr || (m_attached & 1U << slot) != 0) {
    return 0;
  }
  std::unique_ptr<LOG_Stream> stream = std::move(m_streams[slot]);
  publish(slot);
  unsigned int status = 0;
  stream->configureFromProfile(profile, status);
  if (status == 0) {
    m_streams[slot] = std::move(stream);
    publish(slot);
  }
  return status;
}
