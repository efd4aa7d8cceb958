// The Resource Manager: typed, numbered blocks of data out of resource files in the published format.
//
// The most recently opened file is searched first. A resource's handle belongs to its file: it goes when the
// file is closed. 'DLOG' and 'DITL' resources come with their numbers in native byte order; all others as
// they stand in the file.
#pragma once

#include "platform/types.h"

#pragma GCC visibility push(default)

extern "C" {

// Reads a whole resource file. Returns a reference of its own kind, or -1; ResError then tells why. A file
// that is not a sound resource file gives mapReadErr.
int16_t FSpOpenResFile(const FSSpec *spec, int8_t permission);
void CloseResFile(int16_t refNum);

// Null when no open file has the resource.
Handle GetResource(OSType type, int16_t id);
// The resource stays in memory in any case, so these are statements of intent.
void HNoPurge(Handle resource);
void ReleaseResource(Handle resource);

OSErr ResError();

}  // extern "C"

#pragma GCC visibility pop
