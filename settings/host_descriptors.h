// The host's scripting suites: whether they are available, and how to close a reader and a writer.
#pragma once

#include "photoshop/descriptors.h"
#include "photoshop/suites.h"
#include "platform/types.h"

// `newerVersion`, if given, is set to 1 when the host's suite is of a version newer than this code knows.
Boolean HostDescriptorAvailable(const PIDescriptorParameters *parameters, Boolean *newerVersion);

// True when the dialog is to be shown on playback.
Boolean HostPlayDialog(const PIDescriptorParameters *parameters);

OSErr HostCloseReader(const PIDescriptorParameters *parameters, HandleProcs *handleProcs,
                      PIReadDescriptor *reader);

// Makes what was written the new parameters->descriptor and disposes of the old one, as far as the suite
// goes. If the host cannot close the writer, the old one stays.
OSErr HostCloseWriter(PIDescriptorParameters *parameters, const HandleProcs *handleProcs,
                      PIWriteDescriptor *writer);
