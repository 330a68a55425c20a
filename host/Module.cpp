// Loads the connector's module.
#include "host/Module.h"

#include "host/Exit.h"
#include "plat/PlatRegistry.h"

namespace host {

Module::Module() {
  std::string named;
  if (plat::environment("KRX_MODULE", named) && !named.empty()) {
    load({named});
  } else {
    load({KRX_MODULE_NAME, std::string(KRX_MODULE_DIRECTORY) + "/" + KRX_MODULE_NAME});
  }
  m_factory = reinterpret_cast<KRX_GetMailAccessObjectFunction>(m_library.symbol(KRX_FACTORY_NAME));
  if (m_factory == nullptr) {
    throw Error(unavailable, "The connector's module " + (named.empty() ? KRX_MODULE_NAME : named) +
                                 " has no " + KRX_FACTORY_NAME + ".");
  }
}

// The first that can be.
void Module::load(const std::vector<std::string>& files) {
  std::string reasons;
  for (const std::string& file : files) {
    if (m_library.load(file.c_str()) != 0) {
      return;
    }
    reasons += std::string(reasons.empty() ? "" : "; ") + m_library.errorText().c_str();
  }
  throw Error(unavailable,
              "The connector's module " + files.front() + " cannot be loaded, " + reasons + ".");
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
