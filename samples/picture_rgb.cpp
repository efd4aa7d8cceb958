#include "samples/picture_rgb.h"

#include <vips/vips.h>

#include <cstring>

static_assert(sizeof(Pixel) == 3);

PictureRGB MakePicture(int width, int height, Pixel background) {
    const auto count = static_cast<size_t>(width) * static_cast<size_t>(height);
    return {width, height, std::vector<Pixel>(count, background)};
}

Pixel &At(PictureRGB &picture, int x, int y) {
    return picture
        .pixels[static_cast<size_t>(y) * static_cast<size_t>(picture.width) + static_cast<size_t>(x)];
}

bool ReadRGB(const std::string &file, PictureRGB *picture) {
    VipsImage *image = vips_image_new_from_file(file.c_str(), nullptr);
    if (image == nullptr) {
        return false;
    }
    const bool suitable =
        vips_image_get_bands(image) == 3 && vips_image_get_format(image) == VIPS_FORMAT_UCHAR;
    size_t size = 0;
    void *bytes = suitable ? vips_image_write_to_memory(image, &size) : nullptr;
    if (bytes != nullptr) {
        *picture = MakePicture(vips_image_get_width(image), vips_image_get_height(image), {});
        std::memcpy(picture->pixels.data(), bytes, size);
        g_free(bytes);
    } else if (!suitable) {
        vips_error("chart", "%s is not an 8-bit RGB picture", file.c_str());
    }
    g_object_unref(image);
    return bytes != nullptr;
}

bool WriteRGB(const PictureRGB &picture, const std::string &file) {
    VipsImage *image =
        vips_image_new_from_memory(picture.pixels.data(), picture.pixels.size() * sizeof(Pixel),
                                   picture.width, picture.height, 3, VIPS_FORMAT_UCHAR);
    if (image == nullptr) {
        return false;
    }
    image->Type = VIPS_INTERPRETATION_sRGB;
    const bool written = vips_image_write_to_file(image, file.c_str(), nullptr) == 0;
    g_object_unref(image);
    return written;
}
