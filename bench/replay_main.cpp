// krx-replay TRACE: makes the system calls of a recorded run again, one after the other, with
// nothing in between, and prints the processor seconds that they took. TRACE is what `strace -X raw
// -s 0` wrote; the calls between two calls of getppid, by which krx-office marks its loop, are
// repeated. The files must stand where they stood when the run was recorded.
//
// Buffers and structures become one scratch area, descriptors are translated, calls that manage
// memory are left out.
#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <sys/syscall.h>
#include <unistd.h>

#include "bench/Stopwatch.h"

namespace {

constexpr std::string_view MARK = "getppid";
constexpr std::size_t ARGUMENTS = 6;
constexpr long AT_CURRENT_DIRECTORY = -100;
// A number beyond this is the address of a buffer in the recorded process.
constexpr long long FIRST_ADDRESS = 0x100000000;

struct Known {
  std::string_view name;
  long number;
  bool takesDescriptor;  // as its first argument
};

constexpr Known CALLS[] = {{"openat", SYS_openat, true},
                           {"close", SYS_close, true},
                           {"read", SYS_read, true},
                           {"pread64", SYS_pread64, true},
                           {"write", SYS_write, true},
                           {"pwrite64", SYS_pwrite64, true},
                           {"lseek", SYS_lseek, true},
                           {"fstat", SYS_fstat, true},
                           {"stat", SYS_stat, false},
                           {"lstat", SYS_lstat, false},
                           {"newfstatat", SYS_newfstatat, true},
                           {"statx", SYS_statx, true},
                           {"statfs", SYS_statfs, false},
                           {"fstatfs", SYS_fstatfs, true},
                           {"fcntl", SYS_fcntl, true},
                           {"flock", SYS_flock, true},
                           {"ftruncate", SYS_ftruncate, true},
                           {"fsync", SYS_fsync, true},
                           {"unlink", SYS_unlink, false},
                           {"unlinkat", SYS_unlinkat, true},
                           {"rename", SYS_rename, false},
                           {"renameat2", SYS_renameat2, true},
                           {"access", SYS_access, false},
                           {"faccessat", SYS_faccessat, true},
                           {"faccessat2", SYS_faccessat2, true},
                           {"getdents64", SYS_getdents64, true},
                           {"getxattr", SYS_getxattr, false},
                           {"lgetxattr", SYS_lgetxattr, false},
                           {"fgetxattr", SYS_fgetxattr, true},
                           {"fadvise64", SYS_fadvise64, true},
                           {"fallocate", SYS_fallocate, true},
                           {"linkat", SYS_linkat, true},
                           {"fchmod", SYS_fchmod, true},
                           {"readahead", SYS_readahead, true}};

struct Argument {
  enum class Kind { number, text, scratch };
  Kind kind = Kind::number;
  long number = 0;
  std::string text;
};

struct Call {
  const Known* known = nullptr;
  std::vector<Argument> arguments;
  long result = -1;
};

std::vector<char>& scratch() {
  static std::vector<char> area(std::size_t{1} << 26);
  return area;
}

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && text.front() == ' ') {
    text.remove_prefix(1);
  }
  while (!text.empty() && text.back() == ' ') {
    text.remove_suffix(1);
  }
  return text;
}

Argument readArgument(std::string_view text) {
  Argument argument;
  if (text.size() > 2 && text.front() == '"' && text.back() == '"') {
    argument.kind = Argument::Kind::text;
    argument.text = text.substr(1, text.size() - 2);
    return argument;
  }
  if (text == "\"\"") {  // an empty path; a buffer that is cut has points behind it
    argument.kind = Argument::Kind::text;
    return argument;
  }
  const bool isNumber =
      !text.empty() && (std::isdigit(static_cast<unsigned char>(text[0])) != 0 || text[0] == '-');
  const long long value = isNumber ? std::strtoll(std::string(text).c_str(), nullptr, 0) : 0;
  const bool isNull = text == "NULL";
  if ((!isNumber && !isNull) || value >= FIRST_ADDRESS) {
    argument.kind = Argument::Kind::scratch;
    return argument;
  }
  argument.number = static_cast<long>(value);
  return argument;
}

// Finds the end of the argument that begins at the front: a comma or the closing bracket that
// stands in no text, structure or list.
std::size_t argumentLength(std::string_view text) {
  int depth = 0;
  bool quoted = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '"' && (i == 0 || text[i - 1] != '\\')) {
      quoted = !quoted;
    } else if (!quoted && depth == 0 && (c == ',' || c == ')')) {
      return i;
    } else if (!quoted) {
      depth += c == '{' || c == '[' ? 1 : 0;
      depth -= c == '}' || c == ']' ? 1 : 0;
    }
  }
  return text.size();
}

