#include "host/container/heif_boxes.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <utility>
#include <vector>

#include "host/container/byte_order.h"

namespace {

constexpr uint64_t kBoxHead = 8;          // length and type
constexpr uint64_t kVersion = 4;          // version and flags, at the start of some boxes
constexpr uint64_t kMaxBytes = 64 << 20;  // of the directory, and of an item; chosen
constexpr uint64_t kMaxItems = 65535;     // and of all their parts
constexpr int kMaxBoxesBefore = 64;
constexpr char kXmpType[] = "application/rdf+xml";
const std::string kExifStart("Exif\0\0", 6);

std::string Number(uint64_t number, int count) {
    return NumberBytes(number, count, true);
}

// Reads on and on; beyond the end, zeros, and it is no more sound.
struct Cursor {
    std::string_view bytes;
    size_t place = 0;
    bool sound = true;

    std::string_view Take(uint64_t count) {
        sound = sound && count <= bytes.size() - place;
        const std::string_view taken = sound ? bytes.substr(place, count) : std::string_view();
        place += taken.size();
        return taken;
    }
    uint64_t Number(int count) {
        const std::string_view taken = Take(static_cast<uint64_t>(count));
        return sound ? NumberAt(taken, 0, count, true) : 0;
    }
    // Up to a zero.
    std::string_view Text() {
        const std::string_view text = Take(std::min(bytes.find('\0', place), bytes.size()) - place);
        Take(1);
        return text;
    }
};

struct Box {
    std::string type;
    std::string bytes;  // without its head
};

bool ReadBoxes(Cursor cursor, std::vector<Box> *boxes) {
    while (cursor.sound && cursor.place < cursor.bytes.size()) {
        uint64_t length = cursor.Number(4);
        const std::string type(cursor.Take(4));
        length = length == 0 ? cursor.bytes.size() - cursor.place : length - kBoxHead;
        boxes->push_back({type, std::string(cursor.Take(length))});
    }
    return cursor.sound;
}

std::string PackBox(const std::string &type, const std::string &bytes) {
    return Number(kBoxHead + bytes.size(), 4) + type + bytes;
}

std::string PackBoxes(const std::vector<Box> &boxes) {
    std::string packed;
    for (const Box &box : boxes) {
        packed += PackBox(box.type, box.bytes);
    }
    return packed;
}

Box *FindBox(std::vector<Box> *boxes, const char *type) {
    const auto found =
        std::find_if(boxes->begin(), boxes->end(), [=](const Box &box) { return box.type == type; });
    return found == boxes->end() ? nullptr : &*found;
}

// The file's head: what comes before the directory of items, and the directory.
struct Head {
    uint64_t before = 0, bytes = 0;
    std::vector<Box> boxes;
};

bool ReadHead(const ByteFile &file, Head *head) {
    std::string bytes;
    uint64_t place = 0;
    for (int i = 0; i < kMaxBoxesBefore && ReadAt(file, place, kBoxHead, &bytes); ++i) {
        const uint64_t length = NumberAt(bytes, 0, 4, true);
        if (length < kBoxHead) {
            return false;
        }
        if (bytes.compare(4, 4, "meta") == 0) {
            *head = {place, place + length, {}};
            return length <= kMaxBytes && length >= kBoxHead + kVersion &&
                   ReadAt(file, place + kBoxHead + kVersion, length - kBoxHead - kVersion, &bytes) &&
                   ReadBoxes({bytes}, &head->boxes);
        }
        place += length;
    }
    return false;
}

// Where an item's bytes are.
struct Location {
    uint64_t item, method, reference, base;
    std::vector<std::pair<uint64_t, uint64_t>> parts;  // offsets and lengths
};
constexpr uint64_t kInFile = 0;
constexpr uint64_t kInDirectory = 1;

bool ReadLocations(std::vector<Box> *boxes, std::vector<Location> *locations) {
    const Box *box = FindBox(boxes, "iloc");
    if (box == nullptr) {
        return false;
    }
    Cursor cursor = {box->bytes};
    const uint64_t version = cursor.Number(4) >> 24;
    const uint64_t sizes = cursor.Number(2);
    uint64_t allParts = 0;
    const auto size = [=](int shift) { return static_cast<int>(sizes >> shift & 15); };
    if (size(12) > 8 || size(8) > 8 || size(4) > 8 || size(0) > 8) {
        return false;
    }
    for (uint64_t left = std::min(cursor.Number(version < 2 ? 2 : 4), kMaxItems); cursor.sound && left > 0;
         --left) {
        Location location = {};
        location.item = cursor.Number(version < 2 ? 2 : 4);
        location.method = version > 0 ? cursor.Number(2) & 15 : kInFile;
        location.reference = cursor.Number(2);
        location.base = cursor.Number(size(4));
        for (uint64_t parts = cursor.Number(2); cursor.sound && parts > 0; --parts) {
            cursor.sound = ++allParts <= kMaxItems;
            cursor.Number(version > 0 ? size(0) : 0);
            const uint64_t offset = cursor.Number(size(12));
            location.parts.emplace_back(offset, cursor.Number(size(8)));
        }
        locations->push_back(std::move(location));
    }
    return cursor.sound;
}

std::string PackLocations(const std::vector<Location> &locations) {
    constexpr uint64_t kVersion1 = 1 << 24;
    constexpr uint64_t kFourBytesEach = 0x4440;
    std::string packed = Number(kVersion1, 4) + Number(kFourBytesEach, 2) + Number(locations.size(), 2);
    for (const Location &location : locations) {
        packed += Number(location.item, 2) + Number(location.method, 2) + Number(location.reference, 2) +
                  Number(location.base, 4) + Number(location.parts.size(), 2);
        for (const auto &[offset, length] : location.parts) {
            packed += Number(offset, 4) + Number(length, 4);
        }
    }
    return packed;
}

std::string BytesOfItem(const ByteFile &file, Head *head, uint64_t item) {
    std::vector<Location> locations;
    const Box *inner = FindBox(&head->boxes, "idat");
    std::string bytes, part;
    ReadLocations(&head->boxes, &locations);
    for (const Location &location : locations) {
        for (const auto &[offset, length] : location.parts) {
            const uint64_t place = location.base + offset;
            if (location.item != item || length > kMaxBytes - bytes.size()) {
                continue;
            }
            if (location.method == kInDirectory && inner != nullptr && place < inner->bytes.size()) {
                bytes += inner->bytes.substr(place, length);
            } else if (location.method == kInFile && ReadAt(file, place, length, &part)) {
                bytes += part;
            }
        }
    }
    return bytes;
}

// Behind an offset to them.
std::string ExifOfItem(const std::string &bytes) {
    const uint64_t offset = bytes.size() < 4 ? bytes.size() : 4 + NumberAt(bytes, 0, 4, true);
    const std::string exif = bytes.substr(std::min<uint64_t>(offset, bytes.size()));
    return exif.compare(0, kExifStart.size(), kExifStart) == 0 ? exif.substr(kExifStart.size()) : exif;
}

std::string ProfileIn(const Box &properties) {
    std::vector<Box> boxes, kinds;
    ReadBoxes({properties.bytes}, &boxes);
    const Box *container = FindBox(&boxes, "ipco");
    if (container != nullptr) {
        ReadBoxes({container->bytes}, &kinds);
    }
    for (const Box &kind : kinds) {
        if (kind.type == "colr" && (kind.bytes.starts_with("prof") || kind.bytes.starts_with("rICC"))) {
            return kind.bytes.substr(4);
        }
    }
    return {};
}

bool Unusable() {
    errno = EIO;
    return false;
}

struct NewItem {
    std::string type, contentType, bytes;
};

std::vector<NewItem> ItemsOf(const HeifMetadata &metadata) {
    std::vector<NewItem> items;
    if (!metadata.exif.empty()) {
        items.push_back({"Exif", {}, Number(kExifStart.size(), 4) + kExifStart + metadata.exif});
    }
    if (!metadata.xmp.empty()) {
        items.push_back({"mime", kXmpType, metadata.xmp});
    }
    return items;
}

std::string PackEntry(uint64_t id, const NewItem &item) {
    const std::string end(1, '\0');
    return PackBox("infe", Number(2 << 24, 4) + Number(id, 2) + Number(0, 2) + item.type + end +
                               (item.contentType.empty() ? "" : item.contentType + end));
}

// One more property, of the picture. A reader that does not know one that is needed has to give up.
bool AddProperty(const Box &property, bool needed, uint64_t picture, Box *properties) {
    constexpr uint64_t kMostProperties = 127;
    std::vector<Box> boxes, kinds;
    ReadBoxes({properties->bytes}, &boxes);
    Box *container = FindBox(&boxes, "ipco");
    Box *uses = FindBox(&boxes, "ipma");
    if (container == nullptr || uses == nullptr || !ReadBoxes({container->bytes}, &kinds) ||
        kinds.size() >= kMostProperties) {
        return Unusable();
    }
    container->bytes += PackBox(property.type, property.bytes);
    Cursor cursor = {uses->bytes};
    const uint64_t head = cursor.Number(4);
    const int bytes = (head & 1) != 0 ? 2 : 1;
    const int idBytes = head >> 24 == 0 ? 2 : 4;
    for (uint64_t left = cursor.Number(4); cursor.sound && left > 0; --left) {
        const uint64_t item = cursor.Number(idBytes);
        const size_t place = cursor.place;
        const uint64_t count = cursor.Number(1);
        cursor.Take(count * static_cast<uint64_t>(bytes));
        if (cursor.sound && item == picture) {
            const uint64_t mark = needed ? uint64_t{1} << (8 * bytes - 1) : 0;
            uses->bytes.insert(cursor.place, Number(mark | (kinds.size() + 1), bytes));
            SetNumber(&uses->bytes, place, count + 1, 1, true);
            properties->bytes = PackBoxes(boxes);
            return true;
        }
    }
    return Unusable();
}

}  // namespace

