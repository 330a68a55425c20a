// krx-corpus: writes a seeded corpus of pairs into a directory.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "bench/Corpus.h"

namespace {

constexpr std::uint64_t SEED = 19980105;
constexpr std::size_t MEGABYTE = 1000000;

struct Kind {
  const char* name;
  void (*write)(const char* directory, bench::MailMaker& maker, unsigned int count);
};

template <bench::Mail (bench::MailMaker::*Make)()>
void writeMany(const char* directory, bench::MailMaker& maker, unsigned int count) {
  for (unsigned int i = 0; i < count; ++i) {
    bench::writePair(directory, i, (maker.*Make)());
  }
}

template <bench::Mail (bench::MailMaker::*Make)(std::size_t)>
void writeOne(const char* directory, bench::MailMaker& maker, unsigned int count) {
  bench::writePair(directory, 0, (maker.*Make)(count));
}

// Attachments of 10 to 50 MB, `count` of them.
void writeLarge(const char* directory, bench::MailMaker& maker, unsigned int count) {
  for (unsigned int i = 0; i < count; ++i) {
    bench::writePair(directory, i, maker.attachment(10 * MEGABYTE * (1 + i % 5)));
  }
}

// One message file of `count` MB, which is mostly a Base64 attachment.
void writeHuge(const char* directory, bench::MailMaker& maker, unsigned int count) {
  bench::writePair(directory, 0, maker.attachment(count * MEGABYTE / 104 * 76));
}

// The address list for programs that read no envelopes.
void writeAddresses(const char* directory, bench::MailMaker& /*maker*/, unsigned int count) {
  bench::writeFile(std::string(directory).append("/addresses.txt"),
                   bench::MailMaker::addressList(count));
}

constexpr Kind KINDS[] = {
    {"small", writeMany<&bench::MailMaker::plain>},
    {"typical", writeMany<&bench::MailMaker::typical>},
    {"large", writeLarge},
    {"huge", writeHuge},
    {"recipients", writeOne<&bench::MailMaker::recipients>},
    {"headers", writeOne<&bench::MailMaker::headers>},
    {"parts", writeOne<&bench::MailMaker::parts>},
    {"lines", writeOne<&bench::MailMaker::lines>},
    {"addresses", writeAddresses},
};

}  // namespace

int main(int argc, char** argv) {
  if (argc == 4) {
    for (const Kind& kind : KINDS) {
      if (std::strcmp(kind.name, argv[1]) == 0) {
        bench::MailMaker maker(SEED);
        kind.write(argv[2], maker, static_cast<unsigned int>(std::strtoul(argv[3], nullptr, 10)));
        return EXIT_SUCCESS;
      }
    }
  }
  std::fputs("usage: krx-corpus KIND DIR COUNT; kinds:", stderr);
  for (const Kind& kind : KINDS) {
    std::fprintf(stderr, " %s", kind.name);
  }
  std::fputc('\n', stderr);
  return EXIT_FAILURE;
}
