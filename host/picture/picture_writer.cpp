#include "host/picture/picture_writer.h"

#include <algorithm>
#include <cstring>
#include <vector>

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

// An image without pixels of its own. One thread asks for its rows, so that they come in order.
OwnedObject<VipsImage> ImageOf(const Picture &picture, const RowSource *rows) {
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
    return image;
}

}  // namespace

MaybeFailure WritePicture(const Picture &picture, const PictureFormat &format, const SaveOptions &options,
                          const std::string &path, const std::string &outputFile, const RowSource &rows) {
    const OwnedObject<VipsImage> image = ImageOf(picture, &rows);
    return image == nullptr || format.save(image.get(), path.c_str(), picture.storage, options) != 0
               ? MaybeFailure(FileFailure(outputFile, "cannot be written: " + TakeVipsError()))
               : std::nullopt;
}
