// The preview's pixels, compared with the filter's own results over the whole image.
#include <algorithm>
#include <array>
#include <cstring>

#include "dialog/dialog_utilities.h"
#include "dialog/proxy_draw.h"
#include "dialog/work_line.h"
#include "hybridmedian/public.h"
#include "median/hybrid_filter.h"
#include "tests/support/dialog_session.h"

namespace {

using user::Click;
using user::Key;
using user::MoveThumb;
using Color = std::array<uint8_t, 3>;

constexpr int32_t kPreviewWidth = 100;
constexpr int32_t kPreviewHeight = 80;

class PreviewPicture : public DialogTest {
  protected:
    // What the preview should show of an image, as RGB: 16-bit samples narrowed, and grey without its last
    // six columns.
    static TestImage AsShown(const TestImage &source, bool packed) {
        const bool deep = source.bytesPerPixel % 2 == 0;
        const bool rgb = packed || source.bytesPerPixel % 3 == 0;
        TestImage shown = {source.width, source.height, 3, {}};
        for (int32_t y = 0; y < source.height; ++y) {
            for (int32_t x = 0; x < source.width; ++x) {
                for (int32_t c = 0; c < 3; ++c) {
                    const int32_t sample = rgb ? 3 * x + c : x;
                    const uint8_t *row = source.bytes.data() + y * source.RowBytes();
                    const int32_t value =
                        deep && source.bytesPerPixel != 4 ? Narrowed(row + 2 * sample) : row[sample];
                    const bool lost = !rgb && x >= source.width - 6;
                    shown.bytes.push_back(lost ? uint8_t{0} : static_cast<uint8_t>(value));
                }
            }
        }
        return shown;
    }

    // Divides by 128.5, rounding to nearest, in integers.
    static int32_t Narrowed(const uint8_t *sample) {
        return std::min((4 * (sample[0] | sample[1] << 8) + 257) / 514, 255);
    }

    static TestImage Filtered(const TestImage &source, float radius) {
        NamedImage *image = MakeFrom(source);
        EXPECT_EQ(NewHyMedian(image, radius, false, nullptr, 1, 2, 3), noErr);
        const TestImage filtered = {source.width, source.height, source.bytesPerPixel, BytesOf(image)};
        TossImage(image);
        return filtered;
    }

    static Color PixelOf(const DialogState &state, int32_t x, int32_t y) {
        const int32_t width = state.drawn.right - state.drawn.left;
        const uint8_t *pixel = state.picture.data() + (y * width + x) * 4;
        EXPECT_EQ(pixel[0], 0);
        return {pixel[1], pixel[2], pixel[3]};
    }

