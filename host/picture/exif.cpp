#include "host/picture/exif.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

// By number, as TIFF's and EXIF's standards have them.
constexpr uint16_t kStorageTags[] = {
    254, 255, 256, 257, 258, 259, 262, 263, 264, 265, 266, 273, 277, 278, 279,   284,   288,   289,
    292, 293, 317, 320, 322, 323, 324, 325, 326, 327, 328, 330, 332, 333, 334,   336,   338,   339,
    347, 512, 513, 514, 515, 517, 518, 519, 520, 521, 529, 530, 532, 559, 32995, 32996, 32997, 32998,
};

// PNG's keywords for what EXIF has tags for.
constexpr std::pair<const char *, uint16_t> kTextTags[] = {{"Description", kTagImageDescription},
                                                           {"Software", kTagSoftware},
                                                           {"Author", kTagArtist},
                                                           {"Copyright", kTagCopyright}};

double RationalOf(const TiffDirectory &directory, uint16_t tag) {
    const TiffEntry *entry = FindEntry(directory, tag);
    if (entry == nullptr || entry->type != kTiffRational || entry->bytes.size() < 8) {
        return 0;
    }
    TiffEntry longs = *entry;
    longs.type = kTiffLong;
    const std::vector<uint64_t> numbers = NumbersOf(longs);
    return numbers[1] == 0 ? 0 : static_cast<double>(numbers[0]) / static_cast<double>(numbers[1]);
}

TiffEntry RationalEntry(uint16_t tag, double value) {
    constexpr double kDenominator = 10000;
    const bool isWhole = value == std::floor(value);
    const double denominator = isWhole || value > 400000 ? 1 : kDenominator;
    return NumbersEntry(
        tag, kTiffRational,
        {static_cast<uint64_t>(std::llround(value * denominator)), static_cast<uint64_t>(denominator)});
}

TiffDirectory *ExifChild(TiffDirectory *directory) {
    TiffEntry *entry = FindEntry(directory, kTagExif);
    if (entry == nullptr) {
        SetEntry(directory, {kTagExif, kTiffLong, 1, {}, 0, std::vector<TiffDirectory>(1)});
        entry = FindEntry(directory, kTagExif);
    }
    return entry->children.empty() ? nullptr : &entry->children.front();
}

// The characters' code comes first: none is named for UTF-8.
bool AddUserComment(Exif *exif, const std::string &comment) {
    TiffDirectory *child = ExifChild(&exif->directory);
    if (child == nullptr || FindEntry(*child, kTagUserComment) != nullptr) {
        return false;
    }
    const bool plain =
        std::all_of(comment.begin(), comment.end(), [](char c) { return static_cast<uint8_t>(c) < 0x80; });
    const std::string code = plain ? std::string("ASCII\0\0\0", 8) : std::string(8, '\0');
    SetEntry(child, BytesEntry(kTagUserComment, kTiffUndefined, code + comment));
    exif->changed = true;
    return true;
}

TiffEntry *LargestEntry(TiffDirectory *directory, TiffDirectory **holder) {
    TiffEntry *largest = nullptr;
    for (TiffEntry &entry : directory->entries) {
        TiffDirectory *inner = directory;
        TiffEntry *candidate = entry.children.empty() ? &entry : LargestEntry(entry.children.data(), &inner);
        if (candidate != nullptr && (largest == nullptr || candidate->bytes.size() > largest->bytes.size())) {
            largest = candidate;
            *holder = inner;
        }
    }
    return largest;
}

}  // namespace

void TakeExifBlock(const std::string &block, Exif *exif) {
    if (HasExif(*exif)) {
        return;
    }
    exif->block = block;
    TiffSource tiff;
    exif->readable = OpenTiff(BytesOfBlock(exif->block), &tiff) &&
                     ReadDirectory(tiff, tiff.first, &exif->directory, &exif->whole);
    exif->bigEndian = tiff.form.bigEndian;
    const uint64_t next = exif->directory.next;
    bool whole = true;
    TiffDirectory thumbnail;
    if (next != 0 && ReadDirectory(tiff, next, &thumbnail, &whole)) {
        exif->thumbnail = std::move(thumbnail);
    }
    exif->directory.next = 0;
}

