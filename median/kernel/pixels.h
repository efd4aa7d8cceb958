// How pixels of each format are read, used in calculations and written.
//
// Between source and target a pixel is packed into one or two words that hold its samples, so that carrying
// the current choice through a median takes few registers. Distances are computed between points, which are
// unpacked from them.
#pragma once

#include "simd.h"

namespace HYBRID_VARIANT {

template <std::size_t Words>
struct Packed {
    Int word[Words];
};

template <typename Vector, std::size_t Components>
struct Point {
    Vector component[Components];
};

// A line of vectors for each word of a pixel, or for each component of a point.
template <std::size_t Words, std::size_t Columns>
using PackedLine = Int[Words][Columns];
template <class Format, std::size_t Columns>
using PointLine = typename Format::Component[Format::kComponents][Columns];

// A line of components, in image order.
template <class Format, std::size_t Pixels>
using TailLine = typename Format::ComponentValue[Format::kComponents][Pixels];

template <class Format, std::size_t Columns>
inline auto LoadPoint(const typename Format::Component (&line)[Format::kComponents][Columns], int column) {
    Point<typename Format::Component, Format::kComponents> point;
    for (std::size_t i = 0; i < Format::kComponents; ++i) {
        point.component[i] = line[i][column];
    }
    return point;
}

template <class Format, std::size_t Pixels>
inline auto LoadTail(const typename Format::ComponentValue (&tail)[Format::kComponents][Pixels], int pixel) {
    Point<typename Format::Component, Format::kComponents> point;
    for (std::size_t i = 0; i < Format::kComponents; ++i) {
        point.component[i] = Load(&tail[i][pixel]);
    }
    return point;
}

template <std::size_t Words, std::size_t Columns>
inline Packed<Words> LoadPacked(const Int (&line)[Words][Columns], int column) {
    Packed<Words> packed;
    for (std::size_t i = 0; i < Words; ++i) {
        packed.word[i] = line[i][column];
    }
    return packed;
}

template <std::size_t Words, std::size_t Columns>
inline void StorePacked(const Packed<Words> &packed, Int (&line)[Words][Columns], int column) {
    for (std::size_t i = 0; i < Words; ++i) {
        line[i][column] = packed.word[i];
    }
}

// Samples as they are compared.
struct Same {
    static Int Compared(Int sample) { return sample; }
};
struct Halved {
    static Int Compared(Int sample) { return (sample + 1) >> 1; }
};

template <typename SampleType, class Scale = Same>
struct Gray {
    using Sample = SampleType;
    static constexpr int kSamplesPerPixel = 1;
    static constexpr std::size_t kWords = 1;
    using Component = Float;
    using ComponentValue = float;
    static constexpr std::size_t kComponents = 1;

    static void Read(const Sample *from, std::int32_t *const *words, int at) { words[0][at] = from[0]; }

    static void Write(const std::int32_t *const *words, int at, Sample *to) {
        to[0] = static_cast<Sample>(words[0][at]);
    }

    static Point<Float, 1> Unpack(const Packed<1> &p) { return {{ToFloat(Scale::Compared(p.word[0]))}}; }

    // As for three equal components.
    static Float SquaredDistance(const Point<Float, 1> &a, const Point<Float, 1> &b) {
        const Float d = a.component[0] - b.component[0];
        const Float square = d * d;
        return (square + square) + square;
    }
};

struct Rgb8 {
    using Sample = std::uint8_t;
    static constexpr int kSamplesPerPixel = 3;
    static constexpr std::size_t kWords = 1;
    using Component = Int;
    using ComponentValue = std::int32_t;
    static constexpr std::size_t kComponents = 2;

    static void Read(const Sample *from, std::int32_t *const *words, int at) {
        words[0][at] = from[0] | from[1] << 8 | from[2] << 16;
    }

    static void Write(const std::int32_t *const *words, int at, Sample *to) {
        const std::int32_t word = words[0][at];
        to[0] = static_cast<Sample>(word);
        to[1] = static_cast<Sample>(word >> 8);
        to[2] = static_cast<Sample>(word >> 16);
    }

