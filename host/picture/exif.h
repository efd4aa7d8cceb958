// EXIF blocks: read, extended, and packed again.
#pragma once

#include <string>

#include "host/picture/metadata_record.h"

// Takes a block in; the first one counts.
void TakeExifBlock(const std::string &block, Exif *exif);
bool HasExif(const Exif &exif);

// Tags that say how pixels are stored, which every file has for itself.
bool DescribesStorage(uint16_t tag);
void RemoveStorageTags(TiffDirectory *directory);

// Adds a tag; the caller has made sure that the block is readable.
void SetExif(Exif *exif, TiffEntry entry);

// Comments and the texts that EXIF has tags for become such tags, if these are still free. What finds no
// place is counted as lost.
void TakeTextsIntoExif(Metadata *metadata);
// The resolution becomes EXIF's, unless that has one.
void TakeResolutionIntoExif(Metadata *metadata);
// For formats that have no place for IPTC's and Photoshop's data: an EXIF block can hold them as a TIFF does.
void TakeResourcesIntoExif(Metadata *metadata);
// EXIF's own, else the container's.
std::optional<Resolution> ResolutionOf(const Metadata &metadata);

// The block's bytes, unchanged if nothing was added. Empty if there is none. What does not fit into
// `maxBytes` is left out, thumbnail and largest values first.
std::string PackExif(Metadata *metadata, size_t maxBytes);
