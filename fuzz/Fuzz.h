// The vocabulary of the fuzz targets: inputs as contents, messages outside any spool, and the one
// property that all targets share: what a sender or an operator wrote ends in a result or a status,
// never in an assertion.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "dac/DACBASDA.h"
#include "gen/GENCATCH.h"
#include "krx/krxmsg.h"

class GMA_MhdrTable;

namespace fuzz {

// Prints the finding and aborts, which the fuzzer takes for a crash.
[[noreturn]] void fail(const std::string& what);
inline void require(bool holds, const char* claim) {
  if (!holds) {
    fail(claim);
  }
}

// Runs one input.
template <class Operation>
int run(Operation&& operation) {
  if (const auto failure = GENCatch(operation)) {
    fail("thrown: " + *failure);
  }
  return 0;
}

inline std::string_view viewOf(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}
// The fields of an input that has several, divided by the character 0x1F; always `count` of them,
// the last with all that is left.
std::vector<std::string> split(std::string_view input, std::size_t count);

using Content = std::unique_ptr<DAC_BaseDataAccess>;
// Content whose last line need not be ended, as in a file, in memory that is shown in blocks of
// `block` bytes (0: as a whole). Readers have to give the same result for any block.
Content content(std::string_view bytes, std::size_t block = 0);
std::string bytesOf(DAC_BaseDataAccess& data);

// An empty message of a post office over an empty directory; files are neither read nor removed.
std::unique_ptr<KRX_Message> newMessage();
// Reads everything that a host may ask of a loaded message: every child of every part, the date,
// the standard attributes, the listing.
void askForEverything(KRX_Message& message);
// The contents of body and items, in order.
std::vector<std::string> partContents(KRX_Message& message);
std::string printHeaders(const GMA_MhdrTable& headers);

// A file of this process with that content; its path in the system's form.
std::string fileWith(std::string_view bytes);

}  // namespace fuzz
