// krx-floor: what the machine needs for the bare work, with nothing of ours in it.
//
//   krx-floor load DIR K           K times: reads both files of every pair and finds the line ends
//   krx-floor list DIR             opens and reads each envelope and stats both files of its pair
//   krx-floor commit DIR N BYTES   N times: writes and commits a message file and an envelope, and
//                                  commits the directory
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "bench/Stopwatch.h"

namespace {

constexpr std::size_t ENVELOPE_BYTES = 120;
constexpr std::size_t BUFFER_BYTES = 262144;

[[noreturn]] void fail(const std::string& what) {
  std::perror(what.c_str());
  std::exit(EXIT_FAILURE);
}

class Descriptor {
 public:
  Descriptor(const std::string& path, int flags) : m_number(open(path.c_str(), flags, 0660)) {
    if (m_number < 0) {
      fail(path);
    }
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() { close(m_number); }
  int number() const noexcept { return m_number; }

 private:
  int m_number;
};

// Calls `visit` with the path of each envelope.
template <class Visitor>
void forEachEnvelope(const std::string& directory, Visitor visit) {
  DIR* stream = opendir(directory.c_str());
  if (stream == nullptr) {
    fail(directory);
  }
  while (const dirent* entry = readdir(stream)) {
    const std::size_t length = std::strlen(entry->d_name);
    if (length > 4 && std::strcmp(entry->d_name + length - 4, ".RCP") == 0) {
      visit(std::string(directory).append("/").append(entry->d_name));
    }
  }
  closedir(stream);
}

std::string messageOf(std::string envelope) {
  return envelope.replace(envelope.size() - 3, 3, "MSG");
}

std::size_t countLines(const char* at, std::size_t size) {
  std::size_t lines = 0;
  const char* const end = at + size;
  while (const void* found = std::memchr(at, '\n', static_cast<std::size_t>(end - at))) {
    at = static_cast<const char*>(found) + 1;
    ++lines;
  }
  return lines;
}

// A read that does not fill the buffer has reached the file's end.
std::size_t readLines(const std::string& path) {
  static char buffer[BUFFER_BYTES];
  const Descriptor file(path, O_RDONLY | O_CLOEXEC);
  std::size_t lines = 0;
  std::size_t got = sizeof buffer;
  while (got == sizeof buffer) {
    const ssize_t result = read(file.number(), buffer, sizeof buffer);
    if (result < 0) {
      fail(path);
    }
    got = static_cast<std::size_t>(result);
    lines += countLines(buffer, got);
  }
  return lines;
}

void load(const std::string& directory, unsigned long repeat) {
  std::size_t lines = 0;
  for (unsigned long pass = 0; pass < repeat; ++pass) {
    forEachEnvelope(directory, [&](const std::string& envelope) {
      lines += readLines(envelope) + readLines(messageOf(envelope));
    });
  }
  std::printf("lines %zu\n", lines);
}

void list(const std::string& directory) {
  std::int64_t bytes = 0;
  forEachEnvelope(directory, [&](const std::string& envelope) {
    struct stat status[2];
    if (lstat(envelope.c_str(), &status[0]) != 0 ||
        lstat(messageOf(envelope).c_str(), &status[1]) != 0) {
      fail(envelope);
    }
    readLines(envelope);
    bytes += status[0].st_size + status[1].st_size;
  });
  std::printf("bytes %lld\n", static_cast<long long>(bytes));
}

void writeCommitted(const std::string& path, const std::string& content) {
  const Descriptor file(path, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC);
  if (write(file.number(), content.data(), content.size()) !=
          static_cast<ssize_t>(content.size()) ||
      fsync(file.number()) != 0) {
    fail(path);
  }
}

void commit(const std::string& directory, unsigned long count, std::size_t bytes) {
  const std::string message(bytes, 'x');
  const std::string envelope(ENVELOPE_BYTES, 'x');
  const bench::Stopwatch watch;
  for (unsigned long i = 0; i < count; ++i) {
    const std::string path = std::string(directory).append("/F").append(std::to_string(i));
    writeCommitted(path + ".MSG", message);
    writeCommitted(path + ".RCP", envelope);
    const Descriptor opened(directory, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fsync(opened.number()) != 0) {
      fail(directory);
    }
  }
  std::printf("%.6f\n", watch.wallSeconds());
}

}  // namespace

int main(int argc, char** argv) {
  const std::string work = argc > 2 ? argv[1] : "";
  const auto number = [&](int index) { return std::strtoul(argv[index], nullptr, 10); };
  if (work == "load" && argc == 4) {
    load(argv[2], number(3));
  } else if (work == "list" && argc == 3) {
    list(argv[2]);
  } else if (work == "commit" && argc == 5) {
    commit(argv[2], number(3), number(4));
  } else {
    std::fputs("usage: krx-floor load DIR K | list DIR | commit DIR N BYTES\n", stderr);
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
