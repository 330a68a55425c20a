// What a log entry costs that no stream wants: hosts leave such entries in their loops.
#include <memory>

#include <benchmark/benchmark.h>

#include "krx/krxapi.h"
#include "log/LOGLOG.h"

namespace {

class SilentStream : public LOG_Stream {
 public:
  SilentStream() : LOG_Stream("Silent") { setMaximumLevel(LOG_Logging::BRIEF); }
  void writeDataObject(unsigned int, unsigned int, DAC_BaseDataAccess&, bool) override {}
  void writeEntry(unsigned int, unsigned int, unsigned int, const char*, bool) override {}
};

void filteredEntry(benchmark::State& state) {
  LOG_Logging log;
  unsigned int status = 0;
  log.attach(0, std::make_unique<SilentStream>(), status);
  for (auto _ : state) {
    log.writeText(KRX_LOG_ALL, KRX_FACILITY, LOG_Logging::VERBOSE, "Message %s, %u bytes.", "name",
                  42U);
  }
  if (status != 0) {
    state.SkipWithError("the stream cannot be attached");
  }
}

BENCHMARK(filteredEntry)->Name("log/filtered");

}  // namespace
