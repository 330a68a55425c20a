// Line prefixes, dump lines and the names of a series of log files.
#include "log/LOGLINE.h"

#include "log/LOGNAME.h"
#include "log/Support.h"

namespace logtest {
namespace {

using Kind = LOG_NamePattern::Kind;

std::string prefix(unsigned facility, unsigned level, unsigned size) {
  char buffer[logging::PREFIX_SIZE];
  return {buffer, logging::formatPrefix(buffer, size, facility, level)};
}

// What a root gives for day 1999-01-23 or number 7, or its status.
std::string named(const char* root, Kind kind) {
  LOG_NamePattern pattern;
  const unsigned status = pattern.parse(root, kind);
  const std::uint32_t key =
      kind == Kind::date ? static_cast<std::uint32_t>(DV_Date(1999, 1, 23).dayNumber()) : 7;
  return status != 0 ? std::to_string(status) : pattern.nameOf(key);
}

// The file of the series that a name stands for, "-" for none.
std::string recognised(const char* root, Kind kind, const char* path) {
  LOG_NamePattern pattern;
  pattern.parse(root, kind);
  std::uint32_t key = 0;
  return pattern.keyOf(path, key) ? pattern.nameOf(key) : "-";
}

TEST_F(LogTest, PrefixesAndDumpsFitTheirBuffersWhateverTheNumbers) {
  EXPECT_EQ(prefix(2, 1, 132), "14:05:09.27 (002:001) ");
  EXPECT_EQ(prefix(4294967295U, 4294967295U, 132), "14:05:09.27 (4294967295:4294967295) ");
  EXPECT_EQ(prefix(11, 1, 6) + prefix(11, 1, 0), "14:05");
  char dump[logging::DUMP_SIZE];
  EXPECT_EQ(logging::formatDump(dump, 0xFFFFFFF0U, "\xC1", 1), 76U);
  EXPECT_EQ(std::string(dump),
            "FFFFFFF0: C1 " + std::string(45, ' ') + "|A" + std::string(15, ' ') + "|");
}

TEST(LogName, RootsAreNeverFormats) {
  EXPECT_EQ(named("LOG%s.TXT", Kind::date), "LOG990123.TXT");
  EXPECT_EQ(named("LOG%03u.TXT", Kind::number), "LOG007.TXT");
  EXPECT_EQ(named("LOG%3u.TXT", Kind::number), "LOG  7.TXT");
  for (const char* root : {"LOG.TXT", "LOG%u.TXT", "LOG%s%n.TXT", "%s%s", "%6s", "LOG%"}) {
    EXPECT_EQ(named(root, Kind::date), "10618") << root;
  }
  for (const char* root : {"LOG%s.TXT", "LOG%u%%", "LOG%-3u", "%", "%3"}) {
    EXPECT_EQ(named(root, Kind::number), "10618") << root;
  }
  EXPECT_EQ(named("LOG%250u.TXT", Kind::number), "10626");
  EXPECT_EQ(named("LOG%4000000000000000000000u.TXT", Kind::number), "10626");
}

TEST(LogName, OnlyNamesOfTheSeriesAreRecognised) {
  const char* root = "/var/l[o]g/LOG%s.TXT";
  EXPECT_EQ(recognised(root, Kind::date, "\\var\\l[o]g\\LOG510101.TXT"),
            "/var/l[o]g/LOG510101.TXT");
  for (const char* path : {"LOG990230.TXT", "LOG9901233.TXT", "LOG99 123.TXT", "LOG.TXT"}) {
    EXPECT_EQ(recognised(root, Kind::date, path), "-") << path;
  }
  EXPECT_EQ(recognised(root, Kind::date, "log510101.txt"), "/var/l[o]g/LOG510101.TXT");
  EXPECT_EQ(recognised("L%3u", Kind::number, "L  7"), "L  7");
  for (const char* path : {"L", "L4294967296", "L-1", "L 07", "L7x"}) {
    EXPECT_EQ(recognised("L%03u", Kind::number, path), "-") << path;
  }
}

}  // namespace
}  // namespace logtest