// Takes "/* ... */" notes out.
std::string withoutNotes(std::string line) {
  for (std::size_t begin = line.find("/*"); begin != std::string::npos; begin = line.find("/*")) {
    const std::size_t end = line.find("*/", begin);
    line.erase(begin, end == std::string::npos ? end : end + 2 - begin);
  }
  return line;
}

bool readCall(std::string_view line, Call& call) {
  const std::size_t open = line.find('(');
  const std::size_t equals = line.rfind(" = ");
  if (open == std::string_view::npos || equals == std::string_view::npos) {
    return false;
  }
  const auto known = std::find_if(std::begin(CALLS), std::end(CALLS), [&](const Known& one) {
    return one.name == line.substr(0, open);
  });
  if (known == std::end(CALLS)) {
    return false;
  }
  call.known = known;
  call.result = std::strtol(std::string(line.substr(equals + 3)).c_str(), nullptr, 0);
  for (std::string_view rest = line.substr(open + 1, equals - open - 1); !rest.empty();) {
    const std::size_t length = argumentLength(rest);
    call.arguments.push_back(readArgument(trimmed(rest.substr(0, length))));
    if (length >= rest.size() || rest[length] == ')') {
      break;
    }
    rest.remove_prefix(length + 1);
  }
  return call.arguments.size() <= ARGUMENTS;
}

std::vector<Call> readTrace(const char* path) {
  std::vector<Call> calls;
  std::ifstream file(path);
  bool inside = false;
  for (std::string line; std::getline(file, line);) {
    if (line.compare(0, MARK.size(), MARK) == 0) {
      if (inside) {
        return calls;
      }
      inside = true;
      continue;
    }
    Call call;
    if (inside && readCall(withoutNotes(line), call)) {
      calls.push_back(std::move(call));
    }
  }
  std::fprintf(stderr, "%s: not a whole recording\n", path);
  std::exit(EXIT_FAILURE);
}

class Player {
 public:
  void play(const Call& call) {
    long values[ARGUMENTS] = {};
    for (std::size_t i = 0; i < call.arguments.size(); ++i) {
      values[i] = valueOf(call.arguments[i]);
    }
    if (call.known->takesDescriptor) {
      values[0] = translated(values[0]);
    }
    const long result = syscall(call.known->number, values[0], values[1], values[2], values[3],
                                values[4], values[5]);
    m_differing += (result < 0) != (call.result < 0) ? 1U : 0U;
    if (call.known->number == SYS_openat && result >= 0 && call.result >= 0) {
      m_descriptors[static_cast<std::size_t>(call.result) % SLOTS] = result;
    }
  }
  // The calls that failed where the recorded one did not, or the other way round.
  unsigned long differing() const noexcept { return m_differing; }

 private:
  static constexpr std::size_t SLOTS = 1024;

  static long valueOf(const Argument& argument) {
    switch (argument.kind) {
      case Argument::Kind::text:
        return reinterpret_cast<long>(argument.text.c_str());
      case Argument::Kind::scratch:
        return reinterpret_cast<long>(scratch().data());
      case Argument::Kind::number:
        break;
    }
    return argument.number;
  }
  long translated(long recorded) const {
    return recorded == AT_CURRENT_DIRECTORY
               ? recorded
               : m_descriptors[static_cast<std::size_t>(recorded) % SLOTS];
  }

  long m_descriptors[SLOTS] = {};
  unsigned long m_differing = 0;
};

void printCounts(const std::vector<Call>& calls) {
  std::map<std::string_view, unsigned long> counts;
  for (const Call& call : calls) {
    ++counts[call.known->name];
  }
  for (const auto& [name, count] : counts) {
    std::fprintf(stderr, "%.*s %lu\n", static_cast<int>(name.size()), name.data(), count);
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("usage: krx-replay TRACE\n", stderr);
    return EXIT_FAILURE;
  }
  const std::vector<Call> calls = readTrace(argv[1]);
  Player player;
  std::fill(scratch().begin(), scratch().end(), 'x');
  const bench::Stopwatch watch;
  for (const Call& call : calls) {
    player.play(call);
  }
  std::printf("%.6f\n", watch.processorSeconds());
  printCounts(calls);
  if (player.differing() * 100 > calls.size()) {
    std::fprintf(stderr, "%lu of %zu calls went otherwise than recorded\n", player.differing(),
                 calls.size());
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
