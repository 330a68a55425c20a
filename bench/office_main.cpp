// krx-office: drives the connector's module as a host does, and prints the seconds that it took:
// of processor time, where commits are made of the wall clock.
//
//   krx-office first PROFILE OFFICE         from loading the library to the first message
//   krx-office drain PROFILE OFFICE         fetches, delivers and destroys until nothing waits
//   krx-office send PROFILE OFFICE N BYTES  delivers N new messages
//
// A call of getppid stands before and behind the loop of drain and send, for recordings of its
// system calls.
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>

#include <dlfcn.h>
#include <unistd.h>

#include "bench/Stopwatch.h"
#include "dac/DACMEMDA.h"
#include "gen/GENCATCH.h"
#include "gma/GMAMSG.h"
#include "gma/GMAPO.h"
#include "gma/GMAPOGRP.h"
#include "krx/krxapi.h"
#include "log/LOGLOG.h"
#include "pfa/PFAPROF.h"

namespace {

void check(unsigned int status, const char* what) {
  if (status != 0) {
    throw std::runtime_error(std::string(what).append(": status ").append(std::to_string(status)));
  }
}

KRX_GetMailAccessObjectFunction loadFactory() {
  void* module = dlopen(KRX_BENCH_MODULE, RTLD_NOW);
  if (module == nullptr) {
    throw std::runtime_error(dlerror());
  }
  return reinterpret_cast<KRX_GetMailAccessObjectFunction>(dlsym(module, KRX_FACTORY_NAME));
}

// A configured and open post office.
std::unique_ptr<GMA_PostOffice> openOffice(GMA_POGroup& group, const char* profileName,
                                           const char* name) {
  static LOG_Logging log;
  GMA_PostOffice* made = nullptr;
  unsigned int status = 0;
  loadFactory()(nullptr, &group, name, log, &made, status);
  std::unique_ptr<GMA_PostOffice> office(made);
  check(status, "create");
  PFA_Profile profile(profileName);
  office->configure(profile, status);
  check(status, "configure");
  office->open(status);
  check(status, "open");
  return office;
}

double drain(GMA_PostOffice& office) {
  const bench::Stopwatch watch;
  getppid();
  unsigned int status = 0;
  while (auto message = std::unique_ptr<GMA_Message>(office.nextMessage(status))) {
    message->storeMessage(status);
    check(status, "deliver");
  }
  getppid();
  return watch.processorSeconds();
}

// The envelope's identity names the pair; without one, names are drawn at most one a millisecond.
std::unique_ptr<GMA_Message> makeMessage(GMA_PostOffice& office, unsigned long number,
                                         const std::string& text) {
  unsigned int status = 0;
  std::unique_ptr<GMA_Message> message(office.newMessage());
  const std::string id = std::string("<N").append(std::to_string(number)).append("@example.org>");
  message->headers().add(GMA_Mhdr(gma::RCPMESSAGEID, id.c_str()));
  message->headers().add(GMA_Mhdr(gma::SUBJECT, "A message of the benchmark"));
  message->addAddress(GMA_Maddr(gma::FROMADDR, "ann", "example.org"));
  message->addAddress(GMA_Maddr(gma::BCCADDR, "bob", "example.net"));
  auto body = std::make_unique<DAC_MemoryDataAccess>();
  body->write(static_cast<std::int32_t>(text.size()), text.data(), status);
  message->setBody(body.release());
  check(status, "compose");
  return message;
}

double send(GMA_PostOffice& office, unsigned long count, std::size_t bytes) {
  const std::string line = "A line of the message, as long as lines of plain text mostly are.\r\n";
  std::string text;
  while (text.size() < bytes) {
    text += line;
  }
  const bench::Stopwatch watch;
  getppid();
  for (unsigned long i = 0; i < count; ++i) {
    unsigned int status = 0;
    makeMessage(office, i, text)->storeMessage(status);
    check(status, "deliver");
  }
  getppid();
  return watch.wallSeconds();
}

// The message is left to the process's end: destroying it would remove its pair.
double first(GMA_POGroup& group, const char* profile, const char* name) {
  const bench::Stopwatch watch;
  unsigned int status = 0;
  GMA_PostOffice* office = openOffice(group, profile, name).release();
  const GMA_Message* message = office->nextMessage(status);
  check(message == nullptr ? 1 : status, "fetch");
  return watch.processorSeconds();
}

double work(int argc, char** argv) {
  static GMA_POGroup group("Bench");
  const std::string what = argv[1];
  if (what == "first") {
    return first(group, argv[2], argv[3]);
  }
  const std::unique_ptr<GMA_PostOffice> office = openOffice(group, argv[2], argv[3]);
  if (what == "drain") {
    return drain(*office);
  }
  if (what == "send" && argc == 6) {
    return send(*office, std::strtoul(argv[4], nullptr, 10), std::strtoul(argv[5], nullptr, 10));
  }
  throw std::runtime_error("no such work");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 4) {
    std::fputs("usage: krx-office first|drain|send PROFILE OFFICE [N BYTES]\n", stderr);
    return EXIT_FAILURE;
  }
  double seconds = 0;
  if (const auto failure = GENCatch([&] { seconds = work(argc, argv); })) {
    std::fprintf(stderr, "krx-office: %s\n", failure->c_str());
    return EXIT_FAILURE;
  }
  std::printf("%.6f\n", seconds);
  return EXIT_SUCCESS;
}
