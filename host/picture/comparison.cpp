#include "host/picture/comparison.h"

#include <algorithm>
#include <iterator>

#include "host/picture/picture_mode.h"
#include "photoshop/image_modes.h"

namespace {

using Image = OwnedObject<VipsImage>;

constexpr int kSeam = 8;  // white columns between the halves
// In pixels; chosen to fit a large screen one to one. Larger pictures are cropped: scaling would hide the
// noise.
constexpr int kMaxSide = 2000;
constexpr int kMaxHalf = (kMaxSide - kSeam) / 2;

// How to scale a document's colour samples to a space that the picture library knows, for those it does not
// know as they are.
struct Scale {
    int16_t imageMode;
    VipsInterpretation interpretation;
    bool bytes;  // otherwise floats
    double factors[kMaxColorPlanes];
    double offsets[kMaxColorPlanes];
};

constexpr double kByteOf16 = 1.0 / 257;
constexpr Scale kScales[] = {
    {plugInModeGray32, VIPS_INTERPRETATION_B_W, true, {255}, {0}},
    {plugInModeLabColor, VIPS_INTERPRETATION_LAB, false, {100.0 / 255, 1, 1}, {0, -128, -128}},
    {plugInModeLab48, VIPS_INTERPRETATION_LAB, false, {100.0 / 65535, 1.0 / 256, 1.0 / 256}, {0, -128, -128}},
    {plugInModeCMYKColor, VIPS_INTERPRETATION_CMYK, true, {-1, -1, -1, -1}, {255, 255, 255, 255}},
    {plugInModeCMYK64,
     VIPS_INTERPRETATION_CMYK,
     true,
     {kByteOf16, kByteOf16, kByteOf16, kByteOf16},
     {0, 0, 0, 0}},
};

// Applies an operation from one image to another; null stays null.
template <typename Operation>
Image Apply(Image image, Operation operation) {
    VipsImage *made = nullptr;
    return Image(image != nullptr && operation(image.get(), &made) == 0 ? made : nullptr);
}

Image Scaled(Image image, const Document &document) {
    const auto *scale = std::find_if(std::begin(kScales), std::end(kScales), [&](const Scale &known) {
        return known.imageMode == document.imageMode;
    });
    if (scale == std::end(kScales)) {
        return image;
    }
    image = Apply(std::move(image), [&](VipsImage *in, VipsImage **out) {
        return vips_linear(in, out, scale->factors, scale->offsets, document.colorPlanes, "uchar",
                           scale->bytes, nullptr);
    });
    return Apply(std::move(image), [&](VipsImage *in, VipsImage **out) {
        return vips_copy(in, out, "interpretation", scale->interpretation, nullptr);
    });
}

// Goes through the picture's own profile if it has a usable one.
Image InDisplayColors(Image image) {
    if (image != nullptr && image->Type != VIPS_INTERPRETATION_LAB &&
        vips_image_get_typeof(image.get(), VIPS_META_ICC_NAME) != 0) {
        VipsImage *made = nullptr;
        if (vips_icc_transform(image.get(), &made, "srgb", "embedded", TRUE, "depth", 8, nullptr) == 0) {
            return Image(made);
        }
        vips_error_clear();
    }
    image = Apply(std::move(image), [](VipsImage *in, VipsImage **out) {
        return vips_colourspace(in, out, VIPS_INTERPRETATION_sRGB, nullptr);
    });
    return Apply(std::move(image),
                 [](VipsImage *in, VipsImage **out) { return vips_cast_uchar(in, out, nullptr); });
}

Image Middle(Image image) {
    return Apply(std::move(image), [](VipsImage *in, VipsImage **out) {
        const int width = std::min(vips_image_get_width(in), kMaxHalf);
        const int height = std::min(vips_image_get_height(in), kMaxSide);
        return vips_extract_area(in, out, (vips_image_get_width(in) - width) / 2,
                                 (vips_image_get_height(in) - height) / 2, width, height, nullptr);
    });
}

Image ViewOf(const Picture &picture, const PixelBlock &pixels) {
    const Document &document = picture.document;
    const PictureMode &mode = ModeOfDocument(document.imageMode);
    Image image(vips_image_new_from_memory(pixels.get(), static_cast<size_t>(PixelBytes(document)),
                                           document.width, document.height, document.planes, mode.format));
    if (image == nullptr) {
        return nullptr;
    }
    image->Type = mode.interpretation;
    CopyMetadata(picture.metadata.get(), image.get());
    image = Middle(Apply(std::move(image),
                         [](VipsImage *in, VipsImage **out) { return vips_autorot(in, out, nullptr); }));
    image = Apply(std::move(image), [&](VipsImage *in, VipsImage **out) {
        return vips_extract_band(in, out, 0, "n", document.colorPlanes, nullptr);
    });
    return InDisplayColors(Scaled(std::move(image), document));
}

}  // namespace

MaybeFailure WriteComparison(const Picture &picture, const std::string &path, const std::string &file) {
    const Image before = ViewOf(picture, picture.document.source);
    const Image after = ViewOf(picture, picture.document.destination);
    Image both;
    if (before != nullptr && after != nullptr) {
        const double white[] = {255, 255, 255};
        VipsArrayDouble *background = vips_array_double_new(white, static_cast<int>(std::size(white)));
        VipsImage *joined = nullptr;
        vips_join(before.get(), after.get(), &joined, VIPS_DIRECTION_HORIZONTAL, "shim", kSeam, "background",
                  background, nullptr);
        vips_area_unref(VIPS_AREA(background));
        both.reset(joined);
    }
    if (both == nullptr || vips_pngsave(both.get(), path.c_str(), "strip", TRUE, nullptr) != 0) {
        return FileFailure(file, "cannot be written: " + TakeVipsError());
    }
    return std::nullopt;
}
