// The operations of the log: fanning out to the streams.
#include "log/LOGLOG.h"

#include <algorithm>
#include <bit>
#include <cstdio>
#include <utility>

#include "gen/GENCATCH.h"
#include "gen/GENCODES.h"
#include "gen/GENWNT.h"

namespace {

// The set bits of a mask of streams, lowest first.
template <class Visit>
void forEachBit(std::uint32_t mask, Visit visit) {
  for (; mask != 0; mask &= mask - 1) {
    visit(static_cast<unsigned int>(std::countr_zero(mask)));
  }
}

}  // namespace

LOG_Logging::~LOG_Logging() = default;

void LOG_Logging::attach(unsigned int slot, std::unique_ptr<LOG_Stream> stream,
                         unsigned int& status) {
  const std::lock_guard guard(m_lock);
  if (status != 0) {
    return;
  }
  if (stream == nullptr) {
    GENAssert(GEN_NULL_POINTER, "LOGLOG", __LINE__);
  }
  if (slot >= STREAMS) {
    status = LOG_STREAM_NUMBER;
  } else if (m_streams[slot] != nullptr) {
    status = LOG_STREAM_TAKEN;
  } else {
    m_streams[slot] = std::move(stream);
    m_attached |= 1U << slot;
    publish(slot);
  }
}

// Tells the writers what the slot's stream lets through, or that there is none.
void LOG_Logging::publish(unsigned int slot) noexcept {
  const std::uint32_t bit = 1U << slot;
  const LOG_Stream* stream = m_streams[slot].get();
  const auto put = [bit](std::atomic<std::uint32_t>& word, bool set) {
    word = set ? word | bit : word & ~bit;
  };
  for (unsigned int level = 0; level <= DEBUG; ++level) {
    put(m_levels[level], stream != nullptr && stream->maximumLevel() >= level);
  }
  put(m_active, stream != nullptr);
}

// One stream's failure does not stop the others, and none reaches the caller.
template <class Write>
void LOG_Logging::offer(unsigned int mask, unsigned int facility, unsigned int level,
                        Write write) noexcept {
  GENSwallow([&] {
    const std::lock_guard guard(m_lock);
    forEachBit(mask & m_active, [&](unsigned int slot) {
      LOG_Stream& stream = *m_streams[slot];
      if (stream.maximumLevel() >= level && stream.passesFacility(facility)) {
        GENSwallow([&] { write(stream); });
      }
    });
  });
}

void LOG_Logging::writeText(unsigned int mask, unsigned int facility, unsigned int level,
                            const char* format, ...) {
  if (!wants(mask, level)) {
    return;
  }
  std::va_list arguments;
  va_start(arguments, format);
  offerFormatted(mask, facility, level, format, arguments);
  va_end(arguments);
}

void LOG_Logging::offerFormatted(unsigned int mask, unsigned int facility, unsigned int level,
                                 const char* format, std::va_list arguments) noexcept {
  char text[TEXT_SIZE];
  const int formatted = std::vsnprintf(text, sizeof text, format, arguments);
  if (formatted < 0) {
    return;
  }
  const unsigned int length = std::min(static_cast<unsigned int>(formatted), TEXT_SIZE - 1);
  offer(mask, facility, level,
        [&](LOG_Stream& stream) { stream.writeEntry(facility, level, length, text, false); });
}

void LOG_Logging::writeData(unsigned int mask, unsigned int facility, unsigned int level,
                            unsigned int length, const void* bytes) {
  if (!wants(mask, level)) {
    return;
  }
  offer(mask, facility, level, [&](LOG_Stream& stream) {
    stream.writeEntry(facility, level, length, static_cast<const char*>(bytes), true);
  });
}

void LOG_Logging::writeDataObject(unsigned int mask, unsigned int facility, unsigned int level,
                                  DAC_BaseDataAccess& object, bool raw) {
  if (!wants(mask, level)) {
    return;
  }
  offer(mask, facility, level,
        [&](LOG_Stream& stream) { stream.writeDataObject(facility, level, object, raw); });
}

void LOG_Logging::maintain(unsigned int mask, const SCL_StringRef& target, bool deleteFiles,
                           LOG_Progress& progress, unsigned int& status) {
  bool accepted = false;
  inTurn(mask, status, [&](LOG_Stream& stream) {
    stream.maintain(target, deleteFiles, progress, status);
    accepted = accepted || status == 0;
    status = status == LOG_NOT_SUPPORTED ? 0 : status;
  });
  if (status == 0 && !accepted) {
    status = LOG_NOT_SUPPORTED;
  }
}

void LOG_Logging::close(unsigned int mask, bool deleteFile, unsigned int& status) {
  inTurn(mask, status, [&](LOG_Stream& stream) { stream.close(deleteFile, status); });
}

void LOG_Logging::open(unsigned int mask, unsigned int& status) {
  inTurn(mask, status, [&](LOG_Stream& stream) { stream.open(status); });
}

template <class Operation>
void LOG_Logging::inTurn(unsigned int mask, unsigned int& status, Operation operation) {
  const std::lock_guard guard(m_lock);
  if (status != 0) {
    return;
  }
  if ((mask & m_active) == 0) {
    status = LOG_NO_SUCH_STREAM;
  }
  forEachBit(mask & m_active, [&](unsigned int slot) {
    if (status == 0) {
      operation(*m_streams[slot]);
    }
  });
}

void LOG_Logging::copyLogToFile(unsigned int mask, const SCL_StringRef& path,
                                unsigned int& status) {
  withFirst(mask, status, [&](LOG_Stream& stream) { stream.copyLogToFile(path, status); });
}

void LOG_Logging::readLog(unsigned int mask, DAC_BaseDataAccess& target, unsigned int& status) {
  withFirst(mask, status, [&](LOG_Stream& stream) { stream.readLog(target, status); });
}

template <class Operation>
void LOG_Logging::withFirst(unsigned int mask, unsigned int& status, Operation operation) {
  const std::lock_guard guard(m_lock);
  if (status != 0) {
    return;
  }
  const std::uint32_t selected = mask & m_active;
  if (selected == 0) {
    status = LOG_NOTHING_SELECTED;
  } else {
    operation(*m_streams[std::countr_zero(selected)]);
  }
}

LOG_Clean::LOG_Clean(std::string_view text) : m_text(text) {
  std::replace_if(m_text.begin(), m_text.end(), SCL_isControl, ' ');
}