bool HasExif(const Exif &exif) {
    return !exif.block.empty() || !exif.directory.entries.empty();
}

bool DescribesStorage(uint16_t tag) {
    return std::find(std::begin(kStorageTags), std::end(kStorageTags), tag) != std::end(kStorageTags);
}

void RemoveStorageTags(TiffDirectory *directory) {
    std::erase_if(directory->entries, [](const TiffEntry &entry) { return DescribesStorage(entry.tag); });
}

void SetExif(Exif *exif, TiffEntry entry) {
    SetEntry(&exif->directory, std::move(entry));
    exif->changed = true;
}

void TakeTextsIntoExif(Metadata *metadata) {
    Exif *exif = &metadata->exif;
    for (const std::string &comment : metadata->comments) {
        if (!exif->readable || !AddUserComment(exif, comment)) {
            metadata->lost.insert(kComments);
        }
    }
    for (const auto &[keyword, text] : metadata->texts) {
        const auto *known = std::find_if(std::begin(kTextTags), std::end(kTextTags),
                                         [&key = keyword](const auto &pair) { return key == pair.first; });
        if (known == std::end(kTextTags) || !exif->readable ||
            FindEntry(exif->directory, known->second) != nullptr) {
            metadata->lost.insert(kTexts);
        } else {
            SetExif(exif, TextEntry(known->second, text));
        }
    }
}

void TakeResolutionIntoExif(Metadata *metadata) {
    Exif *exif = &metadata->exif;
    const std::optional<Resolution> own = metadata->resolution;
    if (own && exif->readable && FindEntry(exif->directory, kTagXResolution) == nullptr) {
        SetExif(exif, RationalEntry(kTagXResolution, own->horizontal));
        SetExif(exif, RationalEntry(kTagYResolution, own->vertical));
        SetExif(exif, NumbersEntry(kTagResolutionUnit, kTiffShort, {own->unit}));
    }
}

void TakeResourcesIntoExif(Metadata *metadata) {
    const struct {
        uint16_t tag;
        const std::string &bytes;
        const char *name;
    } resources[] = {{kTagIPTC, metadata->iptc, kIptcData},
                     {kTagPhotoshop, metadata->photoshop, kPhotoshopData}};
    for (const auto &[tag, bytes, name] : resources) {
        if (!bytes.empty() && metadata->exif.readable) {
            SetExif(&metadata->exif, BytesEntry(tag, kTiffUndefined, bytes));
        } else if (!bytes.empty()) {
            metadata->lost.insert(name);
        }
    }
}

std::optional<Resolution> ResolutionOf(const Metadata &metadata) {
    const TiffDirectory &directory = metadata.exif.directory;
    const Resolution resolution = {RationalOf(directory, kTagXResolution),
                                   RationalOf(directory, kTagYResolution),
                                   static_cast<uint16_t>(NumberOf(directory, kTagResolutionUnit, 2))};
    return resolution.horizontal > 0 && resolution.vertical > 0 ? std::optional(resolution)
                                                                : metadata.resolution;
}

std::string PackExif(Metadata *metadata, size_t maxBytes) {
    Exif exif = metadata->exif;
    if (!HasExif(exif)) {
        return {};
    }
    const bool asItWas = !exif.block.empty() && !exif.changed;
    std::string block = asItWas || !exif.readable ? exif.block : std::string();
    while (block.empty() || block.size() > maxBytes) {
        if (!block.empty()) {
            TiffDirectory *holder = nullptr;
            const TiffEntry *largest = LargestEntry(&exif.directory, &holder);
            if (exif.thumbnail) {
                exif.thumbnail.reset();
            } else if (largest == nullptr) {
                metadata->lost.insert(kExifData);
                return {};
            } else {
                metadata->lost.insert(kLargeExifData);
                RemoveEntry(holder, largest->tag);
            }
        }
        if (!exif.whole) {
            metadata->lost.insert(kSomeExifData);
        }
        block = PackBlock(exif.directory, exif.thumbnail ? &*exif.thumbnail : nullptr, exif.bigEndian);
    }
    return block;
}
