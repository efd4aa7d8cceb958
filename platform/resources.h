// The Resource Manager: typed, numbered blocks of data from resource files in the published format.
//
// The most recently opened file is searched first. A resource's handle belongs to its file and dies when the
// file is closed. The numbers in 'DLOG' and 'DITL' resources are in native byte order; all other resources
// are exactly as stored.
#pragma once

#include <string>

#include "platform/types.h"

extern "C" {

// Reads a whole resource file. Returns a reference, distinct from the File Manager's, or -1; ResError then
// gives the reason. A malformed file gives mapReadErr.
int16_t FSpOpenResFile(const FSSpec *spec, int8_t permission);
void CloseResFile(int16_t refNum);

// Null if no open file has the resource.
Handle GetResource(OSType type, int16_t id);
// Resources always stay in memory, so these merely state intent.
void HNoPurge(Handle resource);
void ReleaseResource(Handle resource);

OSErr ResError();

}  // extern "C"

// Names a file, by its POSIX path, that is opened when a resource is wanted that no open file has. The string
// must stay until the file is withdrawn, which also closes it.
void OfferResourceFile(const std::string *path);
void WithdrawResourceFile();
