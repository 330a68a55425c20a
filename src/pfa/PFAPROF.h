// PFA_Profile: a configuration file of named sections of entries, held in memory, read, searched,
// changed and written back. docs/formats/profile.md describes the file. A profile object is used
// by one thread at a time. While it is open for writing, the file stands under a working name.
//
//   PFA_Profile profile("/etc/krx/krx.ini");
//   if (profile.selectSection("Main") == 0)
//     for (unsigned s = profile.nextEntry(true); s == 0; s = profile.nextEntry(false)) ...
#pragma once

#include <cstdint>
#include <list>
#include <optional>
#include <string>
#include <vector>

#include "pfa/PFASECT.h"
#include "pfa/PFAWORK.h"
#include "scl/SCLSTRNG.h"

class FL_TextFile;

class PFA_Profile {
 public:
  static constexpr unsigned int RETRY_BUSY = 2;     // set by default
  static constexpr unsigned int KEEP_COMMENTS = 4;  // also when read-only
  static constexpr unsigned int VALUE_SIZE = 256;

  struct Position {
    const PFA_Section* section = nullptr;
    const PFA_Entry* entry = nullptr;
  };

  PFA_Profile() noexcept;
  // Opened at once; openStatus() has the result.
  explicit PFA_Profile(const SCL_StringRef& fileName, bool writable = false);
  PFA_Profile(const PFA_Profile&) = delete;
  PFA_Profile& operator=(const PFA_Profile&) = delete;
  virtual ~PFA_Profile();  // flushes; a failure stays in the last-status record

  unsigned int openStatus() const noexcept { return m_openStatus; }
  // All operations return a status, 0 for success.

  // Flushes what was open, reads the file and selects the section. When the file is open in the
  // same mode, only the section is selected. 1822 cannot be opened (missing, or somebody writes
  // it); 1826 read error; 1827 a header without its bracket; 1832 no working name; 1830 no such
  // section. A busy or missing file is tried three times, a second apart, while RETRY_BUSY is set.
  unsigned int open(const SCL_StringRef& fileName, bool writable, const char* section = nullptr);
  // A new, empty file, opened for writing. 1825 it exists; 1821 it cannot be made.
  unsigned int create(const SCL_StringRef& fileName);
  // Ends writing: a modified profile is written anew, another gets its name back. The profile is
  // read-only then. 1843 without a file name; 1822 on any failure: the working file, the changes
  // and the right to write stay, and flush may be called again.
  unsigned int flush();

  // Names are compared without regard to case; the section's first entry becomes current. 1830 when
  // there is none: nothing is current then, but a writable profile makes an empty section current,
  // which counts as deleted until something is stored in it.
  unsigned int selectSection(const SCL_StringRef& name);
  // Comments are visited, deleted entries are not. 1829 no current section; 1824 no further entry
  // (the current one stays).
  unsigned int nextEntry(bool restart);
  // Over all entries of all sections, deleted ones and empty sections left out; 1823 at the end.
  unsigned int nextEntryAnywhere(bool restart);
  // White space in `name` does not count, case does. 1829 no current section; 1831 not found: a
  // writable profile then makes a placeholder current, which a store fills.
  unsigned int findEntry(const SCL_StringRef& name, unsigned int index = 0);
  unsigned int findEntry(std::uint32_t number, unsigned int index = 0);
  // 1828 no current entry; 1842 a comment; 1834 the entry has an index; 1820 cut to fit.
  unsigned int entryName(char* buffer, unsigned int size) const;
  unsigned int sectionName(char* buffer, unsigned int size) const;  // 1829, 1820
  unsigned int entryText(char* buffer, unsigned int size) const;    // 1828, 1820
  unsigned int entryIndex() const noexcept;                         // 0 without a current entry
  unsigned int entryLine() const noexcept;   // of the file that it was read from, 0: none
  unsigned int fieldCount() const noexcept;  // values of the current entry
  unsigned int entryCount() const noexcept;  // of the current section, comments not counted
  unsigned int highestIndex() const noexcept;
  unsigned int entryPosition() const noexcept;    // non-comment entries before the current one
  std::vector<std::string> sectionNames() const;  // in file order, deleted ones left out
  Position savePosition() const noexcept;
  unsigned int restorePosition(const Position& position);  // 1844

