// Cost against size: loading, decoding and storing mail that has much of one thing, and draining
// spools in which many pairs wait. Linear cost is ten times the time for ten times the size.
#include <stdexcept>

#include <benchmark/benchmark.h>

#include "bench/Corpus.h"
#include "bench/Loader.h"
#include "bench/Stopwatch.h"
#include "bench/TemporarySpool.h"
#include "dac/DACMEMDA.h"
#include "gma/GMAPOGRP.h"
#include "krx/krxpo.h"
#include "pfa/PFAPROF.h"

namespace {

constexpr std::uint64_t SEED = 19980105;

using Make = bench::Mail (bench::MailMaker::*)(std::size_t);

// A spool with one pair that `make` has made.
struct OnePair {
  OnePair(Make make, const benchmark::State& state) {
    bench::MailMaker maker(SEED);
    bench::writePair(spool.in(), 0, (maker.*make)(static_cast<std::size_t>(state.range(0))));
    names = bench::Loader::findPairs(spool.in()).front();
  }
  std::unique_ptr<KRX_Message> load() { return loader().load(spool.in(), names); }
  static bench::Loader& loader() {
    static bench::Loader one;
    return one;
  }

  bench::TemporarySpool spool;
  KRX_PairNames names;
};

template <Make MAKE>
void load(benchmark::State& state) {
  OnePair pair(MAKE, state);
  for (auto _ : state) {
    OnePair::loader().count(*pair.load());
  }
}

template <Make MAKE>
void store(benchmark::State& state) {
  OnePair pair(MAKE, state);
  const std::unique_ptr<KRX_Message> message = pair.load();
  for (auto _ : state) {
    DAC_MemoryDataAccess envelope;
    DAC_MemoryDataAccess content;
    unsigned int status = 0;
    message->writeMessage(content, status);
    message->writeEnvelope(envelope, status);
    if (status != 0) {
      state.SkipWithError("cannot be stored");
      break;
    }
  }
}

void sixToSixty(benchmark::internal::Benchmark* series) {
  series->Arg(6000)->Arg(15000)->Arg(30000)->Arg(60000)->Unit(benchmark::kMillisecond);
}

BENCHMARK(load<&bench::MailMaker::recipients>)->Name("load/recipients")->Apply(sixToSixty);
BENCHMARK(load<&bench::MailMaker::headers>)->Name("load/headers")->Apply(sixToSixty);
BENCHMARK(load<&bench::MailMaker::parts>)->Name("load/parts")->Apply(sixToSixty);
BENCHMARK(load<&bench::MailMaker::lines>)->Name("load/lines")->Apply(sixToSixty);
BENCHMARK(store<&bench::MailMaker::recipients>)->Name("store/recipients")->Apply(sixToSixty);
BENCHMARK(store<&bench::MailMaker::headers>)->Name("store/headers")->Apply(sixToSixty);
BENCHMARK(store<&bench::MailMaker::parts>)->Name("store/parts")->Apply(sixToSixty);
BENCHMARK(store<&bench::MailMaker::lines>)->Name("store/lines")->Apply(sixToSixty);

void fillSpool(const bench::TemporarySpool& spool, std::int64_t pairs) {
  bench::MailMaker maker(SEED);
  for (unsigned int i = 0; i < static_cast<unsigned int>(pairs); ++i) {
    bench::writePair(spool.in(), i, maker.plain());
  }
}

void drain(KRX_PostOffice& office, std::int64_t expected) {
  unsigned int status = 0;
  std::int64_t count = 0;
  while (std::unique_ptr<GMA_Message>(office.nextMessage(status)) != nullptr) {
    ++count;
  }
  if (status != 0 || count != expected) {
    throw std::runtime_error("the spool was not drained");
  }
}

// Fetching and destroying every pair of a spool.
void drainSpool(benchmark::State& state) {
  OnePair::loader();  // binds the log
  GMA_POGroup group("Bench");
  for (auto _ : state) {
    const bench::TemporarySpool spool;
    fillSpool(spool, state.range(0));
    KRX_PostOffice office(&group, "Bench");
    PFA_Profile profile(spool.profile().c_str());
    unsigned int status = 0;
    office.configure(profile, status);
    office.open(status);
    const bench::Stopwatch watch;
    drain(office, state.range(0));
    state.SetIterationTime(watch.processorSeconds());
  }
}

BENCHMARK(drainSpool)
    ->Name("drain/pairs")
    ->Arg(10000)
    ->Arg(100000)
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
