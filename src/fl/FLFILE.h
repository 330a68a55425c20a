// FL_File: a file with positional reads and writes, on which text files and file streams stand.
// It is the platform's file with the system's statuses left to the caller: operations return 0 or
// an errno value (plat::lastFailure has the details).
#pragma once

#include "plat/PlatFile.h"

using FL_File = plat::File;
