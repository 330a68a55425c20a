// The number reader beneath the conversions and the public readers.
#pragma once

#include <cstdint>
#include <string_view>

namespace dv {

// As readNumber, for a text that need not end in a NUL.
int scanNumber(std::int32_t& value, int base, std::string_view text);

}  // namespace dv
