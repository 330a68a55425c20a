// The vocabulary of the tests of RFC 822 and MIME: contents in memory and behind streams that show
// little or nothing of their memory, tables as printed text, a log that remembers.
#pragma once

#include <memory>
#include <random>
#include <string>
#include <string_view>

#include "dac/Content.h"
#include "scl/SCLSTRTB.h"

class GMA_MhdrTable;
class RFC_SymbolList;

namespace rfctest {

using Object = std::unique_ptr<DAC_BaseDataAccess>;

inline Object inMemory(std::string_view text) {
  return std::make_unique<MemoryAccess>(text);
}
// Behind a stream that lies ready in blocks, or not at all (0), and fails from `failAt` on.
inline Object inBlocks(std::string_view text, std::size_t block,
                       std::int32_t failAt = DAC_Stream::MAX_SIZE) {
  return std::make_unique<StreamAccess>(new PartlyReadyStream(block, true, failAt), text);
}

std::string restOf(DAC_BaseDataAccess& object);  // what is to be read at the cursor

SCL_StringTable table(std::initializer_list<const char*> lines);

std::string print(const ATR_AttributeList& attributes);  // "name=value|"
std::string print(const GMA_MhdrTable& headers);         // "78 own name|line|line|\n"
std::string print(const RFC_SymbolList& symbols);        // "4 text|"
std::string print(const SCL_StringTable& lines);         // "line|"

std::string repeated(std::string_view text, int count);
// What the global log has received since the last call, one line an entry: "11:1 text\n".
std::string takeLog();

// Texts of pieces drawn from a list, the same in every run.
class Dice {
 public:
  explicit Dice(unsigned int seed) : m_random(seed) {}
  std::size_t below(std::size_t bound) { return m_random() % bound; }
  std::string text(std::initializer_list<std::string_view> pieces, std::size_t most) {
    std::string drawn;
    for (std::size_t count = below(most + 1); count > 0; --count) {
      drawn += pieces.begin()[below(pieces.size())];
    }
    return drawn;
  }

 private:
  std::mt19937 m_random;
};

}  // namespace rfctest
