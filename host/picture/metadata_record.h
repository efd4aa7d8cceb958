// Metadata on the way from one file to another. Each container is read and written by a source file of its
// own.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "host/container/byte_file.h"
#include "host/container/container.h"
#include "host/container/jpeg_segments.h"
#include "host/container/png_chunks.h"
#include "host/container/tiff_directory.h"
#include "host/container/webp_chunks.h"

struct Exif {
    std::string block;     // as in its file, from the byte order on; empty for none, and out of a TIFF
    bool readable = true;  // false: nothing but the block is known
    bool whole = true;     // false: the directory lacks something that was damaged
    bool changed = false;  // the directory is more than the block
    bool bigEndian = false;
    TiffDirectory directory;  // the first, without tags that describe the storage of pixels
    std::optional<TiffDirectory> thumbnail;
};

struct Resolution {
    double horizontal, vertical;
    uint16_t unit;  // as in TIFF: 1 for none, 2 for inches, 3 for centimetres
};

// What users call the kinds of metadata.
constexpr char kExifData[] = "EXIF data";
constexpr char kSomeExifData[] = "damaged EXIF data";
constexpr char kLargeExifData[] = "EXIF beyond 64 KB";
constexpr char kIptcData[] = "IPTC data";
constexpr char kXmpData[] = "XMP data";
constexpr char kPhotoshopData[] = "Photoshop data";
constexpr char kResolution[] = "resolution";
constexpr char kProfile[] = "profile";
constexpr char kComments[] = "comments";
constexpr char kTexts[] = "texts";
constexpr char kMirroring[] = "mirroring";
constexpr char kGamma[] = "gamma";
constexpr char kFurtherPictures[] = "embedded pictures";
constexpr char kSegments[] = "application segments";
constexpr char kChunks[] = "damaged chunks";
constexpr char kDamagedMetadata[] = "damaged metadata";

struct Metadata {
    Container container = Container::other;  // that it comes from
    Exif exif;
    std::string xmp;
    std::string profile;
    std::string photoshop;  // resources, without IPTC's
    std::string iptc;
    std::vector<std::string> comments;
    std::vector<std::pair<std::string, std::string>> texts;  // keyword and UTF-8
    std::optional<Resolution> resolution;                    // the container's own
    // The input's, for an output of the same kind.
    std::vector<JpegSegment> segments;
    std::vector<PngChunk> pngChunks;
    std::vector<WebpChunk> webpChunks;
    std::set<std::string> lost;
    // Losses that only outputs of other kinds have.
    std::set<std::string> lostElsewhere;
};

// These return false for a file of another kind, or damaged beyond reading.
bool TakeHeif(const ByteFile &file, Metadata *metadata);
bool TakeJpeg(const ByteFile &file, Metadata *metadata);
bool TakePng(const ByteFile &file, Metadata *metadata);
bool TakeTiff(const ByteFile &file, Metadata *metadata);
bool TakeWebp(const ByteFile &file, Metadata *metadata);

// For outputs of other kinds: takes out of a TIFF's or WebP's directory what has places of its own there.
void TakeOutBlocks(Metadata *metadata);

// For outputs whose pixels are RGB, whatever they were.
void DropGreyProfile(Metadata *metadata);

// These return false, with errno, when the file cannot be written.
bool PutHeif(Metadata *metadata, ByteFile *file);
bool PutJpeg(Metadata *metadata, ByteFile *file);
bool PutPng(Metadata *metadata, ByteFile *file);
bool PutTiff(Metadata *metadata, ByteFile *file);
bool PutWebp(Metadata *metadata, ByteFile *file);
