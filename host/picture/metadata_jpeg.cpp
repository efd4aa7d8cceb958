#include <glib.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <map>

#include "host/container/byte_order.h"
#include "host/picture/exif.h"
#include "host/picture/exiv2_library.h"
#include "host/picture/metadata_record.h"

namespace {

using namespace std::string_literals;

// Segments of one number are told apart by how they begin.
const std::string kJfif = "JFIF\0"s;
const std::string kExif = "Exif\0\0"s;
const std::string kXmp = "http://ns.adobe.com/xap/1.0/\0"s;
const std::string kXmpExtension = "http://ns.adobe.com/xmp/extension/\0"s;
const std::string kProfileStart = "ICC_PROFILE\0"s;
const std::string kPhotoshop = "Photoshop 3.0\0"s;
const std::string kFurther = "MPF\0"s;  // where further pictures are, behind the first

constexpr size_t kDigestBytes = 32;
constexpr size_t kJfifBytes = 14;
constexpr size_t kMaxProfileParts = 255;

bool Begins(const JpegSegment &segment, uint8_t marker, const std::string &start) {
    return segment.marker == marker && segment.bytes.compare(0, start.size(), start) == 0;
}

bool IsApplication(uint8_t marker) {
    return marker >= kJpegApp0 && marker <= kJpegApp15;
}

// Behind the start comes a part's number, from 1 on, and how many there are.
std::string ProfileOf(const std::vector<JpegSegment> &segments) {
    std::map<uint8_t, std::string> parts;
    const size_t head = kProfileStart.size() + 2;
    for (const JpegSegment &segment : segments) {
        if (Begins(segment, kJpegApp2, kProfileStart) && segment.bytes.size() >= head) {
            parts[static_cast<uint8_t>(segment.bytes[head - 2])] = segment.bytes.substr(head);
        }
    }
    std::string profile;
    for (const auto &[number, bytes] : parts) {
        profile += bytes;
    }
    return profile;
}

// The parts of an extended packet: digest, length of the whole, the part's place, bytes.
std::string ExtensionOf(const std::vector<JpegSegment> &segments) {
    constexpr size_t kHead = kDigestBytes + 8;
    std::map<uint64_t, std::string> parts;
    uint64_t length = 0;
    for (const JpegSegment &segment : segments) {
        const size_t start = kXmpExtension.size();
        if (Begins(segment, kJpegApp1, kXmpExtension) && segment.bytes.size() >= start + kHead) {
            length = NumberAt(segment.bytes, start + kDigestBytes, 4, true);
            parts[NumberAt(segment.bytes, start + kDigestBytes + 4, 4, true)] =
                segment.bytes.substr(start + kHead);
        }
    }
    std::string packet;
    for (const auto &[place, bytes] : parts) {
        packet += place == packet.size() ? bytes : "";
    }
    return packet.size() == length ? packet : "";
}

void TakeDensity(const std::string &jfif, Metadata *metadata) {
    if (jfif.size() < kJfifBytes) {
        return;
    }
    const auto unit = static_cast<uint16_t>(NumberAt(jfif, 7, 1, true));
    const auto x = static_cast<double>(NumberAt(jfif, 8, 2, true));
    const auto y = static_cast<double>(NumberAt(jfif, 10, 2, true));
    // Without a unit it is the shape of pixels.
    if ((unit == 1 || unit == 2) && x > 0 && y > 0) {
        metadata->resolution = {x, y, static_cast<uint16_t>(unit + 1)};
    }
}

// JFIF counts in whole numbers, of 16 bits. Without a resolution its pixels are square.
std::string JfifWith(const Resolution &resolution) {
    const double x = std::round(resolution.horizontal);
    const double y = std::round(resolution.vertical);
    const bool fits = x >= 1 && x <= UINT16_MAX && y >= 1 && y <= UINT16_MAX;
    return kJfif + "\1\1"s + NumberBytes(fits ? resolution.unit - uint64_t{1} : 0, 1, true) +
           NumberBytes(fits ? static_cast<uint64_t>(x) : 1, 2, true) +
           NumberBytes(fits ? static_cast<uint64_t>(y) : 1, 2, true) + "\0\0"s;
}

void AppendParts(uint8_t marker, const std::string &start, const std::string &bytes,
                 std::vector<JpegSegment> *segments) {
    const size_t most = kMaxSegmentBytes - start.size();
    for (size_t i = 0; i < bytes.size(); i += most) {
        segments->push_back({marker, start + bytes.substr(i, most)});
    }
}

void AppendProfile(Metadata *metadata, std::vector<JpegSegment> *segments) {
    const size_t most = kMaxSegmentBytes - kProfileStart.size() - 2;
    const size_t parts = (metadata->profile.size() + most - 1) / most;
    if (parts > kMaxProfileParts) {
        metadata->lost.insert(kProfile);
        return;
    }
    for (size_t i = 0; i < parts; ++i) {
        segments->push_back({kJpegApp2, kProfileStart + NumberBytes(i + 1, 1, true) +
                                            NumberBytes(parts, 1, true) +
                                            metadata->profile.substr(i * most, most)});
    }
}

// A packet that does not fit goes into an extension whole, and the first one names it.
void AppendXmp(const std::string &xmp, std::vector<JpegSegment> *segments) {
    if (xmp.size() <= kMaxSegmentBytes - kXmp.size()) {
        AppendParts(kJpegApp1, kXmp, xmp, segments);
        return;
    }
    char *digest = g_compute_checksum_for_string(G_CHECKSUM_MD5, xmp.data(), static_cast<gssize>(xmp.size()));
    std::string name = digest;
    g_free(digest);
    std::transform(name.begin(), name.end(), name.begin(), g_ascii_toupper);
    segments->push_back(
        {kJpegApp1,
         kXmp +
             "<x:xmpmeta xmlns:x='adobe:ns:meta/'><rdf:RDF "
             "xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'><rdf:Description rdf:about='' "
             "xmlns:xmpNote='http://ns.adobe.com/xmp/note/' xmpNote:HasExtendedXMP='" +
             name + "'/></rdf:RDF></x:xmpmeta>"});
    const std::string start = kXmpExtension + name + NumberBytes(xmp.size(), 4, true);
    const size_t most = kMaxSegmentBytes - start.size() - 4;
    for (size_t i = 0; i < xmp.size(); i += most) {
        segments->push_back({kJpegApp1, start + NumberBytes(i, 4, true) + xmp.substr(i, most)});
    }
}

void AppendExif(Metadata *metadata, std::vector<JpegSegment> *segments) {
    const std::string block = PackExif(metadata, kMaxSegmentBytes - kExif.size());
    AppendParts(kJpegApp1, block.empty() ? "" : kExif, block, segments);
}

// Segments that say how this very file is encoded, or where in it something else is.
bool GoesWithEncoding(const JpegSegment &segment) {
    return segment.marker == kJpegApp14 || Begins(segment, kJpegApp2, kFurther) ||
           !(IsApplication(segment.marker) || segment.marker == kJpegComment);
}

void CopySegments(Metadata *metadata, std::vector<JpegSegment> *segments) {
    bool exifIsThere = !metadata->exif.changed;
    for (const JpegSegment &segment : metadata->segments) {
        if (Begins(segment, kJpegApp2, kFurther)) {
            metadata->lost.insert(kFurtherPictures);
        } else if (metadata->exif.changed && Begins(segment, kJpegApp1, kExif)) {
            if (!exifIsThere) {
                AppendExif(metadata, segments);
            }
            exifIsThere = true;
        } else if (!GoesWithEncoding(segment)) {
            segments->push_back(segment);
        }
    }
    if (!exifIsThere) {
        AppendExif(metadata, segments);
    }
}

void MakeSegments(Metadata *metadata, std::vector<JpegSegment> *segments) {
    AppendExif(metadata, segments);
    AppendXmp(metadata->xmp, segments);
    AppendProfile(metadata, segments);
    AppendParts(kJpegApp13, kPhotoshop, WithIptc(metadata->photoshop, metadata->iptc), segments);
    for (const std::string &comment : metadata->comments) {
        AppendParts(kJpegComment, "", comment, segments);
    }
}

// The texts that EXIF has tags for, but comments stay comments.
void MoveTexts(Metadata *metadata) {
    std::vector<std::string> comments;
    comments.swap(metadata->comments);
    TakeTextsIntoExif(metadata);
    comments.swap(metadata->comments);
}

}  // namespace

