// krx-measure OUTPUT COMMAND [ARGUMENT...]: runs the command with its standard output in a file and
// prints its wall-clock seconds and its peak memory in kilobytes (VmHWM).
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

int main(int argc, char** argv) {
  if (argc < 3) {
    std::fputs("usage: krx-measure OUTPUT COMMAND [ARGUMENT...]\n", stderr);
    return EXIT_FAILURE;
  }
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, argv[1], O_WRONLY | O_CREAT | O_TRUNC,
                                   0666);
  const auto began = std::chrono::steady_clock::now();
  pid_t child = 0;
  if (const int error = posix_spawnp(&child, argv[2], &actions, nullptr, argv + 2, environ);
      error != 0) {
    std::fprintf(stderr, "%s: %s\n", argv[2], std::strerror(error));
    return EXIT_FAILURE;
  }
  int status = 0;
  rusage usage{};
  wait4(child, &status, 0, &usage);
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - began;
  posix_spawn_file_actions_destroy(&actions);
  std::printf("%.6f %ld\n", took.count(), usage.ru_maxrss);
  return WIFEXITED(status) ? WEXITSTATUS(status) : EXIT_FAILURE;
}
