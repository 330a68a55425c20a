// Open files with positional reads and writes, and the operations on names. All paths are in the
// system's form (PlatPath.h). Descriptors are close-on-exec; functions return 0 or an errno value,
// which lastFailure() then holds with operation and path. Interrupted calls are repeated, short
// transfers continued.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace plat {

enum class Share {
  all,        // nothing is excluded
  denyWrite,  // fails with EBUSY while somebody else holds the file open for writing (where told)
  denyAll     // fails with EBUSY while anybody else holds the file open, and see below
};

struct OpenMode {
  bool read = false;
  bool write = false;
  bool append = false;     // every write lands at the end (O_APPEND)
  bool create = false;     // made when missing
  bool exclusive = false;  // with create: EEXIST when the name exists, also as a link
  // With create, exclusive and write: the file gets its name when it is committed, whole; a file
  // that is closed before leaves nothing. Where the file system has no nameless files the name is
  // there at once, and the close takes it back.
  bool lateName = false;
  bool truncate = false;
  bool noFollow = false;    // ELOOP for a symbolic link: set for spool files
  bool regularOnly = true;  // EINVAL (EISDIR for a directory) for anything but a regular file
  bool otherCase = false;   // a missing file is tried once with its extension in the other case
  Share share = Share::all;
  unsigned int permissions = 0666;  // masked by the umask
};

// An open file; closes in its destructor. Not shared between threads. An open that meets a lease
// which another process holds for the moment of its test waits it out; one that lasts is EBUSY.
//
// Share::denyAll: a write lease, which the kernel grants only while nobody else has the file open,
// taken and released at once. Where leases are not to be had, flock(LOCK_EX | LOCK_NB) and the
// file counts as in use while its last modification is less than 2 seconds old (or lies in the
// future, by less than two hours).
class File {
 public:
  File() noexcept = default;
  File(File&& other) noexcept;
  File& operator=(File&& other) noexcept;
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  ~File();

  int open(std::string_view path, const OpenMode& mode);
  bool isOpen() const noexcept { return m_descriptor >= 0; }
  const std::string& nativePath() const noexcept { return m_path; }  // the name that was opened
  // What the open saw, so that nobody need ask again; 0 for what is no regular file.
  std::int64_t sizeAtOpen() const noexcept { return m_sizeAtOpen; }
  // Reads up to `count` bytes at `position`; `done` is below count only at the end of the file.
  int readAt(std::int64_t position, void* buffer, std::size_t count, std::size_t& done);
  // Writes all bytes at `position` (at the end in append mode).
  int writeAt(std::int64_t position, const void* data, std::size_t count);
  int size(std::int64_t& bytes) const;
  int setSize(std::int64_t bytes);
  // To stable storage (not with KRX_COMMIT=0); then a file with a late name gets it, EEXIST when
  // the name was taken meanwhile.
  int commit();
  int close();  // the checked close; a second one does nothing
  int descriptor() const noexcept { return m_descriptor; }

 private:
  enum class Name { settled, missing, provisional };  // of a file that is to have it late

  int takeName();

  int m_descriptor = -1;
  Name m_name = Name::settled;
  std::int64_t m_sizeAtOpen = 0;
  std::string m_path;
};

enum class Kind { missing, regular, directory, other };

struct FileStatus {
  Kind kind = Kind::missing;
  std::int64_t size = 0;
  std::int64_t modifiedSeconds = 0;  // since 1970-01-01 UTC
  int modifiedNanoseconds = 0;
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  unsigned int permissions = 0;  // the mode's permission bits
  unsigned int owner = 0;
};

// Follows symbolic links when asked to. ENOENT gives Kind::missing and 0 as result.
int status(std::string_view path, FileStatus& result, bool follow = true, bool otherCase = false);
// May this process read / write the existing file? A file without any write bit is not writable,
// whoever asks. EACCES when not.
int checkReadWrite(std::string_view path, bool read, bool write);

int remove(std::string_view path);           // a file
int removeDirectory(std::string_view path);  // an empty directory
int makeDirectory(std::string_view path, unsigned int permissions = 0777);
int rename(std::string_view from, std::string_view to);           // replaces
int renameNoReplace(std::string_view from, std::string_view to);  // EEXIST when `to` exists
// The directory entry changes of `directory` to stable storage; nothing with KRX_COMMIT=0.
int commitDirectory(std::string_view directory);
// Gives the open file the owner, group and mode of another. The mode comes last and only when owner
// and group are right (EPERM when they may not be given), so that nobody else can read it
// meanwhile.
int copyOwnership(const File& to, const File& from);
bool commitDisabled() noexcept;  // KRX_COMMIT=0

// The text value of an extended attribute ("user.x"); ENODATA when there is none.
int getExtendedAttribute(std::string_view path, const char* name, std::string& value);
int setExtendedAttribute(std::string_view path, const char* name, std::string_view value);
// An exclusive advisory lock on the open file without waiting; EWOULDBLOCK when held elsewhere.
int lockFile(const File& file);

// Attribute bits as the file search tells them.
inline constexpr unsigned int ATTRIBUTE_READ_ONLY = 1;  // no write bit for anyone
inline constexpr unsigned int ATTRIBUTE_HIDDEN = 2;     // user.DOSATTRIB has 0x2
inline constexpr unsigned int ATTRIBUTE_SYSTEM = 4;     // user.DOSATTRIB has 0x4
inline constexpr unsigned int ATTRIBUTE_DIRECTORY = 16;

// The attributes of a name; a link that points nowhere counts as missing (ENOENT).
int attributes(std::string_view path, unsigned int& bits);

}  // namespace plat
