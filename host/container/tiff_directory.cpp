#include "host/container/tiff_directory.h"

#include <algorithm>
#include <cerrno>
#include <iterator>

#include "host/container/byte_order.h"
#include "host/container/maker_note.h"

namespace {

constexpr uint64_t kMaxBytes = 128 << 20;  // of all values; chosen: no picture's metadata comes near
constexpr int kMaxDirectories = 256;       // that a directory may lead to; stops loops
constexpr uint64_t kMaxEntries = 65535;    // as many as a classic TIFF can count
constexpr uint64_t kClassicLimit = 1ULL << 32;

struct TypeShape {
    uint8_t bytes;  // of a value
    uint8_t unit;   // bytes that are in order
};
constexpr TypeShape kTypes[] = {{0, 0}, {1, 1}, {1, 1}, {2, 2}, {4, 4}, {8, 4}, {1, 1},
                                {1, 1}, {2, 2}, {4, 4}, {8, 4}, {4, 4}, {8, 8}, {4, 4},
                                {0, 0}, {0, 0}, {8, 8}, {8, 8}, {8, 8}};

TypeShape ShapeOf(uint16_t type) {
    return type < std::size(kTypes) ? kTypes[type] : TypeShape{0, 0};
}

// What differs between classic TIFF and BigTIFF.
struct Layout {
    uint64_t header;
    int counter;  // bytes of a directory's number of entries
    int offset;
};
constexpr Layout kLayouts[] = {{8, 2, 4}, {16, 8, 8}};

const Layout &LayoutOf(const TiffForm &form) {
    return kLayouts[form.big ? 1 : 0];
}

uint64_t EntryBytes(const Layout &layout) {
    return 4 + 2 * static_cast<uint64_t>(layout.offset);
}

void SwapUnits(std::string *bytes, uint16_t type) {
    const size_t unit = ShapeOf(type).unit;
    for (size_t i = 0; unit > 1 && i + unit <= bytes->size(); i += unit) {
        std::reverse(bytes->data() + i, bytes->data() + i + unit);
    }
}

bool PointsToDirectories(const TiffEntry &entry) {
    constexpr uint16_t kTags[] = {kTagExif, kTagGPS, kTagInteroperability, kTagSubIFDs};
    return entry.type == kTiffIFD || entry.type == kTiffIFD8 ||
           std::find(std::begin(kTags), std::end(kTags), entry.tag) != std::end(kTags);
}

struct Reader {
    const TiffSource *tiff;
    uint64_t bytesLeft = kMaxBytes;
    int directoriesLeft = kMaxDirectories;
    bool whole = true;
};

bool ReadOne(Reader *reader, uint64_t place, TiffDirectory *directory);

bool ReadChildren(Reader *reader, TiffEntry *entry) {
    for (const uint64_t place : NumbersOf(*entry)) {
        if (!ReadOne(reader, place, &entry->children.emplace_back())) {
            return false;
        }
    }
    return !entry->children.empty();
}

// `bytes` are those of the entry in its directory, which is at `place`.
bool ReadEntry(Reader *reader, const std::string &bytes, uint64_t place, TiffEntry *entry) {
    const TiffForm &form = reader->tiff->form;
    const Layout &layout = LayoutOf(form);
    entry->tag = static_cast<uint16_t>(NumberAt(bytes, 0, 2, form.bigEndian));
    entry->type = static_cast<uint16_t>(NumberAt(bytes, 2, 2, form.bigEndian));
    entry->count = NumberAt(bytes, 4, layout.offset, form.bigEndian);
    const uint64_t size = ShapeOf(entry->type).bytes;
    const size_t valueField = 4 + static_cast<size_t>(layout.offset);
    if (size == 0 || entry->count > reader->bytesLeft / size) {
        return false;
    }
    const bool inside = entry->count * size <= static_cast<uint64_t>(layout.offset);
    entry->place = inside ? place + valueField : NumberAt(bytes, valueField, layout.offset, form.bigEndian);
    if (!reader->tiff->read(entry->place, entry->count * size, &entry->bytes)) {
        return false;
    }
    reader->bytesLeft -= entry->bytes.size();
    if (form.bigEndian) {
        SwapUnits(&entry->bytes, entry->type);
    }
    return !PointsToDirectories(*entry) || ReadChildren(reader, entry);
}

// The thumbnail's bytes become those of the entry that says where they are.
void TakeThumbnail(Reader *reader, TiffDirectory *directory) {
    TiffEntry *thumbnail = FindEntry(directory, kTagThumbnail);
    const uint64_t bytes = NumberOf(*directory, kTagThumbnailBytes, 0);
    if (thumbnail != nullptr) {
        const std::vector<uint64_t> place = NumbersOf(*thumbnail);
        if (place.size() != 1 || bytes > reader->bytesLeft ||
            !reader->tiff->read(place[0], bytes, &thumbnail->bytes)) {
            RemoveEntry(directory, kTagThumbnail);
            RemoveEntry(directory, kTagThumbnailBytes);
            reader->whole = false;
        }
    }
}

bool ReadOne(Reader *reader, uint64_t place, TiffDirectory *directory) {
    const TiffForm &form = reader->tiff->form;
    const Layout &layout = LayoutOf(form);
    std::string bytes;
    if (reader->directoriesLeft-- <= 0 ||
        !reader->tiff->read(place, static_cast<uint64_t>(layout.counter), &bytes)) {
        return false;
    }
    const uint64_t entries = NumberAt(bytes, 0, layout.counter, form.bigEndian);
    uint64_t at = place + static_cast<uint64_t>(layout.counter);
    for (uint64_t i = 0; i < entries; ++i, at += EntryBytes(layout)) {
        TiffEntry entry;
        if (i == kMaxEntries || !reader->tiff->read(at, EntryBytes(layout), &bytes)) {
            reader->whole = false;
            return !directory->entries.empty();
        }
        if (ReadEntry(reader, bytes, at, &entry)) {
            directory->entries.push_back(std::move(entry));
        } else {
            reader->whole = false;
        }
    }
    if (reader->tiff->read(at, static_cast<uint64_t>(layout.offset), &bytes)) {
        directory->next = NumberAt(bytes, 0, layout.offset, form.bigEndian);
    }
    TakeThumbnail(reader, directory);
    return true;
}

// In a classic TIFF 64-bit numbers become those of 32 bits. False if they do not fit.
bool MakeClassic(TiffEntry *entry) {
    constexpr std::pair<uint16_t, uint16_t> kSmaller[] = {
        {kTiffLong8, kTiffLong}, {kTiffSLong8, 9}, {kTiffIFD8, kTiffIFD}};
    for (const auto &[wide, narrow] : kSmaller) {
        if (entry->type != wide || !entry->children.empty()) {
            continue;
        }
        std::string bytes;
        for (size_t i = 0; i + 8 <= entry->bytes.size(); i += 8) {
            const uint64_t number = NumberAt(entry->bytes, i, 8, false);
            const auto sign = static_cast<int64_t>(static_cast<int32_t>(number));
            if (wide == kTiffSLong8 ? static_cast<uint64_t>(sign) != number : number >= kClassicLimit) {
                return false;
            }
            bytes += NumberBytes(number, 4, false);
        }
        entry->bytes = bytes;
        entry->type = narrow;
        break;
    }
    return entry->count < kClassicLimit;
}

struct Packer {
    TiffForm form;
    uint64_t at;
    std::string bytes;