bool TakeJpeg(const ByteFile &file, Metadata *metadata) {
    uint64_t headBytes = 0;
    std::string main;
    if (!ReadJpegSegments(file, &metadata->segments, &headBytes)) {
        return false;
    }
    for (const JpegSegment &segment : metadata->segments) {
        if (Begins(segment, kJpegApp0, kJfif)) {
            TakeDensity(segment.bytes, metadata);
        } else if (Begins(segment, kJpegApp1, kExif)) {
            TakeExifBlock(segment.bytes.substr(kExif.size()), &metadata->exif);
        } else if (Begins(segment, kJpegApp1, kXmp)) {
            main = segment.bytes.substr(kXmp.size());
        } else if (Begins(segment, kJpegApp13, kPhotoshop)) {
            metadata->photoshop += segment.bytes.substr(kPhotoshop.size());
        } else if (segment.marker == kJpegComment) {
            std::string comment = segment.bytes;
            comment.resize(std::min(comment.size(), comment.find_last_not_of('\0') + 1));
            metadata->comments.push_back(comment);
        } else if (Begins(segment, kJpegApp2, kFurther)) {
            metadata->lostElsewhere.insert(kFurtherPictures);
        } else if (IsApplication(segment.marker) && segment.marker != kJpegApp14 &&
                   segment.marker != kJpegApp0 && !Begins(segment, kJpegApp2, kProfileStart) &&
                   !Begins(segment, kJpegApp1, kXmpExtension)) {
            metadata->lostElsewhere.insert(kSegments);
        }
    }
    metadata->profile = ProfileOf(metadata->segments);
    const std::string extension = ExtensionOf(metadata->segments);
    metadata->xmp = extension.empty() ? main : MergedXmp(main, extension);
    if (metadata->xmp.empty() && !main.empty()) {
        metadata->xmp = main;
        metadata->lostElsewhere.insert(kXmpData);
    }
    TakeIptcOutOf(&metadata->photoshop, &metadata->iptc);
    return true;
}

bool PutJpeg(Metadata *metadata, ByteFile *file) {
    std::vector<JpegSegment> own;
    uint64_t headBytes = 0;
    if (!ReadJpegSegments(*file, &own, &headBytes)) {
        return false;
    }
    std::vector<JpegSegment> segments;
    if (metadata->container == Container::jpeg) {
        CopySegments(metadata, &segments);
    } else {
        MoveTexts(metadata);
        // CMYK and the like have a marker of their own instead.
        if (std::none_of(own.begin(), own.end(),
                         [](const auto &each) { return each.marker == kJpegApp14; })) {
            segments.push_back({kJpegApp0, JfifWith(ResolutionOf(*metadata).value_or(Resolution{1, 1, 1}))});
        }
        MakeSegments(metadata, &segments);
    }
    std::copy_if(own.begin(), own.end(), std::back_inserter(segments),
                 [](const JpegSegment &segment) { return segment.marker == kJpegApp14; });
    return ReplaceHead(file, headBytes, PackJpegHead(segments));
}
