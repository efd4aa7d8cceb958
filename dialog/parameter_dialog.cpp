// The radius dialog. Its resource does not exist yet, which is answered like a cancel.
#include "toolkit/filter_hooks.h"

OSErr InteractiveDialog(NamedImage *, RunContext *, Handle) {
    return userCanceledErr;
}
