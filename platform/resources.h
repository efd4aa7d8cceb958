// The Resource Manager: typed, numbered blocks of data from resource files in the published format.
//
// The most recently opened file is searched first. A resource's handle belongs to its file and dies when the
// file is closed. The numbers in 'DLOG' and 'DITL' resources are in native byte order; all other resources
// are exactly as stored.
#pragma once

#include <string>
#include <string_view>

#include "platform/types.h"

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

// Resources to be opened when one is wanted that no open file has: those of a file, by its path, or those
// that lie in memory as they would in a file. Path and bytes must stay until the resources are withdrawn,
// which also closes them.
void OfferResourceFile(const std::string *path);
void OfferResourceBytes(std::string_view bytes);
void WithdrawResources();

// Offers those that came with this code, a module: in a file of that name beside it or, on Windows, in
// itself.
void OfferOwnResources();
