// krx-load DIR [--repeat K] [--pairs] [--encoded]: loads every pair of a directory, asks every body
// and item for its decoded child, removes nothing, and prints what it has seen in all of the K
// passes. Both files of a pair are always read; --pairs says so for command lines shared with other
// programs. --encoded leaves out the decoding.
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>

#include "bench/Loader.h"

namespace {

struct Options {
  std::string directory;
  unsigned long repeat = 1;
  bool decode = true;
};

bool readOptions(int argc, char** argv, Options& options) {
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--repeat") == 0 && i + 1 < argc) {
      options.repeat = std::strtoul(argv[++i], nullptr, 10);
    } else if (std::strcmp(argv[i], "--encoded") == 0) {
      options.decode = false;
    } else if (std::strcmp(argv[i], "--pairs") != 0) {
      if (!options.directory.empty() || argv[i][0] == '-') {
        return false;
      }
      options.directory = argv[i];
    }
  }
  return !options.directory.empty();
}

void loadAll(const Options& options) {
  bench::Loader loader(options.decode);
  for (unsigned long pass = 0; pass < options.repeat; ++pass) {
    for (const KRX_PairNames& pair : bench::Loader::findPairs(options.directory)) {
      const std::unique_ptr<KRX_Message> message = loader.load(options.directory, pair);
      loader.count(*message);
    }
  }
  const bench::Totals& totals = loader.totals();
  std::printf("messages %" PRIu64 " bytes %" PRIu64 " parts %" PRIu64 " decoded %" PRIu64
              " headers %" PRIu64 "\n",
              totals.messages, totals.bytes, totals.parts, totals.decoded, totals.headers);
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  if (!readOptions(argc, argv, options)) {
    std::fputs("usage: krx-load DIR [--repeat K] [--pairs] [--encoded]\n", stderr);
    return EXIT_FAILURE;
  }
  try {
    loadAll(options);
    return EXIT_SUCCESS;
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "krx-load: %s\n", failure.what());
    return EXIT_FAILURE;
  }
}