  // A field of the named entry (findEntry first) or the current one (1828), trimmed. 1842 a
  // comment; 1841 no such field; 1820 cut to size - 1 characters.
  unsigned int getValue(char* buffer, unsigned int size, bool transform, unsigned int field,
                        const char* name = nullptr, unsigned int index = 0);
  // An empty value is 0 or false. 1833, 1837 (negative), 1838: the text does not decode. The value
  // stays as it was on failure.
  unsigned int getSigned(std::int32_t& value, bool transform, unsigned int field,
                         const char* name = nullptr, unsigned int index = 0);
  unsigned int getUnsigned(std::uint32_t& value, bool transform, unsigned int field,
                           const char* name = nullptr, unsigned int index = 0);
  unsigned int getBoolean(bool& value, bool transform, unsigned int field,
                          const char* name = nullptr, unsigned int index = 0);
  unsigned int getNameNumber(std::int32_t& value) const;  // the current entry's name

  // Stores field 1 to 15 (else 1841) of the named entry, which is made when it is missing, or of
  // the current one. 1835 not writable; 1842 a comment; 1820 the line would pass 255 characters,
  // and nothing is stored. The text ends at its first CR or LF; a comma in it makes two fields.
  unsigned int setValue(const SCL_StringRef& text, bool transform, unsigned int field,
                        const char* name = nullptr, unsigned int index = 0);
  unsigned int setSigned(std::int32_t value, bool transform, unsigned int field,
                         const char* name = nullptr, unsigned int index = 0);
  unsigned int setUnsigned(std::uint32_t value, bool transform, unsigned int field,
                           const char* name = nullptr, unsigned int index = 0);
  unsigned int setBoolean(bool value, bool transform, unsigned int field,
                          const char* name = nullptr, unsigned int index = 0);
  // Always a new entry, which becomes current; `text` is stored when a field is given. 1835, 1829,
  // 1831 (a name that no entry can have), 1841, 1820: nothing was added.
  unsigned int addEntry(const SCL_StringRef& name, unsigned int index, const char* text = nullptr,
                        unsigned int field = 0);
  unsigned int addSigned(const SCL_StringRef& name, unsigned int index, std::int32_t value,
                         unsigned int field);
  unsigned int addBoolean(const SCL_StringRef& name, unsigned int index, bool value,
                          unsigned int field);
  // The named or the current entry; the next one becomes current. 1835; 1831.
  unsigned int deleteEntry(const char* name = nullptr, unsigned int index = 0);
  // The later fields move down. 1835; 1831 also for a deleted entry; 1842; 1841.
  unsigned int deleteField(unsigned int field, const char* name = nullptr, unsigned int index = 0);
  unsigned int deleteEntriesWithIndex(unsigned int index);
  // Purges deleted entries of the current section, then closes the gaps between its indexes.
  unsigned int renumber();
  // Out of memory only: the profile need not be writable and does not count as modified.
  unsigned int dropSection(const SCL_StringRef& name);
  unsigned int renameSection(const SCL_StringRef& name);  // 1829; 1820
  void setFlags(unsigned int bits, bool on) noexcept;

  bool isModified() const noexcept { return m_modified; }
  bool isWritable() const noexcept { return m_writable; }

 protected:
  // May rewrite the value in place: direction 0 after reading, 1 before storing. The base reverses
  // the characters.
  virtual void transformValue(char* buffer, unsigned int size, int direction);

 private:
  using Sections = std::list<PFA_Section>;

  // Files.
  unsigned int reopen(const SCL_StringRef& fileName, bool writable);
  unsigned int openWritable();
  template <class Operation>
  unsigned int retried(Operation operation) const;
  unsigned int load(const std::string& path);
  unsigned int loadLine(std::string_view line, unsigned int lineNumber);
  unsigned int loadHeader(std::string_view line);
  void loadEntry(std::string_view line, unsigned int lineNumber);
  unsigned int writeBack();
  bool writeSections(FL_TextFile& file) const;
  void copyOwnership(FL_TextFile& file);
  unsigned int report(unsigned int status) const;
  void discard() noexcept;

  // Places.
  Sections::iterator findSection(std::string_view name);
  bool hasSection() const noexcept { return m_section != m_sections.end(); }
  void makeCurrent(Sections::iterator section) noexcept;
  bool setEntry(PFA_Section::Place place) noexcept;
  unsigned int seek(const SCL_StringRef& name, unsigned int index, bool& stands);
  unsigned int seekExisting(const char* name, unsigned int index);
  unsigned int store(const SCL_StringRef& text, bool transform, unsigned int field);
  std::string storable(const SCL_StringRef& text, bool transform);

  bool m_modified = false;
  bool m_writable = false;
  bool m_open = false;
  std::string m_fileName;
  PFA_WorkingFile m_working;
  Sections m_sections;
  Sections::iterator m_section;               // end(): none
  std::optional<PFA_Section::Place> m_entry;  // in *m_section
  unsigned int m_flags = RETRY_BUSY;
  unsigned int m_openStatus = 0;
};
