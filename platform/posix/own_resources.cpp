#include "platform/native_paths.h"
#include "platform/resources.h"

namespace {

// Found on loading, while a path that the host gave is still relative to the same folder.
const std::string besideThisCode = OwnFolder() + "/HybridMedian.rsrc";

}  // namespace

void OfferOwnResources() {
    OfferResourceFile(&besideThisCode);
}
