// The mark that a limit leaves in the log, so that nobody takes what was read for the whole.
#pragma once

// Writes "Too many <what>, the rest is left out." when a log is bound.
void rfc_note_limit(const char* what);
