// The directory of one benchmark.
#include "bench/TemporarySpool.h"

#include <unistd.h>

#include "bench/Corpus.h"

namespace bench {

TemporarySpool::TemporarySpool() {
  static unsigned int made = 0;
  std::string name("krx-bench-");
  name.append(std::to_string(getpid())).append("-").append(std::to_string(++made));
  m_root = std::filesystem::temp_directory_path() / name;
  std::filesystem::create_directories(in());
  std::filesystem::create_directories(out());
  std::string text("[Bench]\nSourceDir = ");
  text.append(in()).append("\nDestDir = ").append(out());
  text.append("\nMailDomain = example.org\nContainerClass = Mail\n");
  writeFile(profile(), text);
}

TemporarySpool::~TemporarySpool() {
  std::error_code ignored;
  std::filesystem::remove_all(m_root, ignored);
}

}  // namespace bench
