// Temporary file names, made under the named mutex "DCDTempFileName".
#pragma once

namespace gen {

// A name of no existing file in the temporary directory (the value TMP under ".DEFAULT\Environment"
// of the users root; "C:\" when there is none). The name is not reserved: create it exclusively.
// Status 140: `size` is below 9 or too short for directory and number (or no name is free); 121 to
// 129: the directory makes no usable name. The name is empty then. An empty name without a status:
// the mutex cannot be had. Nothing happens when the status is nonzero on entry.
void tempFileName(char* buffer, unsigned int size, unsigned int& status);

}  // namespace gen
