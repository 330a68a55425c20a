// PFA_WorkingFile: the exclusion between processes. While a profile is open for writing, its file
// stands under a working name (its extension replaced by ".$$1" to ".$$9"), locked, so that nobody
// else finds or takes it. The file carries its own name in an extended attribute: when the owner
// dies, the lock goes with it, and the next open can tell whose file it is and put it back.
#pragma once

#include <string>

#include "fl/FLFILE.h"

class PFA_WorkingFile {
 public:
  PFA_WorkingFile() noexcept = default;
  PFA_WorkingFile(const PFA_WorkingFile&) = delete;
  PFA_WorkingFile& operator=(const PFA_WorkingFile&) = delete;

  // Renames the profile to a working name and holds it. 0; 1832 no free name; 1822 it is missing,
  // held by somebody else or cannot be renamed; nothing has changed then.
  unsigned int take(const std::string& profile);
  // Renames it back: 0, or 1822, and it is still held.
  unsigned int giveBack();
  // Deletes the working file: the profile has been written anew.
  void discard();
  bool isTaken() const noexcept { return m_file.isOpen(); }
  const std::string& name() const noexcept { return m_name; }
  FL_File& file() noexcept { return m_file; }

  // Puts a missing profile back that its owner has left under a working name.
  static void recover(const std::string& profile);

 private:
  unsigned int rename(const std::string& profile);
  void release() noexcept;

  std::string m_profile;
  std::string m_name;
  FL_File m_file;  // the lock
};
