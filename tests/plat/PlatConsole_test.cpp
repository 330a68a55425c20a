// The console on pipes and on a terminal.
#include "plat/PlatConsole.h"

#include <fcntl.h>
#include <termios.h>

#include "plat/Scene.h"

namespace {

void replaceStreams(int input, int output) {
  ::dup2(input, STDIN_FILENO);
  ::dup2(output, STDOUT_FILENO);
  EXPECT_TRUE(plat::consoleOpenInput() && plat::consoleOpenOutput());
}

std::string readLine(std::size_t limit) {
  std::string line;
  return plat::consoleReadLine(limit, line) ? line : "(no line)";
}

TEST(PlatConsole, LinesAreTakenOneByOneAndTheRestIsLeft) {
  scene::elsewhere([] {
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    ASSERT_EQ(::write(ends[1], "one\nlonger\nrest", 15), 15);
    replaceStreams(ends[0], STDOUT_FILENO);
    EXPECT_EQ(readLine(100), "one\n");
    EXPECT_EQ(readLine(4), "long");
    EXPECT_EQ(readLine(100), "er\n");
    char rest[16];
    EXPECT_EQ(::read(ends[0], rest, sizeof rest), 4);
    ::close(ends[1]);
    EXPECT_EQ(readLine(100), "(no line)");
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

TEST(PlatConsole, TerminalIsInLineModeForTheLineOnly) {
  scene::elsewhere([] {
    const int master = ::posix_openpt(O_RDWR | O_NOCTTY);
    scene::require(master >= 0 && ::grantpt(master) == 0 && ::unlockpt(master) == 0);
    const int terminal = ::open(::ptsname(master), O_RDWR | O_NOCTTY);
    struct termios raw {};
    struct termios after {};
    ::tcgetattr(terminal, &raw);
    ::cfmakeraw(&raw);
    ::tcsetattr(terminal, TCSANOW, &raw);
    replaceStreams(terminal, terminal);
    EXPECT_TRUE(plat::consoleWrite("a\n"));
    char shown[16];
    EXPECT_EQ(::read(master, shown, sizeof shown), 3) << "a carriage return came along";
    ::tcgetattr(terminal, &after);
    EXPECT_EQ(after.c_oflag, raw.c_oflag);
    EXPECT_EQ(after.c_lflag, raw.c_lflag);
  });
}

}  // namespace
