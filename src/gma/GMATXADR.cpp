// The transfer of an address between post offices of one kind.
#include "gma/GMATXADR.h"

#include "gen/GENCODES.h"
#include "gen/GENWNT.h"
#include "gma/GMAMADDR.h"
#include "gma/GMAPO.h"

void gma::transferAddress(GMA_PostOffice* source, const GMA_Maddr* sourceAddress,
                          GMA_PostOffice* destination, GMA_Maddr* destinationAddress) {
  if (source == nullptr || sourceAddress == nullptr || destination == nullptr ||
      destinationAddress == nullptr) {
    GENAssert(GEN_NULL_POINTER, "GMATXADR", __LINE__);
  }
  if (source->type() != destination->type()) {
    GENAssertText("Source and destination post offices of different type.", "GMATXADR", __LINE__);
  }
  destinationAddress->setType(sourceAddress->getType());
  destinationAddress->setUser(sourceAddress->getUser());
  destinationAddress->setLocation(sourceAddress->getLocation());
  destinationAddress->setOriginal(sourceAddress->getOriginal());
}
