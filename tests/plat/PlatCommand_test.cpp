// Running commands and loading libraries.
#include "plat/PlatCommand.h"

#include <fcntl.h>

#include "plat/PlatLibrary.h"
#include "plat/Scene.h"

namespace {

struct PlatCommand : scene::Directory {
  static std::string run(const std::string& command) {
    int error = -1;
    const int result = plat::runCommand(command, error);
    return std::to_string(result) + (error == 0 ? "" : std::string(" ") + strerrorname_np(error));
  }
};

TEST_F(PlatCommand, ResultIsTheExitCodeOrTheSignal) {
  EXPECT_EQ(run("exit 3"), "3");
  EXPECT_EQ(run("kill -KILL $$"), "137");
  EXPECT_EQ(run("/no/such/command 2>/dev/null"), "127");
}

TEST_F(PlatCommand, TheHostsOwnChildrenAreLeftToTheHost) {
  scene::Work child([] {});
  siginfo_t ended{};
  ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(child.id()), &ended, WEXITED | WNOWAIT), 0);
  EXPECT_EQ(run("sleep 0.05; exit 3"), "3");
  EXPECT_EQ(child.end(), 0);
}

TEST_F(PlatCommand, CommandThatCannotBeStartedIsMinusOne) {
  scene::elsewhere([] {
    scene::refuse(SYS_execve, EACCES);
    EXPECT_EQ(run("true"), "-1 EACCES");
  });
}

TEST_F(PlatCommand, CommandStartsWithDefaultSignalsAndStandardStreamsOnly) {
  scene::elsewhere([] {
    ::signal(SIGINT, SIG_IGN);
    sigset_t blocked;
    ::sigemptyset(&blocked);
    ::sigaddset(&blocked, SIGTERM);
    ::sigprocmask(SIG_BLOCK, &blocked, nullptr);
    const int open = ::fcntl(STDIN_FILENO, F_DUPFD, 50);
    EXPECT_EQ(run("test -e /proc/self/fd/" + std::to_string(open)), "1");
    EXPECT_EQ(run("kill -INT $$"), "130");
    EXPECT_EQ(run("kill -TERM $$"), "143");
  });
}

// Nothing here is a library: the loader's reason names the file that was chosen.
struct PlatLibrary : PlatCommand {
  static std::string chosen(const std::string& name) {
    std::string reason;
    EXPECT_EQ(plat::loadLibrary(name, reason), nullptr);
    return reason.substr(0, reason.find(':'));
  }
};

TEST_F(PlatLibrary, NamesOfTheSystemAreFoundBesideTheModule) {
  const std::string program = std::filesystem::read_symlink("/proc/self/exe").parent_path();
  const std::string stem = "KRXTEST" + std::to_string(::getpid());
  const std::string beside = program + "/" + stem + ".so";
  std::ofstream(beside) << "no library";
  EXPECT_EQ(std::filesystem::absolute(chosen(stem + ".dll")).lexically_normal(), beside);
  std::filesystem::remove(beside);
  EXPECT_EQ(chosen(stem + ".DLL"), stem + ".so") << "else as the loader does";
}

TEST_F(PlatLibrary, PathsAndTheDialUpServiceAreTakenFromWhereTheyAreSaid) {
  make("X.so");
  EXPECT_EQ(chosen("C:" + at("X.DLL")), at("X.so"));
  EXPECT_EQ(chosen("Q:\\X.DLL"), "No such library");
  const scene::Environment dialUp("KRX_RAS_LIBRARY", at("X.so"));
  EXPECT_EQ(chosen("RasApi32.dll"), at("X.so"));
}

}  // namespace