    // Red and blue as a pair of 16-bit numbers, green alone.
    static Point<Int, 2> Unpack(const Packed<1> &p) {
        return {{p.word[0] & 0x00FF00FF, p.word[0] >> 8 & 0xFF}};
    }

    // The squares and their sums are integers below 2^24, so the order of the additions does not matter.
    static Float SquaredDistance(const Point<Int, 2> &a, const Point<Int, 2> &b) {
        const Int redBlue = SumSquaresOfPairs(SubtractPairs(a.component[0], b.component[0]));
        const Int green = SumSquaresOfPairs(SubtractPairs(a.component[1], b.component[1]));
        return ToFloat(redBlue + green);
    }
};

template <class Scale = Same>
struct Rgb16 {
    using Sample = std::uint16_t;
    static constexpr int kSamplesPerPixel = 3;
    static constexpr std::size_t kWords = 2;
    using Component = Float;
    using ComponentValue = float;
    static constexpr std::size_t kComponents = 3;

    static void Read(const Sample *from, std::int32_t *const *words, int at) {
        words[0][at] = static_cast<std::int32_t>(from[0] | static_cast<std::uint32_t>(from[1]) << 16);
        words[1][at] = from[2];
    }

    static void Write(const std::int32_t *const *words, int at, Sample *to) {
        to[0] = static_cast<Sample>(words[0][at]);
        to[1] = static_cast<Sample>(words[0][at] >> 16);
        to[2] = static_cast<Sample>(words[1][at]);
    }

    static Point<Float, 3> Unpack(const Packed<2> &p) {
        return {{ToFloat(Scale::Compared(p.word[0] & 0xFFFF)),
                 ToFloat(Scale::Compared(p.word[0] >> 16 & 0xFFFF)), ToFloat(Scale::Compared(p.word[1]))}};
    }

    static Float SquaredDistance(const Point<Float, 3> &a, const Point<Float, 3> &b) {
        const Float d0 = a.component[0] - b.component[0];
        const Float d1 = a.component[1] - b.component[1];
        const Float d2 = a.component[2] - b.component[2];
        return (d0 * d0 + d1 * d1) + d2 * d2;
    }
};

// The tag is the upper half of the last word.
struct Gray16Tagged : Gray<std::uint16_t> {
    static constexpr int kSamplesPerPixel = 2;

    static void Read(const Sample *from, std::int32_t *const *words, int at) {
        words[0][at] = static_cast<std::int32_t>(from[0] | static_cast<std::uint32_t>(from[1]) << 16);
    }

    static void Write(const std::int32_t *const *words, int at, Sample *to) {
        to[0] = static_cast<Sample>(words[0][at]);
        to[1] = static_cast<Sample>(words[0][at] >> 16);
    }

    static Point<Float, 1> Unpack(const Packed<1> &p) { return {{ToFloat(p.word[0] & 0xFFFF)}}; }
};

struct Rgb16Tagged : Rgb16<> {
    static constexpr int kSamplesPerPixel = 4;

    static void Read(const Sample *from, std::int32_t *const *words, int at) {
        for (std::ptrdiff_t i = 0; i < 2; ++i) {
            words[i][at] =
                static_cast<std::int32_t>(from[2 * i] | static_cast<std::uint32_t>(from[2 * i + 1]) << 16);
        }
    }

    static void Write(const std::int32_t *const *words, int at, Sample *to) {
        for (std::ptrdiff_t i = 0; i < 2; ++i) {
            to[2 * i] = static_cast<Sample>(words[i][at]);
            to[2 * i + 1] = static_cast<Sample>(words[i][at] >> 16);
        }
    }

    static Point<Float, 3> Unpack(const Packed<2> &p) {
        return Rgb16::Unpack({{p.word[0], p.word[1] & 0xFFFF}});
    }
};

}  // namespace HYBRID_VARIANT
