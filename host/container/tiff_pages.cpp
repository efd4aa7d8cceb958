#include "host/container/tiff_pages.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <set>

#include "host/container/byte_order.h"

namespace {

constexpr size_t kMaxPages = 1'000'000;

// Where pixels are, and how many bytes.
constexpr std::pair<uint16_t, uint16_t> kParts[] = {{kTagStripOffsets, kTagStripByteCounts},
                                                    {kTagTileOffsets, kTagTileByteCounts}};

bool MovePixels(const ByteFile &from, TiffDirectory *directory, TiffJoiner *joiner) {
    bool found = false;
    for (const auto &[places, counts] : kParts) {
        const TiffEntry *place = FindEntry(*directory, places);
        const TiffEntry *count = FindEntry(*directory, counts);
        if (place == nullptr || count == nullptr) {
            continue;
        }
        const std::vector<uint64_t> lengths = NumbersOf(*count);
        std::vector<uint64_t> moved = NumbersOf(*place);
        if (moved.size() != lengths.size()) {
            errno = EINVAL;
            return false;
        }
        for (size_t i = 0; i < moved.size(); ++i) {
            const uint64_t to = joiner->file->size;
            if (!AppendPart(from, moved[i], lengths[i], joiner->file)) {
                return false;
            }
            moved[i] = lengths[i] > 0 ? to : 0;
        }
        found = true;
        SetEntry(directory, NumbersEntry(places, joiner->form.big ? kTiffLong8 : kTiffLong, moved));
    }
    if (!found) {
        errno = EINVAL;
        return false;
    }
    // A page's smaller copies lie below it.
    TiffEntry *below = FindEntry(directory, kTagSubIFDs);
    return below == nullptr || std::all_of(below->children.begin(), below->children.end(), [&](auto &child) {
               child.next = 0;
               return MovePixels(from, &child, joiner);
           });
}

}  // namespace

std::vector<TiffPage> PagesOfTiff(const ByteFile &file) {
    TiffSource tiff;
    std::vector<TiffPage> pages;
    if (!OpenTiff(BytesOfFile(file), &tiff)) {
        return pages;
    }
    std::set<uint64_t> seen;  // directories may point to each other in a circle
    for (uint64_t place = tiff.first; place != 0 && pages.size() < kMaxPages && seen.insert(place).second;) {
        TiffDirectory directory;
        bool whole = false;
        if (!ReadDirectory(tiff, place, &directory, &whole)) {
            break;
        }
        const uint64_t bits = NumberOf(directory, kTagBitsPerSample, 1);
        const uint64_t rowBits =
            NumberOf(directory, kTagImageWidth, 0) * NumberOf(directory, kTagSamplesPerPixel, 1) * bits;
        pages.push_back({place, NumberOf(directory, kTagNewSubfileType, 0), static_cast<int32_t>(bits),
                         (rowBits + 7) / 8 * NumberOf(directory, kTagImageHeight, 0)});
        place = directory.next;
    }
    return pages;
}

bool StartTiff(const TiffForm &form, ByteFile *file, TiffJoiner *joiner) {
    *joiner = {file, form, FirstDirectoryField(form)};
    file->size = 0;
    std::string header = form.bigEndian ? "MM" : "II";
    header += NumberBytes(form.big ? 43 : 42, 2, form.bigEndian);
    // In a BigTIFF the bytes of an offset come first.
    header += form.big ? NumberBytes(8, 2, form.bigEndian) + std::string(10, '\0') : std::string(4, '\0');
    return WriteAt(file, 0, header);
}

bool CanJoin(const TiffSource &from, const TiffPage &page, const TiffJoiner &joiner) {
    return page.bits <= 8 || from.form.bigEndian == joiner.form.bigEndian;
}

bool AppendPage(const TiffSource &from, const TiffPage &page, const ByteFile &file, TiffJoiner *joiner) {
    TiffDirectory directory;
    bool whole = false;
    if (!ReadDirectory(from, page.place, &directory, &whole) || !MovePixels(file, &directory, joiner)) {
        return false;
    }
    directory.next = 0;
    if (page.subfile != 0) {
        SetEntry(&directory, NumbersEntry(kTagNewSubfileType, kTiffLong, {page.subfile}));
    }
    uint64_t next = 0;
    if (!AppendDirectory(directory, joiner->form, joiner->field, joiner->file, &next)) {
        return false;
    }
    joiner->field = next;
    return true;
}
