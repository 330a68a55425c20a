// krx-measure OUTPUT COMMAND [ARGUMENT...]: runs the command with its standard output in a file and
// prints the processor seconds that it took and its peak memory in kilobytes (VmHWM). What else
// runs on the machine shows less in the processor's time than in the clock's.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

double seconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    std::fputs("usage: krx-measure OUTPUT COMMAND [ARGUMENT...]\n", stderr);
    return EXIT_FAILURE;
  }
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, argv[1], O_WRONLY | O_CREAT | O_TRUNC,
                                   0666);
  pid_t child = 0;
  if (const int error = posix_spawnp(&child, argv[2], &actions, nullptr, argv + 2, environ);
      error != 0) {
    std::fprintf(stderr, "%s: %s\n", argv[2], std::strerror(error));
    return EXIT_FAILURE;
  }
  int status = 0;
  rusage usage{};
  wait4(child, &status, 0, &usage);
  posix_spawn_file_actions_destroy(&actions);
  std::printf("%.6f %ld\n", seconds(usage.ru_utime) + seconds(usage.ru_stime), usage.ru_maxrss);
  return WIFEXITED(status) ? WEXITSTATUS(status) : EXIT_FAILURE;
}
