// KRX_PostOffice: the SMTP post office. It takes pairs of spool files from its source directory as
// messages, hands out empty messages that are delivered into its destination directory, and raises
// a dial-up line on schedule where one is configured. Configure once per object.
#pragma once

#include <memory>

#include "gma/GMAPO.h"
#include "krx/KRXRasSc.h"
#include "krx/krxpair.h"
#include "krx/krxras.h"
#include "krx/krxspool.h"
#include "scl/SCLDYLIB.h"

struct KRX_MessageSettings;

class KRX_PostOffice : public GMA_PostOffice {
 public:
  KRX_PostOffice(GMA_POGroup* group, const SCL_StringRef& name);
  ~KRX_PostOffice() override;

  int type() override;  // 0
  void reservedHook(void* argument) override;
  // A pair that cannot be loaded comes back as a message all the same, with the status set: its
  // owner saves it where it wants to keep it, and destroys it. A locked source directory is no
  // error: null with status 0.
  GMA_Message* nextMessage(unsigned int& status) override;
  GMA_Message* newMessage() override;
  void configDirective(const SCL_StringRef& name, const SCL_StringRef& value,
                       unsigned int& status) override;
  void validate(unsigned int& status) override;

  void dump(const SCL_StringRef& name, std::ostream& stream, SCL_DumpIndent& indent) const;

  const SCL_String& sourceDirectory() const noexcept { return m_src_dir; }
  const SCL_String& destinationDirectory() const noexcept { return m_dst_dir; }

 private:
  struct StringDirective;
  KRX_MessageSettings messageSettings() const;
  KRX_RasSettings rasSettings() const noexcept;
  void raiseLineWhenDue() noexcept;
  GMA_Message* fetchMessage(unsigned int& status);

  // Configuration (krxconf.cpp).
  void applyDirective(const SCL_StringRef& name, const SCL_StringRef& value, unsigned int& status);
  void checkConfiguration(unsigned int& status);
  void setOnce(const StringDirective& directive, const SCL_StringRef& value, unsigned int& status);
  void setNumber(const SCL_StringRef& name, const SCL_StringRef& value, unsigned int& status);
  void setCommand(const SCL_StringRef& value);
  void addSchedule(const SCL_StringRef& value, unsigned int& status);
  void checkDirectory(SCL_String& directory, bool isSource, unsigned int& status);
  void checkLine(unsigned int& status);

  SCL_String m_src_dir;
  SCL_String m_dst_dir;
  SCL_String m_dflt_domain;
  SCL_String m_container_class;
  std::unique_ptr<KRX_RasSchedule> m_ras_schedule;  // null: nothing of the dial-up line is touched
  SCL_String m_ras_entry;
  SCL_String m_ras_user;
  SCL_String m_ras_password;
  RasHandle m_ras_conn = 0;
  std::uint32_t m_ras_idle_time = 30;
  std::uint32_t m_ras_retry_count = 2;
  std::uint32_t m_ras_retry_delay = 10;
  SCL_String m_ras_command;
  SCL_DynamicLibrary m_ras_lib;
  KRX_RasApi m_ras_api;

  std::shared_ptr<KRX_StuckPairs> m_stuck;
  KRX_PairSearch m_search;
};
