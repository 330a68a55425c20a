// Content in files: opening, the window, gathered writes, and the copy to a file.
#include "dac/DACFILST.h"

#include <csignal>

#include <sys/resource.h>

#include "dac/Content.h"
#include "dac/DACFILDA.h"
#include "dac/DACTOFIL.h"
#include "gen/GENCODES.h"
#include "plat/PlatClock.h"
#include "plat/PlatRegistry.h"
#include "scl/Failure.h"

namespace {

using File = DAC_FileDataAccess;

class FileTest : public DirectoryTest {
 protected:
  FileTest() {
    setenv("KRX_REGISTRY", path("registry.db").c_str(), 1);
    setenv("KRX_RUN_DIR", m_directory.c_str(), 1);
    plat::registryWriteValue(3, ".DEFAULT\\Environment",
                             {"TMP", plat::ValueType::string, plat::fromNative(m_directory)});
  }

  unsigned int statusOf(const std::string& name, unsigned int flags) {
    unsigned int status = 0;
    const File file(path(name).c_str(), flags, status);
    return status;
  }
  unsigned int mode(const char* name) {
    return static_cast<unsigned int>(std::filesystem::status(path(name)).permissions());
  }
  void put(DAC_BaseDataAccess& object, std::string_view bytes) {
    object.write(static_cast<std::int32_t>(bytes.size()), bytes.data(), m_status);
  }