bool ReadHeifMetadata(const ByteFile &file, HeifMetadata *metadata) {
    Head head;
    if (!ReadHead(file, &head)) {
        return false;
    }
    std::vector<Box> entries;
    if (const Box *list = FindBox(&head.boxes, "iinf")) {
        Cursor cursor = {list->bytes};
        cursor.Number(cursor.Number(4) >> 24 == 0 ? 2 : 4);
        ReadBoxes({cursor.bytes.substr(cursor.place)}, &entries);
    }
    bool hasExif = false, hasXmp = false;  // the first ones count
    for (const Box &entry : entries) {
        Cursor cursor = {entry.bytes};
        const uint64_t version = cursor.Number(4) >> 24;
        const uint64_t item = cursor.Number(version < 3 ? 2 : 4);
        cursor.Number(2);
        const std::string_view type = cursor.Take(4);
        cursor.Text();
        if (type == "Exif" && !std::exchange(hasExif, true)) {
            metadata->exif = ExifOfItem(BytesOfItem(file, &head, item));
        } else if (type == "mime" && cursor.Text() == kXmpType && !std::exchange(hasXmp, true)) {
            metadata->xmp = BytesOfItem(file, &head, item);
        }
    }
    if (const Box *properties = FindBox(&head.boxes, "iprp")) {
        metadata->profile = ProfileIn(*properties);
    }
    return true;
}

