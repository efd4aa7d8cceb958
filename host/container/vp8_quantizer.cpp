#include "host/container/vp8_quantizer.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr size_t kFrameHeader = 10;  // tag, start code, width and height
constexpr int kSegments = 4;

// The format's arithmetic decoder, for bits that are 0 and 1 equally often.
struct BitReader {
    std::string_view bytes;
    size_t place = 0;
    uint32_t value = 0, range = 255;
    int shifts = 0;

    uint32_t NextByte() { return place < bytes.size() ? static_cast<uint8_t>(bytes[place++]) : 0; }

    int Bit() {
        const uint32_t split = 1 + ((range - 1) * 128 >> 8);
        const bool one = value >= split << 8;
        range = one ? range - split : split;
        value -= one ? split << 8 : 0;
        while (range < 128) {
            value <<= 1;
            range <<= 1;
            if (++shifts == 8) {
                shifts = 0;
                value |= NextByte();
            }
        }
        return one ? 1 : 0;
    }

    int Number(int bits) {
        int number = 0;
        while (bits-- > 0) {
            number = number << 1 | Bit();
        }
        return number;
    }

    int SignedIfThere(int bits) {
        if (Bit() == 0) {
            return 0;
        }
        const int number = Number(bits);
        return Bit() != 0 ? -number : number;
    }
};

// What stands between the start and the quantizer. Returns the segments' own, if they have any.
std::optional<Vp8Quantizers> ReadSegments(BitReader *reader) {
    std::optional<Vp8Quantizers> chosen;
    const bool map = reader->Bit() != 0;
    if (reader->Bit() != 0) {
        const bool absolute = reader->Bit() != 0;
        int own[kSegments];
        for (int &quantizer : own) {
            quantizer = reader->SignedIfThere(7);
        }
        for (int i = 0; i < kSegments; ++i) {
            reader->SignedIfThere(6);
        }
        const auto [finest, coarsest] = std::minmax_element(std::begin(own), std::end(own));
        if (absolute) {
            chosen = {*coarsest, *finest};
        }
    }
    for (int i = 0; map && i < kSegments - 1; ++i) {
        if (reader->Bit() != 0) {
            reader->Number(8);
        }
    }
    return chosen;
}

}  // namespace

std::optional<Vp8Quantizers> ReadVp8Quantizers(std::string_view chunk) {
    // An even first byte is that of a whole picture.
    if (chunk.size() < kFrameHeader + 2 || (chunk[0] & 1) != 0) {
        return std::nullopt;
    }
    BitReader reader = {chunk.substr(kFrameHeader)};
    reader.value = reader.NextByte() << 8;
    reader.value |= reader.NextByte();
    reader.Number(2);  // colour space and clamping
    const auto ofSegments = reader.Bit() != 0 ? ReadSegments(&reader) : std::nullopt;
    // The filter: kind, level, sharpness, and changes to it.
    reader.Number(1 + 6 + 3);
    if (reader.Bit() != 0 && reader.Bit() != 0) {
        for (int i = 0; i < 2 * kSegments; ++i) {
            reader.SignedIfThere(6);
        }
    }
    reader.Number(2);  // number of parts
    const int base = reader.Number(7);
    return ofSegments.value_or(Vp8Quantizers{base, base});
}
