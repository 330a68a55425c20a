// The kinds of stream: their names in a profile and how one of each is made.
#pragma once

#include <memory>

#include "log/LOGSTRM.h"

namespace logging {

// The type of this name in any letter case, LOG_NO_TYPE for any other text.
LOG_StreamType streamTypeOf(const SCL_StringRef& text);
// A new stream of the kind that serves `type`; null without memory for it or for LOG_NO_TYPE.
std::unique_ptr<LOG_Stream> makeStream(LOG_StreamType type, const char* name);

}  // namespace logging
