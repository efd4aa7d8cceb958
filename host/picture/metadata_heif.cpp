#include "host/container/heif_boxes.h"
#include "host/picture/exif.h"
#include "host/picture/metadata_record.h"

namespace {

// What the numbers of EXIF's orientations mean that do not mirror; 0 for the others.
int QuarterTurns(uint64_t orientation) {
    return orientation == 8 ? 1 : orientation == 3 ? 2 : orientation == 6 ? 3 : 0;
}

}  // namespace

bool TakeHeif(const ByteFile &file, Metadata *metadata) {
    HeifMetadata blocks;
    if (!ReadHeifMetadata(file, &blocks)) {
        return false;
    }
    if (!blocks.exif.empty()) {
        TakeExifBlock(blocks.exif, &metadata->exif);
    }
    // Pixels are read upright, as the file's own properties turn them.
    if (metadata->exif.readable && FindEntry(metadata->exif.directory, kTagOrientation) != nullptr) {
        SetExif(&metadata->exif, NumbersEntry(kTagOrientation, kTiffShort, {1}));
    }
    metadata->xmp = blocks.xmp;
    metadata->profile = blocks.profile;
    return true;
}

bool PutHeif(Metadata *metadata, ByteFile *file) {
    if (metadata->container != Container::heif) {
        TakeTextsIntoExif(metadata);
        TakeResolutionIntoExif(metadata);
        TakeResourcesIntoExif(metadata);
    }
    DropGreyProfile(metadata);
    // Readers of this format do not look for it in EXIF data.
    const uint64_t orientation = NumberOf(metadata->exif.directory, kTagOrientation, 1);
    if (orientation != 1 && QuarterTurns(orientation) == 0) {
        metadata->lost.insert(kMirroring);
    }
    return AddHeifMetadata(
        {PackExif(metadata, INT32_MAX), metadata->xmp, metadata->profile, QuarterTurns(orientation)}, file);
}
