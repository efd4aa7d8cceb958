// Rectangles and masks.
#include "host/picture/selection.h"

#include <cmath>
#include <numeric>

#include "tests/host/host_fixture.h"

namespace {

class SelectionTest : public HostTest {};

TEST_F(SelectionTest, RectanglesAreFourNumbersAndNotEmpty) {
    const std::optional<VRect> rect = ParseRect("3,4,10,20");
    ASSERT_TRUE(rect);
    EXPECT_EQ(rect->left, 3);
    EXPECT_EQ(rect->top, 4);
    EXPECT_EQ(rect->right, 13);
    EXPECT_EQ(rect->bottom, 24);
    for (const char *text : {"", "1,2,3", "1,2,3,4,5", "1,2,3,4 ", "1;2,3,4", "a,2,3,4", "1,2,0,4",
                             "1,2,3,-4", "1,2,3,", "2147483647,0,1,1", "1,2,99999999999,4"}) {
        EXPECT_FALSE(ParseRect(text)) << text;
    }
    // Only the picture can tell whether the rectangle lies inside it.
    EXPECT_TRUE(ParseRect("-1,-1,5,5"));
}

template <typename Sample>
void ExpectBlended(int16_t mode, int32_t depth) {
    Document document = RandomDocument(mode, depth, 1, 2, 256, 3);
    for (int64_t i = 0; i < PixelBytes(document); ++i) {
        document.destination[static_cast<size_t>(i)] ^= static_cast<uint8_t>(0x3C + i % 7);
    }
    document.mask = MapBlock(MaskBytes(document), Sharing::none);
    for (size_t i = 0; i < 256 * 3; ++i) {
        document.mask[i] = static_cast<uint8_t>(i);
    }
    const std::vector<uint8_t> bytes = BytesOf(document, document.destination);
    BlendByMask(0, 1, &document);
    EXPECT_TRUE(std::equal(bytes.begin() + RowBytes(document), bytes.end(),
                           document.destination.get() + RowBytes(document)));
    BlendByMask(1, 3, &document);
    for (size_t i = 0; i < bytes.size() / sizeof(Sample); ++i) {
        Sample before, filtered, blended;
        std::memcpy(&before, document.source.get() + i * sizeof(Sample), sizeof(Sample));
        std::memcpy(&filtered, bytes.data() + i * sizeof(Sample), sizeof(Sample));
        std::memcpy(&blended, document.destination.get() + i * sizeof(Sample), sizeof(Sample));
        const double part = static_cast<double>(i / 2 % 256) / 255;
        ASSERT_EQ(blended, std::lround(part * filtered + (1 - part) * before)) << i;
    }
}

TEST_F(SelectionTest, BlendingRoundsToTheNearest) {
    ExpectBlended<uint8_t>(plugInModeGrayScale, 8);
    ExpectBlended<uint16_t>(plugInModeGray16, 16);
}

TEST_F(SelectionTest, BlendingLeavesInfinityAlone) {
    Document document = RandomDocument(plugInModeGray32, 32, 1, 1, 256, 1);
    std::fill_n(reinterpret_cast<float *>(document.source.get()), 256, INFINITY);
    ResetDestination(&document, WholeRect(document));
    document.mask = MapBlock(MaskBytes(document), Sharing::none);
    std::iota(document.mask.get(), document.mask.get() + 256, uint8_t{0});
    BlendByMask(0, 1, &document);
    EXPECT_EQ(BytesOf(document, document.destination), BytesOf(document, document.source));
}

}  // namespace
