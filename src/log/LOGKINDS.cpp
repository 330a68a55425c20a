// The table from a stream's type to the maker of its kind.
#include "log/LOGKINDS.h"

#include <iterator>
#include <new>

#include "dv/DVDECODE.h"
#include "log/LOGEvtSt.h"
#include "log/LOGFilSt.h"

namespace {

using Maker = std::unique_ptr<LOG_Stream> (*)(const char* name);

template <class Kind>
std::unique_ptr<LOG_Stream> make(const char* name) {
  try {
    return std::make_unique<Kind>(name);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

std::unique_ptr<LOG_Stream> makeNone(const char* /*name*/) {
  return nullptr;
}

constexpr Maker MAKERS[] = {
    makeNone,               // LOG_NO_TYPE
    make<LOG_FileStream>,   // LOG_SYSTEM_FILE
    make<LOG_FileStream>,   // LOG_USER_FILE
    make<LOG_FileStream>,   // LOG_TRANSIENT_FILE
    make<LOG_EventStream>,  // LOG_SYSTEM_EVENT
    make<LOG_EventStream>,  // LOG_APP_EVENT
    make<LOG_EventStream>,  // LOG_SECURITY_EVENT
};
static_assert(std::size(MAKERS) == LOG_SECURITY_EVENT + 1);

}  // namespace

namespace logging {

LOG_StreamType streamTypeOf(const SCL_StringRef& text) {
  return static_cast<LOG_StreamType>(dv::keywordIndex(
      "{ SystemFile | UserFile | TransientFile | SystemEvent | AppEvent | SecurityEvent }", text));
}

std::unique_ptr<LOG_Stream> makeStream(LOG_StreamType type, const char* name) {
  return MAKERS[type](name);
}

}  // namespace logging
