// Running commands and loading libraries.
#include "plat/PlatCommand.h"

#include <cmath>

#include <dlfcn.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <link.h>

#include "plat/PlatLibrary.h"
#include "plat/Scene.h"

namespace {

class PlatCommand : public scene::Directory {
 protected:
  static std::string run(const std::string& command) {
    int error = -1;
    const int result = plat::runCommand(command, error);
    return std::to_string(result) + (error == 0 ? "" : std::string(" ") + strerrorname_np(error));
  }
};

TEST_F(PlatCommand, ResultIsTheExitCodeOrTheSignal) {
  EXPECT_EQ(run("true"), "0");
  EXPECT_EQ(run("exit 3"), "3");
  EXPECT_EQ(run("kill -KILL $$"), "137");
  EXPECT_EQ(run("/no/such/command 2>/dev/null"), "127");
}

TEST_F(PlatCommand, CommandThatCannotBeStartedOrWaitedForIsMinusOne) {
  scene::elsewhere([] {
    ::signal(SIGCHLD, SIG_IGN);  // a host that has its children reaped
    EXPECT_EQ(run("exit 3"), "-1 ECHILD");
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

class PlatLibrary : public PlatCommand {
 protected:
  // The file that the loader takes for the mathematics library.
  static std::string mathFile() {
    std::string reason;
    void* handle = plat::loadLibrary("libm.so.6", reason);
    struct link_map* map = nullptr;
    return handle != nullptr && ::dlinfo(handle, RTLD_DI_LINKMAP, &map) == 0 ? map->l_name : reason;
  }
  // Loads it and asks for a function of the mathematics library; the reason when that fails.
  static std::string tryLoad(const std::string& name) {
    std::string reason;
    void* handle = plat::loadLibrary(name, reason);
    if (handle == nullptr) {
      return reason;
    }
    const bool known = plat::librarySymbol(handle, "cos") != nullptr &&
                       plat::librarySymbol(handle, "no_such_symbol") == nullptr;
    return plat::freeLibrary(handle) && known ? "loaded" : "wrong library";
  }
};

TEST_F(PlatLibrary, NamesOfTheSystemAreFoundBesideTheModule) {
  const std::string program = std::filesystem::read_symlink("/proc/self/exe").parent_path();
  const std::string stem = "KRXTEST" + std::to_string(::getpid());
  const std::string beside = program + "/" + stem + ".so";
  std::filesystem::create_symlink(mathFile(), beside);
  EXPECT_EQ(tryLoad(stem + ".DLL"), "loaded");
  EXPECT_EQ(tryLoad(stem + ".dll"), "loaded");
  std::filesystem::remove(beside);
  const std::string broken = program + "/" + stem + "B.so";
  std::ofstream(broken) << "no library";
  EXPECT_THAT(tryLoad(stem + "B.DLL"), testing::HasSubstr("/" + stem + "B.so"))
      << "the reason names the file";
  std::filesystem::remove(broken);
  EXPECT_THAT(tryLoad(stem + "C.DLL"), testing::HasSubstr(stem + "C.so"));
}

TEST_F(PlatLibrary, PathsAndTheDialUpServiceAreTakenFromWhereTheyAreSaid) {
  std::filesystem::create_symlink(mathFile(), at("X.so"));
  EXPECT_EQ(tryLoad("C:" + at("X.DLL")), "loaded");
  EXPECT_NE(tryLoad(""), "loaded");
  EXPECT_FALSE(plat::freeLibrary(nullptr));
  const scene::Environment dialUp("KRX_RAS_LIBRARY", at("X.so"));
  EXPECT_EQ(tryLoad("RasApi32.dll"), "loaded");
}

}  // namespace
