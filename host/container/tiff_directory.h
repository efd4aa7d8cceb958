// The directories of TIFF files and of EXIF blocks, which are TIFFs without pixels. Values keep their types
// and bytes, so that tags of any kind go from file to file.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "host/container/byte_file.h"

// Tags that something is done with.
enum TiffTag : uint16_t {
    kTagNewSubfileType = 254,
    kTagImageWidth = 256,
    kTagImageHeight = 257,
    kTagBitsPerSample = 258,
    kTagCompression = 259,
    kTagPhotometric = 262,
    kTagImageDescription = 270,
    kTagStripOffsets = 273,
    kTagOrientation = 274,
    kTagSamplesPerPixel = 277,
    kTagStripByteCounts = 279,
    kTagXResolution = 282,
    kTagYResolution = 283,
    kTagResolutionUnit = 296,
    kTagSoftware = 305,
    kTagDateTime = 306,
    kTagArtist = 315,
    kTagPredictor = 317,
    kTagTileWidth = 322,
    kTagTileHeight = 323,
    kTagTileOffsets = 324,
    kTagTileByteCounts = 325,
    kTagSubIFDs = 330,
    kTagExtraSamples = 338,
    kTagSampleFormat = 339,
    kTagThumbnail = 513,
    kTagThumbnailBytes = 514,
    kTagXMP = 700,
    kTagCopyright = 33432,
    kTagIPTC = 33723,
    kTagPhotoshop = 34377,
    kTagExif = 34665,
    kTagProfile = 34675,
    kTagGPS = 34853,
    kTagMakerNote = 37500,
    kTagUserComment = 37510,
    kTagInteroperability = 40965,
};

enum TiffType : uint16_t {
    kTiffByte = 1,
    kTiffASCII = 2,
    kTiffShort = 3,
    kTiffLong = 4,
    kTiffRational = 5,
    kTiffUndefined = 7,
    kTiffIFD = 13,
    kTiffLong8 = 16,
    kTiffSLong8 = 17,
    kTiffIFD8 = 18,
};

struct TiffDirectory;

struct TiffEntry {
    uint16_t tag = 0;
    uint16_t type = 0;
    uint64_t count = 0;
    std::string bytes;                    // numbers in little-endian order
    uint64_t place = 0;                   // where the bytes were
    std::vector<TiffDirectory> children;  // instead of bytes, where the entry points to directories
};

struct TiffDirectory {
    std::vector<TiffEntry> entries;
    uint64_t next = 0;  // where the file's next directory is; 0 for none
};

struct TiffForm {
    bool bigEndian = false;
    bool big = false;  // BigTIFF
};

// Gets bytes at a place; false where there are none.
using ByteSource = std::function<bool(uint64_t place, uint64_t count, std::string *bytes)>;

// Both borrow what they read from.
ByteSource BytesOfFile(const ByteFile &file);
ByteSource BytesOfBlock(std::string_view block);

struct TiffSource {
    ByteSource read;
    TiffForm form;
    uint64_t first = 0;  // where the first directory is
};

// False for what is no TIFF.
bool OpenTiff(const ByteSource &read, TiffSource *tiff);

// Reads a directory and those that its entries point to. Entries that are damaged are left out, and `whole`
// becomes false. Returns false where no directory can be read at all.
bool ReadDirectory(const TiffSource &tiff, uint64_t place, TiffDirectory *directory, bool *whole);

const TiffEntry *FindEntry(const TiffDirectory &directory, uint16_t tag);
TiffEntry *FindEntry(TiffDirectory *directory, uint16_t tag);
void RemoveEntry(TiffDirectory *directory, uint16_t tag);
// Replaces the entry of the same tag, if there is one.
void SetEntry(TiffDirectory *directory, TiffEntry entry);

TiffEntry TextEntry(uint16_t tag, const std::string &text);
TiffEntry BytesEntry(uint16_t tag, uint16_t type, const std::string &bytes);
TiffEntry NumbersEntry(uint16_t tag, uint16_t type, const std::vector<uint64_t> &numbers);
// The entry's whole numbers; empty for other types.
std::vector<uint64_t> NumbersOf(const TiffEntry &entry);
// The first of the tag's whole numbers.
uint64_t NumberOf(const TiffDirectory &directory, uint16_t tag, uint64_t otherwise);

// The bytes of a directory and all that it holds, for a file's place `at`, where the directory itself begins.
// What a classic TIFF cannot express is left out. Maker notes are told where they have moved to.
std::string PackDirectory(const TiffDirectory &directory, const TiffForm &form, uint64_t at);

// An EXIF block, from its byte order on. `next` is the directory of its thumbnail, or null.
std::string PackBlock(const TiffDirectory &directory, const TiffDirectory *next, bool bigEndian);

// Appends the directory to the file and makes the `field`, the place of an offset, point to it. `next`, if
// not null, is where it points to the one behind it. False, with errno, when it cannot be written.
bool AppendDirectory(const TiffDirectory &directory, const TiffForm &form, uint64_t field, ByteFile *file,
                     uint64_t *next = nullptr);
// Where the header points to the first directory.
uint64_t FirstDirectoryField(const TiffForm &form);
