// The decoders of quoted-printable and Base64 (RFC 2045 sections 6.7 and 6.8). Bad input never
// fails: what can be decoded is, and the last problem is noted as the source's BadData attribute.
//
// Both read `length` bytes (below 0: none) of the source from `start` on, leave its cursor where
// reading ended, and append the decoded bytes at the destination's cursor. The status is that of a
// failing stream; the source's end is none.
#pragma once

#include <cstdint>

class DAC_BaseDataAccess;

void rfc_qp_decode(DAC_BaseDataAccess& source, DAC_BaseDataAccess& destination, std::int32_t start,
                   std::int32_t length, unsigned int& status);
// Empties the destination first. Reads lines: the one that crosses the end of the range is read to
// its end. A null destination is the assertion 1 at rfcb64.
void rfc_b64_decode(DAC_BaseDataAccess& source, DAC_BaseDataAccess* destination, std::int32_t start,
                    std::int32_t length, unsigned int& status);
