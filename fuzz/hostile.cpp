// krx-hostile: makes each hostile mail, lets a process of its own take it through all that a host
// does with a mail, and judges what that cost.
//
//   krx-hostile [--seed N] [--only TEXT] EXAMPLES    writes the table, in Markdown
//
// which runs itself as
//
//   krx-hostile --take DIRECTORY             for the pair in DIRECTORY/in
//   krx-hostile --cuts EXAMPLES DIRECTORY    for every cut of the sample pairs
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <vector>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "dac/DACBASDA.h"
#include "fuzz/HostileMail.h"
#include "gen/GENCATCH.h"
#include "gma/GMAMSG.h"
#include "gma/GMAPOGRP.h"
#include "krx/krxpo.h"
#include "log/LOGGLB.h"
#include "log/LOGLOG.h"
#include "plat/PlatPath.h"
#include "plat/PlatTerminal.h"

namespace {

namespace fs = std::filesystem;

constexpr double MAX_SECONDS = 1;
constexpr std::uint64_t MEGABYTE = 1 << 20;
constexpr int ATTEMPTS = 3;  // neighbours on a machine slow it down; the best time counts

// What one mail came to.
struct Result {
  unsigned int loadStatus = 0;
  unsigned int storeStatus = 0;
  double seconds = 0;      // of the processor
  double wall = 0;         // from the first to the last
  unsigned long made = 0;  // headers, addresses and parts
  int thrown = 0;
  unsigned long peak = 0;  // bytes, the most that the process held at a time
};

// Of the processor: a mail is judged alike on a busy machine and on an idle one.
double secondsUsed() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

// Of this program alone: what the process held before it was this program does not count.
unsigned long peakMemory() {
  std::ifstream file("/proc/self/status");
  for (std::string line; std::getline(file, line);) {
    unsigned long kilobytes = 0;
    if (std::sscanf(line.c_str(), "VmHWM: %lu", &kilobytes) == 1) {
      return kilobytes * 1024;
    }
  }
  return 0;
}

std::string readFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void writeFile(const fs::path& path, const std::string& content) {
  std::ofstream(path, std::ios::binary | std::ios::trunc) << content;
}

// A post office over DIRECTORY/in and DIRECTORY/out.
std::unique_ptr<KRX_PostOffice> makeOffice(GMA_POGroup& group, const fs::path& directory) {
  auto office = std::make_unique<KRX_PostOffice>(&group, "Office");
  unsigned int status = 0;
  for (const auto& [name, value] :
       {std::pair<const char*, std::string>{"SourceDir", directory / "in"},
        {"DestDir", directory / "out"},
        {"MailDomain", "example.org"},
        {"ContainerClass", "Mail"}}) {
    office->configDirective(name, value.c_str(), status);
  }
  office->validate(status);
  if (status != 0) {
    std::fprintf(stderr, "krx-hostile: no post office over %s\n", directory.c_str());
    std::exit(1);
  }
  return office;
}

unsigned long readPart(DAC_BaseDataAccess* data) {
  if (data == nullptr) {
    return 0;
  }
  unsigned int status = 0;
  const std::uint32_t count = data->childCount(status);
  for (std::uint32_t i = 0; i < count; ++i) {
    unsigned int childStatus = 0;
    data->getChild(i, childStatus);
  }
  return 1UL + count;
}

// What a host does with a mail: loads it, lists it, asks for every child, stamps it with the
// standard attributes, stores it, destroys it.
Result take(KRX_PostOffice& office) {
  Result result;
  const double began = secondsUsed();
  const auto start = std::chrono::steady_clock::now();
  const auto failure = GENCatch([&] {
    const std::unique_ptr<GMA_Message> message(office.nextMessage(result.loadStatus));
    if (!message) {
      std::fprintf(stderr, "krx-hostile: no pair was found\n");
      std::exit(1);
    }
    result.made = 0UL + message->headers().count() + message->addresses().count();
    result.made += readPart(message->getBody());
    for (std::uint16_t i = 0; i < message->itemCount(); ++i) {
      result.made += readPart(message->getItemData(i));
    }
    if (result.loadStatus == 0) {
      message->dumpContents("Hostile");
      message->setStandardAttributes();
      message->storeMessage(result.storeStatus);
    }
  });
  result.seconds = secondsUsed() - began;
  result.wall = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  result.thrown = failure ? 1 : 0;
  if (failure) {
    std::fprintf(stderr, "krx-hostile: thrown: %s\n", failure->c_str());
  }
  return result;
}

void report(const Result& result) {
  std::printf("%u %u %.3f %.3f %lu %d %lu\n", result.loadStatus, result.storeStatus, result.seconds,
              result.wall, result.made, result.thrown, peakMemory());
}

bool readReport(FILE* file, Result& result) {
  return std::fscanf(file, "%u %u %lf %lf %lu %d %lu", &result.loadStatus, &result.storeStatus,
                     &result.seconds, &result.wall, &result.made, &result.thrown,
                     &result.peak) == 7;
}

int takeOne(const fs::path& directory) {
  GMA_POGroup group("Hostile");
  report(take(*makeOffice(group, directory)));
  return 0;
}

// Every cut of every sample pair, in one process: the slowest counts.
int takeCuts(const fs::path& examples, const fs::path& directory) {
  GMA_POGroup group("Hostile");
  const auto office = makeOffice(group, directory);
  Result worst;
  const auto takeCut = [&](const std::string& message, const std::string& envelope) {
    writeFile(directory / "in/CUT.MSG", message);
    writeFile(directory / "in/CUT.RCP", envelope);
    const Result result = take(*office);
    worst.seconds = std::max(worst.seconds, result.seconds);
    worst.wall = std::max(worst.wall, result.wall);
    worst.made = std::max(worst.made, result.made);
    worst.thrown = std::max(worst.thrown, result.thrown);
    for (const char* made : {"in", "out"}) {
      for (const auto& entry : fs::directory_iterator(directory / made)) {
        fs::remove(entry.path());
      }
    }
  };
  for (const auto& entry : fs::directory_iterator(examples / "spool")) {
    if (entry.path().extension() == ".MSG") {
      fs::path other = entry.path();
      const std::string message = readFile(entry.path());
      const std::string envelope = readFile(other.replace_extension(".RCP"));
      for (std::size_t cut = 0; cut <= message.size(); ++cut) {
        takeCut(message.substr(0, cut), envelope);
      }
      for (std::size_t cut = 0; cut < envelope.size(); ++cut) {
        takeCut(message, envelope.substr(0, cut));
      }
    }
  }
  report(worst);
  return 0;
}

// What this program comes to in a process of its own; nothing when it crashed.
std::optional<Result> runApart(const std::vector<std::string>& arguments) {
  int ends[2];
  if (pipe(ends) != 0) {
    std::perror("pipe");
    std::exit(1);
  }
  const pid_t child = fork();
  if (child == 0) {
    dup2(ends[1], STDOUT_FILENO);
    close(ends[0]);
    close(ends[1]);
    std::vector<char*> argv;
    for (const std::string& argument : arguments) {
      argv.push_back(const_cast<char*>(argument.c_str()));
    }
    argv.push_back(nullptr);
    execv("/proc/self/exe", argv.data());
    _exit(127);
  }
  close(ends[1]);
  Result result;
  FILE* const output = fdopen(ends[0], "r");
  const bool reported = output != nullptr && readReport(output, result);
  if (output != nullptr) {
    std::fclose(output);
  }
  int exitStatus = 0;
  waitpid(child, &exitStatus, 0);
  if (!reported || !WIFEXITED(exitStatus) || WEXITSTATUS(exitStatus) != 0) {
    return std::nullopt;
  }
  return result;
}

// An empty spool in `directory`.
void makeSpool(const fs::path& directory) {
  fs::remove_all(directory);
  for (const char* made : {"in", "out"}) {
    fs::create_directories(directory / made);
  }
}

std::string outcome(const Result& result) {
  if (result.thrown != 0) {
    return "ASSERTION";
  }
  if (result.loadStatus != 0) {
    return "status " + std::to_string(result.loadStatus);
  }
  return result.storeStatus != 0 ? "stored: status " + std::to_string(result.storeStatus)
                                 : "delivered";
}

double millions(std::uint64_t bytes) {
  return static_cast<double>(bytes) / 1e6;
}

// Writes a row of the table; false when a limit was passed.
bool printRow(const char* name, std::uint64_t input, const std::optional<Result>& result) {
  if (!result) {
    std::printf("| %s | %.1f | | | | | CRASH |\n", name, millions(input));
    return false;
  }
  const std::uint64_t limit = 8 * input + 64 * MEGABYTE + 1024 * result->made;
  const bool within =
      result->seconds <= MAX_SECONDS && result->peak <= limit && result->thrown == 0;
  std::printf("| %s | %.1f | %.3f | %.3f | %.0f | %.0f | %s%s |\n", name, millions(input),
              result->seconds, result->wall, millions(result->peak), millions(limit),
              outcome(*result).c_str(), within ? "" : " **over the limit**");
  std::fflush(stdout);
  return within;
}

bool judgeCase(const hostile::Case& hostileCase, std::uint32_t seed, const fs::path& directory) {
  const hostile::Mail mail = hostileCase.make(seed);
  std::optional<Result> best;
  for (int attempt = 0; attempt < ATTEMPTS && (!best || best->seconds > MAX_SECONDS); ++attempt) {
    makeSpool(directory);
    writeFile(directory / "in/HOSTILE.MSG", mail.message);
    writeFile(directory / "in/HOSTILE.RCP", mail.envelope);
    const std::optional<Result> result = runApart({"krx-hostile", "--take", directory});
    if (!result) {
      best.reset();
      break;
    }
    if (!best || result->seconds < best->seconds) {
      best = result;
    }
  }
  return printRow(hostileCase.name, mail.message.size() + mail.envelope.size(), best);
}

bool judgeCuts(const fs::path& examples, const fs::path& directory) {
  makeSpool(directory);
  return printRow("every cut of the sample messages", 0,
                  runApart({"krx-hostile", "--cuts", examples, directory}));
}

int judgeAll(std::uint32_t seed, const std::string& only, const fs::path& examples) {
  const plat::TemporaryDirectory temporary;
  const fs::path directory = fs::path(plat::toNative(temporary.path())) / "spool";
  std::printf(
      "| Mail | Input, MB | Seconds | Wall | Memory, MB | Limit, MB | Ends in |\n"
      "|---|---:|---:|---:|---:|---:|---|\n");
  bool good = true;
  for (const hostile::Case& hostileCase : hostile::cases()) {
    if (std::strstr(hostileCase.name, only.c_str()) != nullptr) {
      good = judgeCase(hostileCase, seed, directory) && good;
    }
  }
  if (only.empty()) {
    good = judgeCuts(examples, directory) && good;
  }
  return good ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  static LOG_Logging log;
  LOG_setGlobalLog(&log);
  std::vector<std::string> arguments(argv + 1, argv + argc);
  if (arguments.size() == 2 && arguments[0] == "--take") {
    return takeOne(arguments[1]);
  }
  if (arguments.size() == 3 && arguments[0] == "--cuts") {
    return takeCuts(arguments[1], arguments[2]);
  }
  std::uint32_t seed = 1;
  std::string only;
  while (arguments.size() > 2 && (arguments[0] == "--seed" || arguments[0] == "--only")) {
    if (arguments[0] == "--seed") {
      seed = static_cast<std::uint32_t>(std::strtoul(arguments[1].c_str(), nullptr, 10));
    } else {
      only = arguments[1];
    }
    arguments.erase(arguments.begin(), arguments.begin() + 2);
  }
  if (arguments.size() != 1) {
    std::fprintf(stderr, "usage: krx-hostile [--seed N] [--only TEXT] EXAMPLES\n");
    return 64;
  }
  return judgeAll(seed, only, arguments[0]);
}
