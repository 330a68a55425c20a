// The module's export. Built so that the compiler keeps the test for a null log although the
// interface passes it by reference.
#include <new>

#include "gen/GENCODES.h"
#include "gen/GENDBG.h"
#include "gen/GENWNT.h"
#include "krx/krxapi.h"
#include "krx/krxpo.h"
#include "log/LOGGLB.h"

extern "C" {

__attribute__((visibility("default"))) int KRX_GetMailAccessObject(
    const char* /*unused*/, GMA_POGroup* group, const char* name, LOG_Logging& log,
    GMA_PostOffice** result, unsigned int& status) {
  gen::setKeepOpen();
  LOG_setGlobalLog(&log);
  if (name == nullptr) {
    GENAssert(GEN_NULL_POINTER, "krxpo", __LINE__);
  }
  *result = nullptr;
  try {
    *result = new KRX_PostOffice(group, name);
  } catch (const std::bad_alloc&) {
    status = KRX_NOT_CREATED;
  }
  return 0;
}

__attribute__((visibility("default"), alias("KRX_GetMailAccessObject"))) int GetMailAccessObject(
    const char* unused, GMA_POGroup* group, const char* name, LOG_Logging& log,
    GMA_PostOffice** result, unsigned int& status);

}  // extern "C"