    // Where the next bytes go. Values begin at even places.
    uint64_t Place() {
        bytes.resize(bytes.size() + bytes.size() % 2);
        return at + bytes.size();
    }
};

void PackInto(Packer *packer, const TiffDirectory &directory);

// Appends what the entry points to, and returns its value field.
std::string PackValue(Packer *packer, TiffEntry *entry) {
    const bool bigEndian = packer->form.bigEndian;
    const int offset = LayoutOf(packer->form).offset;
    if (!entry->children.empty()) {
        std::vector<uint64_t> places;
        for (const TiffDirectory &child : entry->children) {
            places.push_back(packer->Place());
            PackInto(packer, child);
        }
        const uint16_t type = packer->form.big          ? uint16_t{kTiffIFD8}
                              : entry->type == kTiffIFD ? uint16_t{kTiffIFD}
                                                        : uint16_t{kTiffLong};
        *entry = NumbersEntry(entry->tag, type, places);
    }
    if (entry->tag == kTagThumbnail) {
        const uint64_t place = packer->Place();
        packer->bytes += entry->bytes;
        *entry = NumbersEntry(kTagThumbnail, kTiffLong, {place});
    }
    if (bigEndian) {
        SwapUnits(&entry->bytes, entry->type);
    }
    if (entry->bytes.size() <= static_cast<size_t>(offset)) {
        std::string field = entry->bytes;
        field.resize(static_cast<size_t>(offset));
        return field;
    }
    const uint64_t place = packer->Place();
    if (entry->tag == kTagMakerNote) {
        MoveMakerNote(&entry->bytes, entry->place, place);
    }
    packer->bytes += entry->bytes;
    return NumberBytes(place, offset, bigEndian);
}

void PackInto(Packer *packer, const TiffDirectory &directory) {
    const Layout &layout = LayoutOf(packer->form);
    const bool bigEndian = packer->form.bigEndian;
    std::vector<TiffEntry> entries;
    for (TiffEntry entry : directory.entries) {
        if (packer->form.big || MakeClassic(&entry)) {
            entries.push_back(std::move(entry));
        }
    }
    std::stable_sort(entries.begin(), entries.end(),
                     [](const TiffEntry &a, const TiffEntry &b) { return a.tag < b.tag; });
    std::string table = NumberBytes(entries.size(), layout.counter, bigEndian);
    packer->Place();
    const size_t tablePlace = packer->bytes.size();
    const size_t tableBytes =
        table.size() + entries.size() * EntryBytes(layout) + static_cast<size_t>(layout.offset);
    packer->bytes.resize(tablePlace + tableBytes);
    for (TiffEntry &entry : entries) {
        const std::string value = PackValue(packer, &entry);
        table += NumberBytes(entry.tag, 2, bigEndian) + NumberBytes(entry.type, 2, bigEndian) +
                 NumberBytes(entry.count, layout.offset, bigEndian) + value;
    }
    table += NumberBytes(directory.next, layout.offset, bigEndian);
    packer->bytes.replace(tablePlace, tableBytes, table);
}

}  // namespace

