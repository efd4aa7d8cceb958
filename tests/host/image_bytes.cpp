#include "tests/host/image_bytes.h"

std::string BytesOf(VipsImage *image) {
    size_t size = 0;
    void *memory = image == nullptr ? nullptr : vips_image_write_to_memory(image, &size);
    if (memory == nullptr) {
        return "";
    }
    std::string bytes(static_cast<const char *>(memory), size);
    g_free(memory);
    return bytes;
}
