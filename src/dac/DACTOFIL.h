// Copies a data access object's content to a file; deletes files with patience.
#pragma once

#include "scl/SCLSTRNG.h"

class DAC_BaseDataAccess;

namespace dac {

// Overwrites `path`, making it when it is missing. The object's cursor goes from the start to the
// end of the content. 490 open, 472 write, 444 disk full, 452 commit, 498 close, else what the
// object's reading left (the file then holds what came before). What remains in the status is also
// noted as the object's BadData attribute. A null object is an assertion (1).
void copyToFile(DAC_BaseDataAccess* object, const SCL_StringRef& path, unsigned int& status);

// The same into a new file in the temporary directory, which nobody else can have put there and
// only this user can read. Its path in `path`; on failure there is no file and `path` is empty. It
// is empty without a status when no name can be had at all.
void copyToTemporaryFile(DAC_BaseDataAccess& object, SCL_String& path, unsigned int& status);

// Nothing for an empty path. Up to 100 attempts, 100 milliseconds apart, where waiting can help
// (EBUSY, ETXTBSY, EINTR, ESTALE); a missing file counts as deleted; what fails is traced. Never
// throws.
void deleteFilePatiently(const SCL_StringRef& path) noexcept;

}  // namespace dac
