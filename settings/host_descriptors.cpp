#include "settings/host_descriptors.h"

#include "toolkit/host_handles.h"

Boolean HostDescriptorAvailable(const PIDescriptorParameters *parameters, Boolean *newerVersion) {
    if (parameters == nullptr) {
        return false;
    }
    if (parameters->descriptorParametersVersion != kDescriptorParametersVersion) {
        if (newerVersion != nullptr &&
            parameters->descriptorParametersVersion > kDescriptorParametersVersion) {
            *newerVersion = true;
        }
        return false;
    }
    const ReadDescriptorProcs *read = parameters->readDescriptorProcs;
    const WriteDescriptorProcs *write = parameters->writeDescriptorProcs;
    return read != nullptr && read->readDescriptorProcsVersion >= 0 &&
           read->numReadDescriptorProcs >= kReadDescriptorProcsCount && write != nullptr &&
           write->writeDescriptorProcsVersion >= 0 &&
           write->numWriteDescriptorProcs >= kWriteDescriptorProcsCount;
}

Boolean HostPlayDialog(const PIDescriptorParameters *parameters) {
    return parameters != nullptr && parameters->playInfo == plugInDialogDisplay;
}

OSErr HostCloseReader(const PIDescriptorParameters *parameters, HandleProcs *, PIReadDescriptor *reader) {
    const OSErr err = parameters->readDescriptorProcs->closeReadDescriptorProc(*reader);
    *reader = nullptr;
    return err;
}

OSErr HostCloseWriter(PIDescriptorParameters *parameters, const HandleProcs *handleProcs,
                      PIWriteDescriptor *writer) {
    Handle written = nullptr;
    const OSErr err = parameters->writeDescriptorProcs->closeWriteDescriptorProc(*writer, &written);
    *writer = nullptr;
    if (err != noErr) {
        return err;
    }
    HostDisposeHandle(handleProcs, parameters->descriptor);
    parameters->descriptor = written;
    return noErr;
}
