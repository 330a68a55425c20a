// The type's home: host and connector must agree on it.
#include "gma/GMAPAIR.h"

GMA_FilePair::~GMA_FilePair() = default;
