// The host's scripting suites: whether they are there, and how a reader and a writer are closed.
#pragma once

#include "photoshop/descriptors.h"
#include "photoshop/suites.h"
#include "platform/types.h"

// `newerVersion`, when given, is set to 1 if the host's suite is of a version that is not known here.
Boolean HostDescriptorAvailable(const PIDescriptorParameters *parameters, Boolean *newerVersion);

// True when the user is to see the dialog on playback.
Boolean HostPlayDialog(const PIDescriptorParameters *parameters);

OSErr HostCloseReader(const PIDescriptorParameters *parameters, HandleProcs *handleProcs,
                      PIReadDescriptor *reader);

// Installs what was written as parameters->descriptor and disposes of the one that was there. When the host
// cannot close the writer, the old one stays.
OSErr HostCloseWriter(PIDescriptorParameters *parameters, HandleProcs *handleProcs,
                      PIWriteDescriptor *writer);

// Disposes of a handle that came from the host, through its suite where it has one.
void HostDisposeHandle(HandleProcs *handleProcs, Handle handle);
