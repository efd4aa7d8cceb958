// A host's library that happens to export names of the Mac calls which the module uses. They are the host's
// own: the module must never reach one.
#include <stdlib.h>

#define OWN(name) \
    __attribute__((visibility("default"))) void name(void) { abort(); }
OWN(NewHandle)
OWN(NewHandleClear)
OWN(DisposeHandle)
OWN(GetHandleSize)
OWN(SetHandleSize) OWN(HLock) OWN(HUnlock) OWN(NewPtr) OWN(NewPtrClear) OWN(DisposePtr) OWN(BlockMoveData)
    OWN(GetDateTime) OWN(FindFolder) OWN(FSpOpenDF) OWN(FSMakeFSSpec) OWN(FSRead) OWN(FSWrite)
        OWN(GetResource) OWN(ReleaseResource) OWN(ResError) OWN(SetPort) OWN(OffsetRect) OWN(InsetRect)
            OWN(GetNewDialog) OWN(ModalDialog) OWN(DisposeDialog) OWN(CopyBits)