  unsigned int m_status = 0;
};

TEST_F(FileTest, OpenTellsWhatTheNameIs) {
  const std::string name = makeFile("a.txt", "x");
  File file(name.c_str(), 0, m_status);
  EXPECT_EQ(m_status, 0U);
  unsigned int failed = DAC_END;
  EXPECT_EQ(file.stream()->size(failed), 0);
  EXPECT_EQ(file.stream()->size(m_status), 1);
  EXPECT_STREQ(file.findAttribute(dac::CONTENT_TITLE)->string().c_str(), "a.txt");
  EXPECT_EQ(file.findAttribute(dac::CONTENT_PATH)->string().c_str(), plat::fromNative(name));
  EXPECT_EQ(statusOf("missing", 0), DV_NOT_FOUND);
  EXPECT_EQ(statusOf("a*", 0), DV_NO_MATCH);
  EXPECT_EQ(statusOf("*/a.txt", 0), DV_PATTERN);
  EXPECT_EQ(statusOf("", 0), DV_PATTERN);
  EXPECT_EQ(statusOf("", File::CREATE), DV_PATTERN);
}

TEST_F(FileTest, CreateOpensWhatExistsUnlessItMustNot) {
  EXPECT_EQ(statusOf("new", File::CREATE | File::EXCLUSIVE), 0U);
  EXPECT_EQ(statusOf("new", File::CREATE), 0U);
  EXPECT_EQ(statusOf("new", File::CREATE | File::EXCLUSIVE), DAC_EXISTS);
  std::filesystem::create_symlink(path("nowhere"), path("link"));
  EXPECT_EQ(statusOf("link", File::CREATE | File::EXCLUSIVE), DAC_EXISTS);
  EXPECT_FALSE(exists("nowhere"));
}

TEST_F(FileTest, SpoolFilesAreNoLinksAndKeepTheirMode) {
  EXPECT_EQ(statusOf("spool", File::CREATE | File::SPOOL), 0U);
  EXPECT_EQ(statusOf("log", File::CREATE | File::LOG_FILE), 0U);
  EXPECT_EQ(mode("spool") & 07U, 0U);
  EXPECT_EQ(mode("log") & 027U, 0U);
  std::filesystem::create_symlink(path("spool"), path("link"));
  EXPECT_EQ(statusOf("link", 0), 0U);
  EXPECT_EQ(statusOf("link", File::SPOOL), DAC_OPEN);
}

// The read window ends somewhere; a line end that lies across its edge is still one line end.
TEST_F(FileTest, LinesAcrossTheEdgeOfTheWindowAreRead) {
  constexpr std::size_t WINDOW = 65536;
  for (std::size_t first = WINDOW - 4; first <= WINDOW + 1; ++first) {
    const std::string name = makeFile(
        "lines", std::string(first, 'x') + "\r\n" + std::string(WINDOW, 'y') + "\r\n\r\nz");
    File file(name.c_str(), File::READ_ONLY, m_status);
    std::string lengths;
    char buffer[2 * WINDOW];
    while (m_status == 0) {
      lengths += std::to_string(file.readLine(sizeof buffer, buffer, m_status)) + " ";
    }
    EXPECT_EQ(lengths, std::to_string(first) + " 65536 0 1 0 ");
    m_status = 0;
  }
}

TEST_F(FileTest, OtherLetterCaseIsFoundAndDeleted) {
  makeFile("a.msg", "x");
  EXPECT_EQ(statusOf("a.MSG", 0), DV_NOT_FOUND);
  EXPECT_EQ(statusOf("b.MSG", File::OTHER_CASE), DV_NOT_FOUND);
  EXPECT_EQ(statusOf("a.MSG", File::OTHER_CASE | File::DELETE_ON_CLOSE), 0U);
  EXPECT_FALSE(exists("a.msg"));
  makeFile("c.msg", "x");
  EXPECT_EQ(statusOf("c.MSG", File::CREATE | File::EXCLUSIVE), 0U);
  EXPECT_TRUE(exists("c.msg") && exists("c.MSG"));
}

TEST_F(FileTest, MoreThanPositionsReachIsRefused) {
  std::filesystem::resize_file(makeFile("big", ""), 2147483648);
  EXPECT_EQ(statusOf("big", 0), DAC_OPEN);
  File growing(makeFile("growing", "").c_str(), 0, m_status);
  std::filesystem::resize_file(path("growing"), 2147483648);
  EXPECT_EQ(growing.size(m_status), 0);
  EXPECT_EQ(std::exchange(m_status, 0), DAC_SEEK);
  growing.setPosition(2147483640, m_status);
  char bytes[20];
  EXPECT_EQ(growing.read(20, bytes, m_status), 7);
  EXPECT_EQ(growing.getPosition(), 2147483647);
  EXPECT_EQ(growing.read(20, bytes, m_status), 0);
  EXPECT_EQ(std::exchange(m_status, 0), DAC_END);
  put(growing, "x");
  EXPECT_EQ(m_status, DAC_WRITE);
  EXPECT_EQ(growing.getPosition(), 2147483647);
}

TEST_F(FileTest, WhatWasJustWrittenIsReadAndNotLost) {
  File file(path("f").c_str(), File::CREATE, m_status);
  put(file, "abc");
  file.setPosition(1, m_status);
  char bytes[2];
  EXPECT_EQ(file.read(2, bytes, m_status), 2);
  EXPECT_EQ(std::string(bytes, 2), "bc");
  file.close(m_status);
  EXPECT_EQ(m_status, 0U);
  EXPECT_EQ(fileContent("f"), "abc");
}

TEST_F(FileTest, CreatedFileIsWrittenInPlaceAtFlush) {
  File file(path("f").c_str(), File::CREATE, m_status);
  put(file, "hello");
  EXPECT_EQ(fileContent("f"), "") << "gathered";
  file.flush(m_status);
  EXPECT_EQ(fileContent("f"), "hello");
  file.setPosition(1, m_status);
  put(file, "u");
  file.setPosition(7, m_status);
  file.fill(100, '.', m_status);
  EXPECT_EQ(contentOf(file), std::string("hullo\0\0", 7) + std::string(100, '.'));
  file.setSize(2, m_status);
  EXPECT_EQ(contentOf(file), "hu");
  EXPECT_EQ(m_status, 0U);
}

TEST_F(FileTest, OpenedFileIsAppendedTo) {
  File file(makeFile("f", "abc").c_str(), 0, m_status);
  put(file, "X");
  EXPECT_EQ(file.getPosition(), 1);
  EXPECT_EQ(contentOf(file), "abcX");
  MemoryAccess source("HELLO");
  source.copyTo(&file, 0, m_status);
  EXPECT_EQ(contentOf(file), "abcXHELLO");
  EXPECT_EQ(m_status, 0U);
}

TEST_F(FileTest, ReadOnlyFileRefusesWrites) {
  File file(makeFile("f", "abc").c_str(), File::READ_ONLY, m_status);
  put(file, "X");
  EXPECT_EQ(std::exchange(m_status, 0), DAC_WRITE);
  file.setSize(0, m_status);
  EXPECT_EQ(m_status, DAC_SET_SIZE);
  EXPECT_EQ(contentOf(file), "abc");
}

TEST_F(FileTest, GrowthByOthersIsSeenAtTheEndOfTheWindow) {
  File file(makeFile("f", "abc\n").c_str(), 0, m_status);
  EXPECT_EQ(linesOf(file, 9), "abc/0@4 /10016@4 ");
  std::ofstream(path("f"), std::ios::app) << "de";
  EXPECT_EQ(linesOf(file, 9), "de/0@6 /10016@6 ");
  File asOpened(path("f").c_str(), File::READ_ONLY, m_status);
  std::ofstream(path("f"), std::ios::app) << "fg";
  EXPECT_EQ(asOpened.size(m_status), 6);
  EXPECT_EQ(contentOf(asOpened), "abc\nde");
}

TEST_F(FileTest, BlocksOfAllSizesComeBackInOrder) {
  File file(path("f").c_str(), File::CREATE, m_status);
  std::string expected;
  for (const std::size_t size : {1U, 65535U, 2U, 65536U, 200000U, 7U}) {
    const std::string block(size, static_cast<char>('a' + expected.size() % 26));
    put(file, block);
    expected += block;
  }
  EXPECT_TRUE(contentOf(file) == expected);
  file.close(m_status);
  EXPECT_EQ(m_status, 0U);
  EXPECT_TRUE(fileContent("f") == expected);
}

// Runs in a child: the limit holds for the process.
[[noreturn]] void writeBeyondTheLimit(const std::string& first, const std::string& second) {
  std::signal(SIGXFSZ, SIG_IGN);
  const rlimit limit = {.rlim_cur = 1000, .rlim_max = 1000};
  setrlimit(RLIMIT_FSIZE, &limit);
  unsigned int status[4] = {};
  File file(first.c_str(), File::CREATE, status[0]);
  file.fill(1001, 'x', status[0]);
  file.flush(status[1]);
  file.close(status[2]);
  MemoryAccess source(std::string(1001, 'x'));
  dac::copyToFile(&source, second.c_str(), status[3]);
  std::fprintf(stderr, "%u %u %u %u", status[0], status[1], status[2], status[3]);
  std::exit(0);
}

TEST_F(FileTest, FullDiskIsToldAtFlushAndClose) {
  EXPECT_EXIT(writeBeyondTheLimit(path("f"), path("g")), testing::ExitedWithCode(0),
              "0 10034 10022 472");
}

TEST_F(FileTest, CopyThatCannotBeReadLeavesANote) {
  StreamAccess object(new PartlyReadyStream(0, true, 5), "0123456789");
  dac::copyToFile(&object, makeFile("f", "what was there before").c_str(), m_status);
  EXPECT_EQ(std::exchange(m_status, 0), DAC_READ);
  EXPECT_EQ(fileContent("f"), "01234");
  EXPECT_STREQ(object.findAttribute(dac::BAD_DATA)->string().c_str(),
               "Status error 10021 reading from stream.");
  char name[260] = "";
  object.getFileName(sizeof name, name, m_status);
  EXPECT_EQ(std::exchange(m_status, 0), DAC_READ);
  dac::copyToFile(&object, path("missing/f").c_str(), m_status);
  EXPECT_EQ(m_status, DACTOFIL_OPEN);
}

// The names of temporary files are the time, which stands still here until a name is drawn.
class FileAtATimeTest : public FileTest {
 protected:
  FileAtATimeTest() { plat::setClock(&m_clock); }
  ~FileAtATimeTest() override { plat::setClock(nullptr); }