bool AddHeifMetadata(const HeifMetadata &metadata, ByteFile *file) {
    Head head;
    std::vector<Location> locations;
    std::string start;
    if (!ReadHead(*file, &head) || !ReadLocations(&head.boxes, &locations) ||
        !ReadAt(*file, 0, head.before + kBoxHead + kVersion, &start)) {
        return Unusable();
    }
    Box *list = FindBox(&head.boxes, "iinf");
    const Box *primary = FindBox(&head.boxes, "pitm");
    Box *properties = FindBox(&head.boxes, "iprp");
    if (list == nullptr || list->bytes.size() < 6 || list->bytes[0] != 0 || primary == nullptr ||
        primary->bytes.size() != 6 || properties == nullptr) {
        return Unusable();
    }
    const uint64_t picture = NumberAt(primary->bytes, 4, 2, true);
    const Box profile = {"colr", "prof" + metadata.profile};
    const Box turn = {"irot", Number(static_cast<uint64_t>(metadata.quarterTurns), 1)};
    if ((!metadata.profile.empty() && !AddProperty(profile, false, picture, properties)) ||
        (metadata.quarterTurns != 0 && !AddProperty(turn, true, picture, properties))) {
        return false;
    }
    const std::vector<NewItem> items = ItemsOf(metadata);
    const size_t pictures = locations.size();
    uint64_t id = 0;
    for (const Location &location : locations) {
        id = std::max(id, location.item);
    }
    std::string references, data;
    SetNumber(&list->bytes, 4, NumberAt(list->bytes, 4, 2, true) + items.size(), 2, true);
    for (const NewItem &item : items) {
        list->bytes += PackEntry(++id, item);
        references += PackBox("cdsc", Number(id, 2) + Number(1, 2) + Number(picture, 2));
        locations.push_back({id, kInFile, 0, 0, {{data.size(), item.bytes.size()}}});
        data += item.bytes;
    }
    if (Box *known = FindBox(&head.boxes, "iref")) {
        known->bytes += references;
    } else if (!items.empty()) {
        head.boxes.push_back({"iref", Number(0, 4) + references});
    }
    // All offsets are counted from the file's start, and move by what the directory grows.
    FindBox(&head.boxes, "iloc")->bytes = PackLocations(locations);
    const uint64_t bytes = start.size() + PackBoxes(head.boxes).size();
    const uint64_t end = file->size - head.bytes + bytes;
    for (size_t i = 0; i < locations.size(); ++i) {
        if (locations[i].method == kInFile) {
            locations[i].base += i < pictures ? bytes - head.bytes : end + kBoxHead;
        }
    }
    if (end + kBoxHead + data.size() > UINT32_MAX || id > kMaxItems) {
        return Unusable();
    }
    FindBox(&head.boxes, "iloc")->bytes = PackLocations(locations);
    SetNumber(&start, head.before, bytes - head.before, 4, true);
    return ReplaceHead(file, head.bytes, start + PackBoxes(head.boxes)) &&
           (data.empty() || WriteAt(file, end, PackBox("mdat", data)));
}