ByteSource BytesOfFile(const ByteFile &file) {
    return [&file](uint64_t place, uint64_t count, std::string *bytes) {
        return ReadAt(file, place, count, bytes);
    };
}

ByteSource BytesOfBlock(std::string_view block) {
    return [block](uint64_t place, uint64_t count, std::string *bytes) {
        const bool there = place <= block.size() && count <= block.size() - place;
        *bytes = there ? block.substr(place, count) : std::string_view();
        return there;
    };
}

bool OpenTiff(const ByteSource &read, TiffSource *tiff) {
    std::string bytes;
    if (!read(0, 8, &bytes) || (bytes.compare(0, 2, "II") != 0 && bytes.compare(0, 2, "MM") != 0)) {
        return false;
    }
    tiff->read = read;
    tiff->form.bigEndian = bytes[0] == 'M';
    const uint64_t version = NumberAt(bytes, 2, 2, tiff->form.bigEndian);
    tiff->form.big = version == 43;
    const int offset = LayoutOf(tiff->form).offset;
    const uint64_t field = FirstDirectoryField(tiff->form);
    if ((version != 42 && version != 43) || !read(field, static_cast<uint64_t>(offset), &bytes)) {
        return false;
    }
    tiff->first = NumberAt(bytes, 0, offset, tiff->form.bigEndian);
    return true;
}

bool ReadDirectory(const TiffSource &tiff, uint64_t place, TiffDirectory *directory, bool *whole) {
    Reader reader = {&tiff};
    const bool read = ReadOne(&reader, place, directory);
    *whole = reader.whole;
    return read;
}

const TiffEntry *FindEntry(const TiffDirectory &directory, uint16_t tag) {
    const auto found = std::find_if(directory.entries.begin(), directory.entries.end(),
                                    [=](const TiffEntry &entry) { return entry.tag == tag; });
    return found == directory.entries.end() ? nullptr : &*found;
}

TiffEntry *FindEntry(TiffDirectory *directory, uint16_t tag) {
    return const_cast<TiffEntry *>(FindEntry(*directory, tag));
}

