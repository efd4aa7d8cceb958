#include <vector>

#include "imagestore/kept_images.h"
#include "platform/faults/fault_injection.h"
#include "tests/fuzz/fuzz_folder.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    static const FuzzFolder folder;
    folder.Write("PSsecImage", bytes, size);
    // An image that claims to be large stays in its file.
    faults::SetMemoryLimit(faults::BytesInUse() + (4 << 20));
    NamedImage *image;
    if (OpenImage2(&image) != noErr) {
        return 0;
    }
    std::vector<uint8_t> line(1 << 16);
    for (int32_t y = -1; y < 40; ++y) {
        GetLine(image, y - 1, y, static_cast<int32_t>(line.size()), line.data());
        PutLine(image, y, y, 64, line.data());
    }
    CloseImage2(image);
    return 0;
}
