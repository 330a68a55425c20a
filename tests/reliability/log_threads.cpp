// Eight threads write to one log, each kind of entry to each kind of stream, while the host's
// operations come in between. Built with ThreadSanitizer. Prints how many entries were written;
// fails when an entry of the numbered file is missing, twice or not whole.
// Arguments: a directory of its own, the number of entries of each thread.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "dac/DACMEMDA.h"
#include "log/LOGEvtSt.h"
#include "log/LOGFilSt.h"
#include "log/LOGLOG.h"

namespace {

constexpr unsigned int THREADS = 8;
constexpr unsigned int ALL = 7;
constexpr unsigned int NUMBERED = 1;
constexpr unsigned int MEMORY = 2;
constexpr unsigned int FACILITY = 11;

class Log {
 public:
  explicit Log(std::string directory) : m_directory(std::move(directory)) {
    attachFile(0, {{"StreamType", "UserFile"},
                   {"FileRootName", m_directory + "/%u"},
                   {"NameType", "NumericSeq"}});
    attachFile(1, {{"StreamType", "TransientFile"}});
    attach(2, std::make_unique<LOG_EventStream>("Events"));
  }

  void write(unsigned int thread, unsigned int entries) {
    DAC_MemoryDataAccess object;
    object.write(4, "line", m_ignored[thread]);
    for (unsigned int entry = 0; entry < entries; ++entry) {
      m_log.writeText(ALL, FACILITY, LOG_Logging::BRIEF, "entry %u of %u", entry, thread);
      m_log.writeText(ALL, FACILITY, LOG_Logging::DEBUG, "nobody wants this");
      m_log.writeData(MEMORY, FACILITY, LOG_Logging::BRIEF, sizeof entry, &entry);
      m_log.writeDataObject(MEMORY, FACILITY, LOG_Logging::BRIEF, object, entry % 2 == 0);
    }
  }
  // What a host may ask while its threads write; each close begins another file.
  void operate() {
    unsigned int status = 0;
    DAC_MemoryDataAccess target;
    m_log.readLog(MEMORY, target, status);
    m_log.copyLogToFile(NUMBERED, (m_directory + "/copy").c_str(), status);
    m_log.close(ALL, false, status);
    m_log.open(ALL, status);
  }
  // The entries of the numbered files, each with how often it is there.
  std::map<std::string, unsigned int> written() const {
    std::map<std::string, unsigned int> entries;
    for (unsigned int number = 1;; ++number) {
      std::ifstream file(m_directory + "/" + std::to_string(number));
      if (!file) {
        return entries;
      }
      for (std::string line; std::getline(file, line);) {
        const std::size_t at = line.find("(KRX:001) ");
        if (at != std::string::npos) {
          ++entries[line.substr(at + 10)];
        }
      }
    }
  }

 private:
  void attach(unsigned int slot, std::unique_ptr<LOG_Stream> stream) {
    unsigned int status = 0;
    stream->endOfConfiguration(status);
    m_log.attach(slot, std::move(stream), status);
    check(status);
  }
  void attachFile(unsigned int slot, const std::map<const char*, std::string>& keys) {
    auto stream = std::make_unique<LOG_FileStream>("File");
    unsigned int status = 0;
    for (const auto& [key, value] : keys) {
      stream->configureKey(key, value.c_str(), status);
    }
    check(status);
    attach(slot, std::move(stream));
  }
  static void check(unsigned int status) {
    if (status != 0) {
      std::printf("the log cannot be configured, status %u\n", status);
      std::exit(2);
    }
  }

  std::string m_directory;
  LOG_Logging m_log;
  unsigned int m_ignored[THREADS] = {};
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    return 2;
  }
  const std::string directory = argv[1];
  setenv("KRX_EVENTLOG", (directory + "/events").c_str(), 1);
  const auto entries = static_cast<unsigned int>(std::strtoul(argv[2], nullptr, 10));
  Log log(directory);
  std::vector<std::thread> writers;
  for (unsigned int thread = 0; thread < THREADS; ++thread) {
    writers.emplace_back([&log, thread, entries] { log.write(thread, entries); });
  }
  for (int i = 0; i < 20; ++i) {
    log.operate();
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  for (std::thread& writer : writers) {
    writer.join();
  }
  const auto written = log.written();
  unsigned int faults = 0;
  for (unsigned int thread = 0; thread < THREADS; ++thread) {
    for (unsigned int entry = 0; entry < entries; ++entry) {
      const auto found =
          written.find("entry " + std::to_string(entry) + " of " + std::to_string(thread) + "\r");
      faults += found != written.end() && found->second == 1 ? 0 : 1;
    }
  }
  std::printf("entries written: %zu\nentries missing, twice or not whole: %u\n", written.size(),
              faults);
  return faults == 0 && written.size() == std::size_t{THREADS} * entries ? 0 : 1;
}