  plat::ManualClock m_clock{{1000, 0}};
};

TEST_F(FileAtATimeTest, FileNameIsMadeOnceNoLinkAndGoesWithTheObject) {
  const std::string bytes(40000, 'x');
  std::filesystem::create_symlink(path("victim"), path("1000001"));
  char name[260] = "";
  {
    MemoryAccess object(bytes);
    object.getFileName(sizeof name, name, m_status);
    EXPECT_EQ(plat::toNative(name), path("1000002"));
    EXPECT_TRUE(fileContent("1000002") == bytes);
    EXPECT_EQ(mode("1000002"), 0600U);
    const auto length = static_cast<std::int32_t>(std::strlen(name));
    object.getFileName(length + 1, name, m_status);
    EXPECT_EQ(m_status, 0U);
    object.getFileName(length, name, m_status);
    EXPECT_EQ(m_status, DAC_PATH_TOO_LONG);
  }
  EXPECT_FALSE(exists("1000002") || exists("1000003") || exists("victim"));
}

TEST_F(FileAtATimeTest, ACopyThatThrowsLeavesNoFile) {
  DAC_BaseDataAccess withoutStream;
  char name[260] = "";
  EXPECT_EQ(failureOf([&] { withoutStream.getFileName(sizeof name, name, m_status); }),
            "Null pointer in DACBASDA");
  EXPECT_FALSE(exists("1000001"));
}

TEST_F(FileAtATimeTest, DeletingDoesNotWaitInVain) {
  dac::deleteFilePatiently(m_directory.c_str());
  dac::deleteFilePatiently(path("missing").c_str());
  EXPECT_EQ(m_clock.monotonicMilliseconds(), 0);
}

// Tells a size of which it gives nothing.
class ShrunkStream : public PartlyReadyStream {
 public:
  ShrunkStream() : PartlyReadyStream(0) {}
  std::int32_t size(unsigned int&) override { return 10; }
  std::int32_t read(std::int32_t&, std::int32_t, void*, unsigned int&) override { return 0; }
};

TEST_F(FileTest, ContentThatShrankEndsItsCopies) {
  StreamAccess object(new ShrunkStream);
  MemoryAccess copy;
  object.copyTo(&copy, 0, m_status);
  EXPECT_EQ(std::exchange(m_status, 0), DAC_END);
  dac::copyToFile(&object, path("f").c_str(), m_status);
  EXPECT_EQ(m_status, 0U);
  EXPECT_EQ(object.lineCount(), 0U);
}

}  // namespace
