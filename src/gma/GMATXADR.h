// Copies an address from a message of one post office into an address object of another of the
// same kind.
#pragma once

class GMA_Maddr;
class GMA_PostOffice;

namespace gma {
// Sets type, user, location and original text of the destination; its display name stays. "Source
// and destination post offices of different type." when their kinds differ; nothing is changed
// then. No pointer may be null (assertion 1, GMATXADR).
void transferAddress(GMA_PostOffice* source, const GMA_Maddr* sourceAddress,
                     GMA_PostOffice* destination, GMA_Maddr* destinationAddress);
}  // namespace gma
