// A foreign host: loads the connector's module with dlopen, creates, configures, opens, fetches,
// saves, stores, closes, destroys. Arguments: the profile; the post office's name.
#include <cstdio>
#include <memory>

#include <dlfcn.h>

#include "gma/GMAMSG.h"
#include "gma/GMAPO.h"
#include "gma/GMAPOGRP.h"
#include "krx/krxapi.h"
#include "log/LOGLOG.h"
#include "pfa/PFAPROF.h"
#include "scl/SCLEXCPT.h"

namespace {

int failed(const char* what, unsigned int status) {
  std::fprintf(stderr, "%s: status %u\n", what, status);
  return 1;
}

int work(KRX_GetMailAccessObjectFunction factory, const char* profileName, const char* name) {
  static LOG_Logging log;
  GMA_POGroup group("Foreign");
  PFA_Profile profile(profileName);
  GMA_PostOffice* made = nullptr;
  unsigned int status = 0;
  factory(nullptr, &group, name, log, &made, status);
  const std::unique_ptr<GMA_PostOffice> office(made);
  if (!office || office->type() != 0) {
    return failed("create", status);
  }
  office->configure(profile, status);
  office->open(status);
  if (status != 0) {
    return failed("open", status);
  }
  unsigned int count = 0;
  while (auto message = std::unique_ptr<GMA_Message>(office->nextMessage(status))) {
    message->save(nullptr, status);
    message->storeMessage(status);
    if (status != 0) {
      return failed("message", status);
    }
    ++count;
  }
  office->close(status);
  std::printf("%u messages\n", count);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  void* module = argc == 3 ? dlopen(MODULE, RTLD_NOW) : nullptr;
  if (module == nullptr) {
    std::fprintf(stderr, "%s\n", argc == 3 ? dlerror() : "usage: foreign PROFILE NAME");
    return 2;
  }
  const auto factory =
      reinterpret_cast<KRX_GetMailAccessObjectFunction>(dlsym(module, KRX_FACTORY_NAME));
  const auto other =
      reinterpret_cast<KRX_GetMailAccessObjectFunction>(dlsym(module, "GetMailAccessObject"));
  if (factory == nullptr || factory != other) {
    return 3;
  }
  try {  // a null name is refused with the exception, which reaches its caller
    static LOG_Logging log;
    GMA_PostOffice* made = nullptr;
    unsigned int status = 0;
    factory(nullptr, nullptr, nullptr, log, &made, status);
    return 4;
  } catch (scl_exception_base* thrown) {
    std::printf("%s\n", thrown->message());
    thrown->release();
  }
  return work(factory, argv[1], argv[2]);
}
