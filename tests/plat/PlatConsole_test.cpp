// The console on pipes.
#include "plat/PlatConsole.h"

#include "plat/Scene.h"

namespace {

void replaceStreams(int input, int output) {
  ::dup2(input, STDIN_FILENO);
  ::dup2(output, STDOUT_FILENO);
  EXPECT_TRUE(plat::consoleOpenInput() && plat::consoleOpenOutput());
}

TEST(PlatConsole, LinesAreTakenOneByOneAndTheRestIsLeft) {
  scene::elsewhere([] {
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    ASSERT_EQ(::write(ends[1], "one\nlonger\nrest", 15), 15);
    replaceStreams(ends[0], STDOUT_FILENO);
    std::string line;
    EXPECT_TRUE(plat::consoleReadLine(100, line) && line == "one\n");
    EXPECT_TRUE(plat::consoleReadLine(4, line) && line == "long");
    char rest[16];
    EXPECT_EQ(::read(ends[0], rest, sizeof rest), 7);
    ::close(ends[1]);
    EXPECT_FALSE(plat::consoleReadLine(100, line));
  });
}

TEST(PlatConsole, ReaderThatWentAwayDoesNotEndTheHost) {
  scene::elsewhere([] {
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    ::close(ends[0]);
    replaceStreams(STDIN_FILENO, ends[1]);
    EXPECT_FALSE(plat::consoleWrite("text"));
    sigset_t mask;
    ::sigprocmask(SIG_BLOCK, nullptr, &mask);
    EXPECT_EQ(::sigismember(&mask, SIGPIPE), 0) << "and the host's signals are as before";
  });
}

}  // namespace
