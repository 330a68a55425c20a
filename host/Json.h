// The model as JSON. Text is 8-bit: every character becomes the code point of the same number, so
// that any mail can be shown.
#pragma once

#include <string_view>

#include <nlohmann/json.hpp>

#include "gma/GMAMSG.h"
#include "host/Log.h"

namespace host {

using Json = nlohmann::ordered_json;

Json jsonText(std::string_view text);
Json jsonMessage(GMA_Message& message, unsigned int status,
                 const std::vector<RecordingStream::Entry>& log);
// ASCII only, in one line or indented.
std::string jsonString(const Json& value, int indent);

}  // namespace host
