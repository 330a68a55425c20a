// Hostile mail: message and envelope files that a sender might make to exhaust whoever reads them.
// What is drawn at random depends on the seed alone.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace hostile {

struct Mail {
  std::string message;
  std::string envelope;
};

struct Case {
  const char* name;
  std::function<Mail(std::uint32_t seed)> make;
};

// The table, in the order of docs/hostile.md.
const std::vector<Case>& cases();

}  // namespace hostile
