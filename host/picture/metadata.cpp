#include "host/picture/metadata.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <iterator>

#include "host/picture/exif.h"
#include "host/picture/metadata_record.h"

namespace {

struct Handler {
    Container container;
    bool (*take)(const ByteFile &file, Metadata *metadata);
    bool (*put)(Metadata *metadata, ByteFile *file);
};

bool TakeNothing(const ByteFile &, Metadata *) {
    return true;
}

bool PutNothing(Metadata *metadata, ByteFile *) {
    const bool resolution = ResolutionOf(*metadata).has_value();
    for (const uint16_t tag : {kTagXResolution, kTagYResolution, kTagResolutionUnit}) {
        RemoveEntry(&metadata->exif.directory, tag);
    }
    if (NumberOf(metadata->exif.directory, kTagOrientation, 0) == 1) {
        RemoveEntry(&metadata->exif.directory, kTagOrientation);  // upright, as everything is without it
    }
    const struct {
        bool there;
        const char *name;
    } kinds[] = {
        {resolution, kResolution},
        {HasExif(metadata->exif), kExifData},
        {!metadata->xmp.empty(), kXmpData},
        {!metadata->iptc.empty(), kIptcData},
        {!metadata->profile.empty(), kProfile},
        {!metadata->comments.empty(), kComments},
        {!metadata->texts.empty(), kTexts},
    };
    for (const auto &[there, name] : kinds) {
        if (there) {
            metadata->lost.insert(name);
        }
    }
    return true;
}

constexpr Handler kHandlers[] = {
    {Container::heif, TakeHeif, PutHeif}, {Container::jpeg, TakeJpeg, PutJpeg},
    {Container::png, TakePng, PutPng},    {Container::tiff, TakeTiff, PutTiff},
    {Container::webp, TakeWebp, PutWebp},
};
constexpr Handler kOther = {Container::other, TakeNothing, PutNothing};

const Handler &HandlerOf(const ByteFile &file) {
    const Container container = ContainerOf(file);
    const auto *found = std::find_if(std::begin(kHandlers), std::end(kHandlers),
                                     [=](const Handler &handler) { return handler.container == container; });
    return found == std::end(kHandlers) ? kOther : *found;
}

void Stamp(Exif *exif) {
    if (!exif->readable) {
        return;
    }
    char now[20];
    const std::time_t seconds = std::time(nullptr);
    std::tm local = {};
    std::strftime(now, sizeof now, "%Y:%m:%d %H:%M:%S", localtime_r(&seconds, &local));
    SetExif(exif, TextEntry(kTagSoftware, "hymedian " HYMEDIAN_VERSION));
    SetExif(exif, TextEntry(kTagDateTime, now));
}

}  // namespace

void DropGreyProfile(Metadata *metadata) {
    if (metadata->profile.size() > 20 && metadata->profile.compare(16, 4, "GRAY") == 0) {
        metadata->lost.insert(kProfile);
        metadata->profile.clear();
    }
}

MaybeFailure CarryMetadata(const MetadataCarriage &carriage, std::vector<std::string> *lost) {
    ByteFile from;
    ByteFile to;
    if (!OpenForPatching(carriage.path, &to)) {
        return FileFailure(carriage.outputFile, std::string("cannot be written: ") + std::strerror(errno));
    }
    Metadata metadata;
    const Handler &writer = HandlerOf(to);
    // An input that cannot be read any more has been read once: its pixels are in the output.
    if (OpenForReading(carriage.inputFile, &from)) {
        const Handler &reader = HandlerOf(from);
        metadata.container = reader.container;
        if (!reader.take(from, &metadata)) {
            metadata.lost.insert(kDamagedMetadata);
        }
        if (reader.container != writer.container) {
            if (reader.container == Container::tiff || reader.container == Container::webp ||
                reader.container == Container::heif) {
                TakeOutBlocks(&metadata);
            }
            metadata.lost.insert(metadata.lostElsewhere.begin(), metadata.lostElsewhere.end());
        }
    }
    if (carriage.stamp) {
        Stamp(&metadata.exif);
    }
    if (!writer.put(&metadata, &to)) {
        return FileFailure(carriage.outputFile, std::string("cannot be written: ") + std::strerror(errno));
    }
    lost->assign(metadata.lost.begin(), metadata.lost.end());
    return std::nullopt;
}

std::string WordsOnLoss(const std::string &format, const std::vector<std::string> &lost) {
    std::string words;
    for (const std::string &kind : lost) {
        if (words.empty()) {
            words.append(" (").append(format).append(" keeps no ");
        } else {
            words.append(", ");
        }
        words.append(kind);
    }
    return words.empty() ? words : words + ")";
}
