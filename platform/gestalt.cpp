#include "platform/gestalt.h"

#include "platform/faults/fault_injection.h"

namespace {

int32_t systemVersion = 0x1040;

}  // namespace

OSErr Gestalt(OSType selector, int32_t *response) {
    if (selector != gestaltSystemVersion || systemVersion < 0) {
        return gestaltUnknownErr;
    }
    *response = systemVersion;
    return noErr;
}

#ifdef HYMEDIAN_FAULT_INJECTION

void faults::SetSystemVersion(int32_t version) {
    systemVersion = version;
}

#endif