void RemoveEntry(TiffDirectory *directory, uint16_t tag) {
    std::erase_if(directory->entries, [=](const TiffEntry &entry) { return entry.tag == tag; });
}

void SetEntry(TiffDirectory *directory, TiffEntry entry) {
    RemoveEntry(directory, entry.tag);
    directory->entries.push_back(std::move(entry));
}

TiffEntry TextEntry(uint16_t tag, const std::string &text) {
    return BytesEntry(tag, kTiffASCII, text + '\0');
}

TiffEntry BytesEntry(uint16_t tag, uint16_t type, const std::string &bytes) {
    return {tag, type, bytes.size(), bytes, 0, {}};
}

TiffEntry NumbersEntry(uint16_t tag, uint16_t type, const std::vector<uint64_t> &numbers) {
    const TypeShape shape = ShapeOf(type);
    TiffEntry entry = {tag, type, numbers.size() * shape.unit / shape.bytes, {}, 0, {}};
    for (const uint64_t number : numbers) {
        entry.bytes += NumberBytes(number, shape.unit, false);
    }
    return entry;
}

std::vector<uint64_t> NumbersOf(const TiffEntry &entry) {
    constexpr uint16_t kWhole[] = {kTiffByte, kTiffShort, kTiffLong, kTiffIFD, kTiffLong8, kTiffIFD8};
    std::vector<uint64_t> numbers;
    if (std::find(std::begin(kWhole), std::end(kWhole), entry.type) != std::end(kWhole)) {
        const size_t unit = ShapeOf(entry.type).unit;
        for (size_t i = 0; i + unit <= entry.bytes.size(); i += unit) {
            numbers.push_back(NumberAt(entry.bytes, i, static_cast<int>(unit), false));
        }
    }
    return numbers;
}

uint64_t NumberOf(const TiffDirectory &directory, uint16_t tag, uint64_t otherwise) {
    const TiffEntry *entry = FindEntry(directory, tag);
    const std::vector<uint64_t> numbers = entry == nullptr ? std::vector<uint64_t>() : NumbersOf(*entry);
    return numbers.empty() ? otherwise : numbers.front();
}

std::string PackDirectory(const TiffDirectory &directory, const TiffForm &form, uint64_t at) {
    Packer packer = {form, at, {}};
    PackInto(&packer, directory);
    return packer.bytes;
}

std::string PackBlock(const TiffDirectory &directory, const TiffDirectory *next, bool bigEndian) {
    const TiffForm form = {bigEndian, false};
    const uint64_t first = LayoutOf(form).header;
    std::string block = bigEndian ? "MM" : "II";
    block += NumberBytes(42, 2, bigEndian) + NumberBytes(first, 4, bigEndian);
    TiffDirectory chained = directory;
    chained.next = 0;
    std::string packed = PackDirectory(chained, form, first);
    if (next != nullptr) {
        // The length does not depend on the offset.
        packed.resize(packed.size() + packed.size() % 2);
        chained.next = first + packed.size();
        const size_t length = packed.size();
        packed = PackDirectory(chained, form, first);
        packed.resize(length);
        TiffDirectory last = *next;
        last.next = 0;
        packed += PackDirectory(last, form, chained.next);
    }
    return block + packed;
}

uint64_t FirstDirectoryField(const TiffForm &form) {
    return LayoutOf(form).header - static_cast<uint64_t>(LayoutOf(form).offset);
}

bool AppendDirectory(const TiffDirectory &directory, const TiffForm &form, uint64_t field, ByteFile *file,
                     uint64_t *next) {
    const Layout &layout = LayoutOf(form);
    const uint64_t at = file->size + file->size % 2;
    const std::string bytes = PackDirectory(directory, form, at);
    if (!form.big && at + bytes.size() >= kClassicLimit) {
        errno = EFBIG;
        return false;
    }
    if (next != nullptr) {
        const uint64_t entries = NumberAt(bytes, 0, layout.counter, form.bigEndian);
        *next = at + static_cast<uint64_t>(layout.counter) + entries * EntryBytes(layout);
    }
    // The header changes last, so that the old directory counts until the new one is whole.
    return WriteAt(file, at, bytes) && WriteAt(file, field, NumberBytes(at, layout.offset, form.bigEndian));
}
