// Loads the connector's module.
#include "host/Module.h"

#include "host/Exit.h"
#include "plat/PlatRegistry.h"

namespace host {

Module::Module() {
  std::string named;
  const std::string installed = std::string(KRX_MODULE_DIRECTORY) + "/" + KRX_MODULE_NAME;
  const bool isNamed = plat::environment("KRX_MODULE", named) && !named.empty();
  const bool loaded =
      isNamed ? m_library.load(named.c_str()) != 0
              : m_library.load(KRX_MODULE_NAME) != 0 || m_library.load(installed.c_str()) != 0;
  if (loaded) {
    m_factory =
        reinterpret_cast<KRX_GetMailAccessObjectFunction>(m_library.symbol(KRX_FACTORY_NAME));
  }
  if (m_factory == nullptr) {
    throw Error(unavailable, "The connector's module " +
                                 (isNamed ? named : std::string(KRX_MODULE_NAME)) +
                                 " cannot be loaded.");
  }
}

std::unique_ptr<GMA_PostOffice> Module::newPostOffice(GMA_POGroup& group, const std::string& name,
                                                      LOG_Logging& log) const {
  GMA_PostOffice* made = nullptr;
  unsigned int status = 0;
  m_factory(nullptr, &group, name.c_str(), log, &made, status);
  if (made == nullptr) {
    throw Error(unavailable,
                "Post office \"" + name + "\" cannot be made, status " + std::to_string(status));
  }
  return std::unique_ptr<GMA_PostOffice>(made);
}

}  // namespace host
