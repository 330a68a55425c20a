// The connector's module, loaded at run time, and post offices made by it.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "gma/GMAPO.h"
#include "gma/GMAPOGRP.h"
#include "krx/krxapi.h"
#include "log/LOGLOG.h"
#include "scl/SCLDYLIB.h"

namespace host {

// Stays loaded until the process ends: objects that it made may live as long.
class Module {
 public:
  // KRX_MODULE names the file; else it is looked for beside the libraries. Error(unavailable).
  Module();
  std::unique_ptr<GMA_PostOffice> newPostOffice(GMA_POGroup& group, const std::string& name,
                                                LOG_Logging& log) const;

 private:
  void load(const std::vector<std::string>& files);

  SCL_DynamicLibrary m_library;
  KRX_GetMailAccessObjectFunction m_factory = nullptr;
};

}  // namespace host
