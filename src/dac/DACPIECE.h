// The next bytes of an object's content, as many at a time as can be had without a copy.
#pragma once

#include <cstdint>
#include <string_view>

#include "dac/DACBASDA.h"

namespace dac {

class Piece {
 public:
  // The bytes at `position`: those that lie ready in memory, else one that is read. Empty with a
  // status at the end and on a failure. Valid until the next operation on the object or this piece.
  std::string_view at(DAC_BaseDataAccess& object, std::int32_t position, unsigned int& status) {
    const std::string_view ready = object.window(position);
    if (!ready.empty()) {
      return ready;
    }
    m_byte = object.getCharAt(position, status);
    return status == 0 ? std::string_view(&m_byte, 1) : std::string_view();
  }

 private:
  char m_byte = '\0';
};

}  // namespace dac