    // The framed picture shows `image` from (left, top) on, and grey beyond it.
    static void ExpectPicture(const DialogState &state, const TestImage &image, int32_t left, int32_t top) {
        ASSERT_EQ(state.drawn.right - state.drawn.left, kPreviewWidth + 2);
        ASSERT_EQ(state.drawn.bottom - state.drawn.top, kPreviewHeight + 2);
        int64_t wrong = 0;
        for (int32_t y = -1; y <= kPreviewHeight; ++y) {
            for (int32_t x = -1; x <= kPreviewWidth; ++x) {
                Color expected = {0x7F, 0x7F, 0x7F};
                if (x < 0 || y < 0 || x == kPreviewWidth || y == kPreviewHeight) {
                    expected = {};
                } else if (x < image.width && y < image.height) {
                    std::copy_n(image.bytes.begin() + (top + y) * image.RowBytes() + (left + x) * 3, 3,
                                expected.begin());
                }
                wrong += PixelOf(state, x + 1, y + 1) != expected;
            }
        }
        EXPECT_EQ(wrong, 0);
    }
};

TEST_F(PreviewPicture, ShowsThePieceOfTheFilteredImage) {
    const struct {
        int16_t width, height, bytesPerPixel, colorPlanes;
    } layouts[] = {
        {130, 97, 3, 3}, {130, 97, 1, 1}, {130, 97, 6, 3}, {130, 97, 2, 1}, {130, 97, 4, -3},
        {130, 97, 8, 3}, {40, 30, 3, 3},  {40, 30, 1, 1},  {40, 30, 2, 1},  {101, 30, 6, 3},
        {5, 90, 1, 1},   {5, 90, 2, 1},   {9, 90, 2, 1},   {1, 1, 3, 3},
    };
    for (const auto &layout : layouts) {
        SCOPED_TRACE(testing::Message() << "layout " << &layout - layouts);
        const TestImage image = RandomImage(layout.width, layout.height, layout.bytesPerPixel, 3);
        const TestImage shown = AsShown(image, layout.bytesPerPixel == 4 || layout.bytesPerPixel == 8);
        colorPlanes = layout.colorPlanes;
        const auto right = static_cast<int16_t>(std::max(layout.width - kPreviewWidth, 0));
        const auto bottom = static_cast<int16_t>(std::max(layout.height - kPreviewHeight, 0));
        const DialogOutcome outcome =
            Run(image, 2.5f,
                {MoveThumb(kHorizontalBarItem, 0), MoveThumb(kVerticalBarItem, 0),
                 MoveThumb(kHorizontalBarItem, right), MoveThumb(kVerticalBarItem, bottom), Key('6'),
                 Click(kPreviewCheckBoxItem)});
        ASSERT_EQ(outcome.states.size(), 7u);
        const TestImage radius2 = Filtered(shown, 2);
        ExpectPicture(outcome.states[0], radius2, right / 2, bottom / 2);
        ExpectPicture(outcome.states[2], radius2, 0, 0);
        ExpectPicture(outcome.states[4], radius2, right, bottom);
        ExpectPicture(outcome.states[5], Filtered(shown, 6), right, bottom);
        ExpectPicture(outcome.states[6], shown, right, bottom);
    }
}

TEST_F(PreviewPicture, GrayRowsAreShifted) {
    const struct {
        int16_t width;
        std::vector<uint8_t> expected;
    } cases[] = {
        {10, {10, 10, 10, 10, 10, 10, 10, 20, 30, 40, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
        {7, {10, 10, 10, 10, 10, 10, 10, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
        {6, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
    };
    for (const auto &c : cases) {
        TestImage source = {c.width, 1, 1, {}};
        for (int i = 1; i <= c.width; ++i) {
            source.bytes.push_back(static_cast<uint8_t>(10 * i));
        }
        NamedImage *image = MakeFrom(source);
        const RunContext context = {};
        const LineLayout layout = LineLayoutOf(image, &context);
        std::vector<uint8_t> line(static_cast<size_t>(c.width + 2 * kLineMargin) * 3 + 9);
        // The second pass runs over what the first one left.
        for (int pass = 0; pass < 2; ++pass) {
            ReadWorkLine(image, layout, 0, line.data());
            for (size_t i = 0; i < c.expected.size() * 3; ++i) {
                EXPECT_EQ(line[i], c.expected[i / 3]) << c.width << " wide, byte " << i;
            }
        }
        TossImage(image);
    }
}

TEST_F(PreviewPicture, DeepSamplesAreRounded) {
    const std::pair<uint16_t, uint8_t> cases[] = {
        {0, 0},       {64, 0},      {65, 1},      {192, 1},     {193, 2},
        {16384, 128}, {32703, 254}, {32704, 255}, {32768, 255}, {65535, 255},
    };
    for (const auto &[sample, narrowed] : cases) {
        TestImage source = {1, 1, 6, std::vector<uint8_t>(6)};
        for (size_t c = 0; c < 3; ++c) {
            std::memcpy(source.bytes.data() + 2 * c, &sample, sizeof sample);
        }
        NamedImage *image = MakeFrom(source);
        const RunContext context = {};
        std::vector<uint8_t> line(2 * (13 * 3 + 9));
        ReadWorkLine(image, LineLayoutOf(image, &context), 0, line.data());
        EXPECT_EQ(std::vector<uint8_t>(line.begin(), line.begin() + 39), std::vector<uint8_t>(39, narrowed))
            << sample;
        TossImage(image);
    }
}

// Rows of four samples outside a CMYK run need more room than the stated size.
TEST_F(PreviewPicture, OtherLayoutsHaveRoom) {
    colorPlanes = 4;
    for (const int16_t bytesPerPixel : {int16_t{4}, int16_t{5}, int16_t{8}}) {
        EXPECT_EQ(Run(RandomImage(200, 90, bytesPerPixel, 4), 2, {Click(kOKItem)}).result, noErr);
    }
}

TEST_F(PreviewPicture, StaysGrayWithoutAWorkImageAndEmptyWithoutAPicture) {
    const TestImage image = RandomImage(130, 97, 3, 5);
    const TestImage nothing = {0, 0, 3, {}};
    bool sawGray = false;
    bool sawNothing = false;
    for (failAllocation = 1; failAllocation <= 10; ++failAllocation) {
        const DialogOutcome outcome = Run(image, 2, {});
        if (outcome.states.empty()) {
            continue;
        }
        const DialogState &state = outcome.Last();
        const Color center = PixelOf(state, kPreviewWidth / 2, kPreviewHeight / 2);
        if (outcome.rebuilds == 0 && center == Color{0x7F, 0x7F, 0x7F}) {
            ExpectPicture(state, nothing, 0, 0);
            sawGray = true;
        }
        // Only the frame, around the window's own white.
        sawNothing = sawNothing || center == Color{0xFF, 0xFF, 0xFF};
    }
    EXPECT_TRUE(sawGray);
    EXPECT_TRUE(sawNothing);
}

TEST_F(PreviewPicture, IsDrawnUntintedAndLeavesPortAndPensAlone) {
    ScriptedSession session;
    UseScriptedDialogs(&session);
    DialogRef dialog = GetNewMooDialog(kRadiusDialogID, nullptr, nullptr);
    const Rect bounds = {0, 0, kPreviewHeight, kPreviewWidth};
    const RGBColor red = {0xFFFF, 0, 0};
    const RGBColor color = {0x1234, 0x5678, 0x9ABC};
    GWorldPtr picture;
    ASSERT_EQ(NewGWorld(&picture, 32, &bounds, nullptr, nullptr, useTempMem), noErr);
    const PenState pens[] = {{{1, 2}, {3, 4}, srcCopy}, {{5, 6}, {7, 8}, srcCopy}};
    SetPort(GetDialogPort(dialog));
    RGBForeColor(&red);
    RGBBackColor(&red);
    SetPenState(&pens[0]);
    SetPort(picture);
    RGBForeColor(&color);
    PaintRect(&bounds);
    SetPenState(&pens[1]);

    SetupProxyDraw(dialog, kPreviewItem, picture);
    EXPECT_EQ(gProxyPtr, picture);
    gUserItemProxyDraw(dialog, kPreviewItem);
    EXPECT_EQ(PixelOf(StateOf(*dialog), 0, 0), (Color{0x12, 0x56, 0x9A}));
    EXPECT_EQ(PixelOf(StateOf(*dialog), kPreviewWidth - 1, kPreviewHeight - 1), (Color{0x12, 0x56, 0x9A}));
    GrafPtr port;
    GetPort(&port);
    EXPECT_EQ(port, picture);
    for (const PenState &pen : pens) {
        SetPort(&pen == pens ? GetDialogPort(dialog) : picture);
        PenState left;
        GetPenState(&left);
        EXPECT_EQ(std::memcmp(&left, &pen, sizeof pen), 0);
    }
    gProxyPtr = nullptr;
    DisposeGWorld(picture);
    DisposeDialog(dialog);
}

}  // namespace
