// GMA_PostOffice: the abstract post office that a host drives: a named source and sink of
// messages. The base reads the profile section, keeps the open state and watches the marker file
// that takes the post office out of service; the derived class supplies the messages. The host
// calls a post office, and all that is reached from it, from one thread at a time.
//
//   postOffice->configure(profile, status);  // once
//   postOffice->open(status);                // again and again: follows the marker file
//   while (GMA_Message* message = postOffice->nextMessage(status)) ...
//   postOffice->close(status);
#pragma once

#include <cstdint>
#include <iosfwd>

#include "gma/GMAHDRMP.h"
#include "scl/SCLSTRNG.h"

class GMA_Message;
class GMA_POGroup;
class PFA_Profile;
class SCL_DumpIndent;

class GMA_PostOffice {
 public:
  // The group stays the host's and must outlive the post office; it may be null.
  GMA_PostOffice(GMA_POGroup* group, const SCL_StringRef& name);
  GMA_PostOffice(const GMA_PostOffice&) = delete;
  GMA_PostOffice& operator=(const GMA_PostOffice&) = delete;

  // The virtual operations, in slot order. Those with a status do nothing when it is nonzero on
  // entry, but for isDown. Memory that cannot be had is the assertion 1, never std::bad_alloc.
  virtual ~GMA_PostOffice();
  // The kind; addresses pass only between post offices of one kind.
  virtual int type() = 0;
  // Opens a closed post office unless it is down, closes an open one that has gone down.
  virtual void open(unsigned int& status);
  virtual void close(unsigned int& status);
  // Reads the profile section of this post office's name, hands what the base does not know to
  // configDirective and ends with validate. The first error ends it and stays in the status: 1830
  // without the section, 1834 for an entry with an index, 1820 for a name above 31 or a value above
  // 127 characters, 1841 for an entry without a value; each of them is logged.
  virtual void configure(PFA_Profile& profile, unsigned int& status);
  virtual void reservedHook(void* argument) = 0;
  // The next inbound message, the caller's; null when nothing is waiting.
  virtual GMA_Message* nextMessage(unsigned int& status) = 0;
  virtual GMA_Message* newMessage() = 0;  // an empty message, the caller's
  virtual void configDirective(const SCL_StringRef& name, const SCL_StringRef& value,
                               unsigned int& status) = 0;
  virtual void validate(unsigned int& status) = 0;
  // True while the marker file exists or its directory cannot be reached; each change is logged
  // once. Whatever the status is on entry, testing the file replaces it: 0, or what kept the file
  // from being tested, which does not count as down.
  virtual bool isDown(unsigned int& status);
  virtual void doOpen(unsigned int& status);   // does nothing
  virtual void doClose(unsigned int& status);  // does nothing

  const SCL_String& name() const noexcept { return m_name; }
  GMA_POGroup* group() const noexcept { return m_group; }
  GMA_HdrMap& headerMap() noexcept { return m_hdrmap; }
  bool mustOpenAtStart() const noexcept { return m_must_open; }
  bool isOpen() const noexcept { return m_state == OPEN; }
  void dump(const SCL_StringRef& name, std::ostream& stream, SCL_DumpIndent& indent) const;

 protected:
  static constexpr std::uint32_t CLOSED = 0;
  static constexpr std::uint32_t OPEN = 2;

  SCL_String m_name;
  GMA_HdrMap m_hdrmap;
  GMA_POGroup* m_group;
  std::uint32_t m_state = CLOSED;
  SCL_String m_down_file;
  std::uint32_t m_disabled = 0;
  std::uint32_t m_dir_ok = 1;
  bool m_must_open = true;

 private:
  void openOrClose(unsigned int& status);
  void readSection(PFA_Profile& profile, unsigned int& status);
  void configureEntry(PFA_Profile& profile, unsigned int& status);
  void applyEntry(const char* name, const char* value, unsigned int& status);
  void setMustOpen(const char* answer);
  bool checkDirectory(const char* directory);
  bool checkMarker(unsigned int& status);
  void logMarker(const char* what, const char* state) const;
};
