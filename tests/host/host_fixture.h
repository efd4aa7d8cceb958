// What tests of the host share: a folder of their own, the filter's module, and pictures made of random
// samples.
#pragma once

#include <vips/vips.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "host/document/document.h"
#include "host/filter/plugin.h"
#include "host/picture/vips_library.h"
#include "photoshop/filter_record.h"
#include "photoshop/image_modes.h"
#include "tests/support/scratch_folder.h"

class HostTest : public ScratchFolder {
  protected:
    // The module stays loaded, and keeps a block of its own from its first call on.
    static void SetUpTestSuite() {
        ASSERT_TRUE(StartVips("host_test"));
        if (realFilter.entry == nullptr) {
            ASSERT_FALSE(LoadModule(DefaultPluginFolder(), &realFilter));
            FilterRecord record = {};
            int16_t result = 0;
            realFilter.entry(filterSelectorPrepare, &record, &realFilter.data, &result);
        }
    }

    std::string Path(const std::string &name) const { return (folder / name).string(); }

    inline static Module realFilter;
};

// A document of random samples; floats lie between 0 and 1.
inline Document RandomDocument(int16_t mode, int32_t depth, int32_t colorPlanes, int32_t planes,
                               int32_t width, int32_t height) {
    Document document;
    document.imageMode = mode;
    document.depth = depth;
    document.colorPlanes = colorPlanes;
    document.planes = planes;
    document.width = width;
    document.height = height;
    MapPixels(&document);
    std::mt19937 generator(7);
    for (int64_t i = 0; i < PixelBytes(document) / SampleBytes(document); ++i) {
        const auto bits = static_cast<uint32_t>(generator());
        const float fraction = static_cast<float>(bits >> 8) / 16777216.0f;
        std::memcpy(document.source.get() + i * SampleBytes(document),
                    depth == 32 ? static_cast<const void *>(&fraction) : &bits,
                    static_cast<size_t>(SampleBytes(document)));
    }
    ResetDestination(&document, WholeRect(document));
    return document;
}

inline std::vector<uint8_t> BytesOf(const Document &document, const PixelBlock &pixels) {
    return std::vector<uint8_t>(pixels.get(), pixels.get() + PixelBytes(document));
}
