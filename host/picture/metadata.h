// What a picture file says beside its pixels: EXIF with makers' notes and GPS, IPTC, XMP, profile, comments,
// texts, orientation and resolution, and the private tags of TIFF. The picture library loses much of that, so
// its outputs are written without any, and get everything from the input file itself.
#pragma once

#include <string>
#include <vector>

#include "host/report/failure.h"

struct MetadataCarriage {
    std::string inputFile;
    std::string path;        // the written picture, which holds no metadata yet
    std::string outputFile;  // what messages call it
    bool stamp = false;      // the output says when and by what it was written
};

// Damaged metadata goes along as bytes where it can. `lost` names what the output does not hold, as users
// call it. Fails only when the output cannot be written. Takes memory for the metadata alone, whatever the
// size of the pictures.
MaybeFailure CarryMetadata(const MetadataCarriage &carriage, std::vector<std::string> *lost);

// " (PNG keeps no comments, IPTC data)"; empty when nothing is lost.
std::string WordsOnLoss(const std::string &format, const std::vector<std::string> &lost);
