// The base of all log streams: the keys that every kind has, the filter, and operations of kinds
// that have nothing to do for them.
#include "log/LOGSTRM.h"

#include <algorithm>
#include <iterator>

#include "dac/DACBASDA.h"
#include "dv/DVDECODE.h"
#include "gen/GENCODES.h"
#include "gen/GENWNT.h"
#include "log/LOGKINDS.h"
#include "log/LOGPROF.h"

namespace {

enum Key : unsigned int { STREAM_TYPE = 1, MAX_LEVEL, INCLUDE_FACILITY, EXCLUDE_FACILITY };

const char* required(const char* name) {
  if (name == nullptr) {
    GENAssert(GEN_NULL_POINTER, "LOGSTRM", __LINE__);
  }
  return name;
}

// Stores the 1-based index of a keyword, or sets `failure` when there was none.
template <class Value>
void store(Value index, Value& value, unsigned int failure, unsigned int& status) {
  if (index == Value{}) {
    status = failure;
  } else {
    value = index;
  }
}

}  // namespace

LOG_Stream::LOG_Stream(const char* name) : m_name(required(name)) {}

LOG_Stream::~LOG_Stream() = default;

void LOG_Stream::configureKey(const SCL_StringRef& key, const SCL_StringRef& value,
                              unsigned int& status) {
  if (status != 0) {
    return;
  }
  switch (dv::keywordIndex("{ StreamType | MaxLevel | IncludeFacility | ExcludeFacility }", key)) {
    case STREAM_TYPE:
      return store(logging::streamTypeOf(value), m_type, LOG_STREAM_TYPE, status);
    case MAX_LEVEL:
      return store(dv::keywordIndex("{ Brief | Normal | Verbose | Debug }", value), m_maximumLevel,
                   LOG_MAX_LEVEL, status);
    case INCLUDE_FACILITY:
      return facilityDirective(value, true);
    case EXCLUDE_FACILITY:
      return facilityDirective(value, false);
    default:
      status = DV_NO_MATCH;
  }
}

void LOG_Stream::facilityDirective(const SCL_StringRef& value, bool include) {
  if (!m_filterSet) {
    m_filterSet = true;
    std::fill(std::begin(m_facilities), std::end(m_facilities), include ? 0 : 1);
  }
  std::uint32_t facility = FILTERED_FACILITIES;
  if (!dv::decodeUnsigned(value, facility)) {
    const int coded = logging::facilityOfCode(value);
    facility = coded < 0 ? FILTERED_FACILITIES : static_cast<std::uint32_t>(coded);
  }
  if (facility < FILTERED_FACILITIES) {
    m_facilities[facility] = include ? 1 : 0;
  }
}

void LOG_Stream::configureFromProfile(PFA_Profile& profile, unsigned int& status) {
  if (status != 0) {
    return;
  }
  status = logging::selectStreamSection(profile, m_name.c_str());
  if (status != 0) {
    return;
  }
  status =
      logging::forEachEntry(profile, [&](const SCL_StringRef& key, const SCL_StringRef& value) {
        unsigned int result = 0;
        configureKey(key, value, result);
        return result;
      });
  endOfConfiguration(status);
}

bool LOG_Stream::passesFacility(unsigned int facility) const noexcept {
  return !m_filterSet || facility >= FILTERED_FACILITIES || m_facilities[facility] != 0;
}

void LOG_Stream::readLog(DAC_BaseDataAccess& target, unsigned int& status) {
  static constexpr char TEXT[] = "Message log not accessible";
  target.write(sizeof TEXT, TEXT, status);
}

void LOG_Stream::endOfConfiguration(unsigned int& /*status*/) {}
void LOG_Stream::maintain(const SCL_StringRef& /*target*/, bool /*deleteFiles*/,
                          LOG_Progress& /*progress*/, unsigned int& /*status*/) {}
void LOG_Stream::close(bool /*deleteFile*/, unsigned int& /*status*/) {}
void LOG_Stream::open(unsigned int& /*status*/) {}
void LOG_Stream::copyLogToFile(const SCL_StringRef& /*path*/, unsigned int& /*status*/) {}
