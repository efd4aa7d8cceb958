#include <algorithm>
#include <cerrno>

#include "host/picture/exif.h"
#include "host/picture/exiv2_library.h"
#include "host/picture/metadata_record.h"

namespace {

constexpr uint64_t kAssociatedAlpha = 1;

std::string TakeOut(TiffDirectory *directory, uint16_t tag) {
    const TiffEntry *entry = FindEntry(*directory, tag);
    std::string bytes = entry == nullptr ? std::string() : entry->bytes;
    RemoveEntry(directory, tag);
    return bytes;
}

void PutBlocks(const Metadata &metadata, TiffDirectory *directory) {
    const struct {
        uint16_t tag, type;
        const std::string &bytes;
    } blocks[] = {{kTagXMP, kTiffByte, metadata.xmp},
                  {kTagProfile, kTiffUndefined, metadata.profile},
                  {kTagPhotoshop, kTiffByte, metadata.photoshop},
                  {kTagIPTC, kTiffUndefined, metadata.iptc}};
    for (const auto &[tag, type, bytes] : blocks) {
        if (!bytes.empty()) {
            SetEntry(directory, BytesEntry(tag, type, bytes));
        }
    }
}

// What a further channel is, the input knows better than the library. Only associated alpha is no more what
// it was: the library has divided by it.
const TiffEntry *KindsOfChannels(const TiffDirectory &input, const TiffDirectory &own) {
    const TiffEntry *kinds = FindEntry(input, kTagExtraSamples);
    if (kinds == nullptr ||
        NumberOf(input, kTagSamplesPerPixel, 1) != NumberOf(own, kTagSamplesPerPixel, 1)) {
        return nullptr;
    }
    const std::vector<uint64_t> numbers = NumbersOf(*kinds);
    return std::find(numbers.begin(), numbers.end(), kAssociatedAlpha) == numbers.end() ? kinds : nullptr;
}

}  // namespace

bool TakeTiff(const ByteFile &file, Metadata *metadata) {
    TiffSource tiff;
    Exif *exif = &metadata->exif;
    if (!OpenTiff(BytesOfFile(file), &tiff) ||
        !ReadDirectory(tiff, tiff.first, &exif->directory, &exif->whole)) {
        return false;
    }
    exif->bigEndian = tiff.form.bigEndian;
    exif->directory.next = 0;
    return true;
}

void TakeOutBlocks(Metadata *metadata) {
    TiffDirectory *directory = &metadata->exif.directory;
    const size_t before = directory->entries.size();
    std::string inner;
    const std::pair<uint16_t, std::string *> blocks[] = {{kTagXMP, &metadata->xmp},
                                                         {kTagProfile, &metadata->profile},
                                                         {kTagPhotoshop, &metadata->photoshop},
                                                         {kTagIPTC, &metadata->iptc}};
    for (const auto &[tag, bytes] : blocks) {
        if (FindEntry(*directory, tag) != nullptr) {
            *bytes = TakeOut(directory, tag);
        }
    }
    TakeIptcOutOf(&metadata->photoshop, &inner);
    metadata->iptc = metadata->iptc.empty() ? inner : metadata->iptc;
    RemoveStorageTags(directory);
    metadata->exif.changed = metadata->exif.changed || before != directory->entries.size();
}

bool PutTiff(Metadata *metadata, ByteFile *file) {
    TiffSource tiff;
    TiffDirectory own;
    bool whole = true;
    if (!OpenTiff(BytesOfFile(*file), &tiff) || !ReadDirectory(tiff, tiff.first, &own, &whole) || !whole) {
        errno = EIO;
        return false;
    }
    if (metadata->container != Container::tiff) {
        TakeTextsIntoExif(metadata);
        TakeResolutionIntoExif(metadata);
    }
    std::erase_if(own.entries, [](const TiffEntry &entry) { return !DescribesStorage(entry.tag); });
    if (const TiffEntry *kinds = KindsOfChannels(metadata->exif.directory, own)) {
        SetEntry(&own, *kinds);
    }
    if (metadata->container != Container::tiff) {
        PutBlocks(*metadata, &own);
    }
    for (const TiffEntry &entry : metadata->exif.directory.entries) {
        if (!DescribesStorage(entry.tag) && FindEntry(own, entry.tag) == nullptr) {
            own.entries.push_back(entry);
        }
    }
    if (!metadata->exif.readable) {
        metadata->lost.insert(kExifData);
    } else if (!metadata->exif.whole) {
        metadata->lost.insert(kSomeExifData);
    }
    return AppendDirectory(own, tiff.form, FirstDirectoryField(tiff.form), file);
}
