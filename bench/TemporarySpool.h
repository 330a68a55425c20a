// A directory of its own for one benchmark, removed with the object.
#pragma once

#include <filesystem>
#include <string>

namespace bench {

class TemporarySpool {
 public:
  TemporarySpool();
  TemporarySpool(const TemporarySpool&) = delete;
  TemporarySpool& operator=(const TemporarySpool&) = delete;
  ~TemporarySpool();

  std::string in() const { return (m_root / "in").string(); }
  std::string out() const { return (m_root / "out").string(); }
  // The profile of a post office named "Bench" that takes pairs from in() and delivers into out().
  std::string profile() const { return (m_root / "bench.ini").string(); }

 private:
  std::filesystem::path m_root;
};

}  // namespace bench
