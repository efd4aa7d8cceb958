// Compares the pass over a working image with the filter on the same image without a border.
#include "hybridmedian/public.h"
#include "settings/setting_registry.h"
#include "tests/support/filtered_image.h"
#include "tests/support/scratch_folder.h"
#include "toolkit/filter_hooks.h"
#include "toolkit/run_context.h"

namespace {

class ImagePass : public ScratchFolder {
  protected:
    // Runs the pass without the dialog, unless `dialog` is set.
    OSErr Pass(const TestImage &source, bool negativePlanes, float radius, bool dialog = false) {
        FilterRecord record = {};
        RunContext context = {};
        context.width = source.width;
        context.height = source.height;
        context.colorPlanes = source.bytesPerPixel >= 3 ? 3 : 1;
        context.colorPlanes = static_cast<int16_t>(context.colorPlanes * (negativePlanes ? -1 : 1));
        context.filterRecord = &record;
        FilterParameters values = {radius, 1};
        Ptr parameters = reinterpret_cast<Ptr>(&values);
        SPBlock *settings = _AllocateSPBlock(3);
        NamedImage *image = MakeFrom(source);
        const auto process = source.bytesPerPixel % 2 == 0 ? ProcessImage16_48 : ProcessImage;
        const OSErr err = process(image, &context, &parameters, settings, !dialog);
        passed = BytesOf(image);
        TossImage(image);
        recorded = GetSPInputSettingFloat(settings, 0);
        remembered = PreferenceFloat(&context, kRememberedRadiusOffset);
        _DisposeSPBlock(settings);
        return err;
    }

    std::vector<uint8_t> passed;
    float recorded = 0;
    float remembered = 0;
};

constexpr int16_t kLayouts[] = {1, 2, 3, 6};

TEST_F(ImagePass, GivesWhatTheFilterGivesWithoutABorder) {
    constexpr int16_t kSizes[][2] = {{1, 1}, {1, 9}, {13, 1}, {7, 5}};
    for (const int16_t bytesPerPixel : kLayouts) {
        for (const auto &[width, height] : kSizes) {
            const TestImage source = RandomImage(width, height, bytesPerPixel, 17);
            for (const float radius : {1.0f, 2.5f, 6.0f}) {
                for (const bool negativePlanes : {false, true}) {
                    SCOPED_TRACE(testing::Message() << width << " x " << height << ", " << bytesPerPixel
                                                    << " bytes per pixel, radius " << radius);
                    EXPECT_EQ(Pass(source, negativePlanes, radius), noErr);
                    EXPECT_EQ(passed, Filtered(source, radius));
                    EXPECT_EQ(recorded, radius);
                    EXPECT_EQ(remembered, radius);
                }
            }
        }
    }
}

// Each side must fit 16 bits with its border. The size is checked before the radius dialog appears.
TEST_F(ImagePass, TakesSidesOfUpTo32755) {
    for (const int16_t bytesPerPixel : kLayouts) {
        for (const bool wide : {true, false}) {
            const auto image = [&](int16_t side) {
                return RandomImage(wide ? side : int16_t{1}, wide ? int16_t{1} : side, bytesPerPixel, 18);
            };
            const TestImage largest = image(32755);
            EXPECT_EQ(Pass(largest, false, 1), noErr);
            EXPECT_EQ(passed, Filtered(largest, 1));
            const TestImage larger = image(32756);
            EXPECT_EQ(Pass(larger, false, 1, true), memFullErr);
            EXPECT_EQ(passed, larger.bytes);
            EXPECT_EQ(remembered, 0);
        }
    }
}

}  // namespace
