#include "tests/host/host_fixture.h"

#include <random>

#include "host/picture/vips_library.h"

Module HostTest::realFilter;

void HostTest::SetUpTestSuite() {
    ASSERT_TRUE(StartVips("host_test"));
    if (realFilter.entry == nullptr) {
        ASSERT_FALSE(LoadModule(DefaultPluginFolder(), &realFilter));
        FilterRecord record = {};
        int16_t result = 0;
        realFilter.entry(filterSelectorPrepare, &record, &realFilter.data, &result);
    }
}

Document RandomDocument(int16_t mode, int32_t depth, int32_t colorPlanes, int32_t planes, int32_t width,
                        int32_t height) {
    Document document;
    document.imageMode = mode;
    document.depth = depth;
    document.colorPlanes = colorPlanes;
    document.planes = planes;
    document.transparency = planes > colorPlanes ? colorPlanes : 0;
    document.width = width;
    document.height = height;
    MapPixels(Sharing::none, &document);
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

std::vector<uint8_t> BytesOf(const Document &document, const PixelBlock &pixels) {
    return std::vector<uint8_t>(pixels.get(), pixels.get() + PixelBytes(document));
}
