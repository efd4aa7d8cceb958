// The system's basic types and result codes, as every layer above uses them.
#pragma once

#include <cstdint>

using Boolean = uint8_t;
using OSErr = int16_t;
using OSType = uint32_t;
using Fixed = int32_t;  // 16.16
using Ptr = char *;
using Handle = Ptr *;  // a relocatable block: the block's address is read through the handle
using StringPtr = uint8_t *;
using ConstStringPtr = const uint8_t *;  // a length byte, then that many characters
using Str255 = uint8_t[256];
using Str63 = uint8_t[64];

struct Point {
    int16_t v, h;
};

struct Rect {
    int16_t top, left, bottom, right;
};

struct RGBColor {
    uint16_t red, green, blue;
};

// A file or folder: its volume, the directory that holds it, and its name.
struct FSSpec {
    int16_t vRefNum;
    int32_t parID;
    Str63 name;
};

// Packs a code such as FourCharCode("nRad"), first character in the most significant byte.
consteval OSType FourCharCode(const char (&code)[5]) {
    OSType packed = 0;
    for (int i = 0; i < 4; ++i) {
        packed = (packed << 8) | static_cast<uint8_t>(code[i]);
    }
    return packed;
}

constexpr OSErr noErr = 0;
constexpr OSErr dskFulErr = -34;
constexpr OSErr nsvErr = -35;
constexpr OSErr ioErr = -36;
constexpr OSErr bdNamErr = -37;
constexpr OSErr eofErr = -39;
constexpr OSErr posErr = -40;
constexpr OSErr tmfoErr = -42;
constexpr OSErr fnfErr = -43;
constexpr OSErr wPrErr = -44;
constexpr OSErr fBsyErr = -47;
constexpr OSErr dupFNErr = -48;
constexpr OSErr opWrErr = -49;
constexpr OSErr paramErr = -50;
constexpr OSErr rfNumErr = -51;
constexpr OSErr permErr = -54;
constexpr OSErr memFullErr = -108;
constexpr OSErr dirNFErr = -120;
constexpr OSErr userCanceledErr = -128;
constexpr OSErr resNotFound = -192;
constexpr OSErr mapReadErr = -199;
constexpr OSErr notAFileErr = -1302;
