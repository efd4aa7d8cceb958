#include "host/picture/picture_writer.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "host/picture/file_probe.h"
#include "host/picture/picture_mode.h"

namespace {

// From the form of documents to that of files. XOR with 0 leaves the extra channels as they are.
OwnedObject<VipsImage> Flipped(OwnedObject<VipsImage> image, const Document &document) {
    const auto &flipped = ModeOfDocument(document.imageMode).flips;
    if (image == nullptr || flipped[document.colorPlanes - 1] == 0) {
        return image;
    }
    std::vector<double> flips(static_cast<size_t>(vips_image_get_bands(image.get())));
    std::copy_n(flipped, document.colorPlanes, flips.begin());
    VipsImage *made = nullptr;
    vips_boolean_const(image.get(), &made, VIPS_OPERATION_BOOLEAN_EOR, flips.data(),
                       static_cast<int>(flips.size()), nullptr);
    return OwnedObject<VipsImage>(made);
}

int GenerateRows(VipsRegion *region, void *, void *data, void *, gboolean *) {
    const auto &rows = *static_cast<const RowSource *>(data);
    const VipsRect &wanted = region->valid;
    const auto pixel = static_cast<int64_t>(vips_image_get_bands(region->im)) *
                       static_cast<int64_t>(vips_format_sizeof(vips_image_get_format(region->im)));
    for (int64_t y = 0; y < wanted.height; ++y) {
        const uint8_t *row = rows(wanted.top + static_cast<int32_t>(y));
        if (row == nullptr) {
            return -1;
        }
        std::memcpy(region->data + y * region->bpl, row + pixel * wanted.left,
                    static_cast<size_t>(pixel * wanted.width));
    }
    return 0;
}

bool IsPremultiplied(const Picture &picture) {
    const Document &document = picture.document;
    return document.transparency != 0 &&
           picture.extraSamples[static_cast<size_t>(document.transparency - document.colorPlanes)] ==
               kAssociatedAlpha;
}

// Divides the transparency out of the colours.
OwnedObject<VipsImage> Unpremultiplied(OwnedObject<VipsImage> image) {
    VipsImage *divided = nullptr;
    if (image == nullptr || vips_unpremultiply(image.get(), &divided, nullptr) != 0) {
        return nullptr;
    }
    const OwnedObject<VipsImage> fractions(divided);
    VipsImage *rounded = nullptr;
    vips_rint(divided, &rounded, nullptr);
    const OwnedObject<VipsImage> whole(rounded);
    VipsImage *made = nullptr;
    if (rounded != nullptr) {
        vips_cast(rounded, &made, image->BandFmt, nullptr);
    }
    return OwnedObject<VipsImage>(made);
}

// An image without pixels of its own. One thread asks for its rows, so that they come in order.
OwnedObject<VipsImage> ImageOf(const Picture &picture, const PictureFormat &format, const RowSource *rows) {
    const Document &document = picture.document;
    const PictureMode &mode = ModeOfDocument(document.imageMode);
    OwnedObject<VipsImage> image(vips_image_new());
    vips_image_init_fields(image.get(), document.width, document.height, document.planes, mode.format,
                           VIPS_CODING_NONE, mode.interpretation, 1, 1);
    CopyMetadata(picture.metadata.get(), image.get());
    vips_image_set_int(image.get(), VIPS_META_CONCURRENCY, 1);
    if (vips_image_pipelinev(image.get(), VIPS_DEMAND_STYLE_THINSTRIP, nullptr) != 0 ||
        vips_image_generate(image.get(), nullptr, GenerateRows, nullptr, const_cast<RowSource *>(rows),
                            nullptr) != 0) {
        return nullptr;
    }
    image = Flipped(std::move(image), document);
    if (image != nullptr) {
        image->Type = mode.interpretation;
    }
    // Only TIFF, which holds any channel, has an alpha of this kind.
    if (format.maxExtraPlanes == 1 && IsPremultiplied(picture)) {
        image = Unpremultiplied(std::move(image));
    }
    return image;
}

}  // namespace

MaybeFailure WritePicture(const Picture &picture, const PictureFormat &format, const SaveOptions &options,
                          const std::string &path, const std::string &outputFile, const RowSource &rows) {
    const OwnedObject<VipsImage> image = ImageOf(picture, format, &rows);
    if (image == nullptr || format.save(image.get(), path.c_str(), picture.storage, options) != 0) {
        return FileFailure(outputFile, "cannot be written: " + TakeVipsError());
    }
    // The library calls all of a TIFF's extra channels transparency. Other formats have no such thing to
    // change.
    const bool changes = format.maxExtraPlanes > 1 && !picture.extraSamples.empty();
    return !changes || ChangeTiffExtraSamples(path, picture.extraSamples)
               ? std::nullopt
               : MaybeFailure(
                     FileFailure(outputFile, "cannot be written: the kinds of its channels do not go in"));
}
