// What the run driver offers its filter, and how it ends failed runs.
#include "plugin/run_driver.h"

#include <algorithm>
#include <cmath>

#include "colors/samples.h"
#include "photoshop/image_modes.h"
#include "plugin/entry.h"
#include "tests/plugin/other_filter/test_filter.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/test_host.h"
#include "tests/support/test_images.h"

namespace {

constexpr int kWidth = 4;
constexpr int kPixels = 8;
constexpr Rect kBounds = {20, -7, 22, -3};

using Bytes = std::vector<uint8_t>;

// What the filter was offered.
struct Offer {
    Bytes image, alpha, selection;
    int16_t width, height, colorPlanes, extraPlanes;
    int32_t originLeft, originTop;
    bool alphaIsSelection, selectionUsed, maskHasZero;
};

class RunDriver : public ScratchFolder {
  protected:
    void SetUp() override {
        testFilter = {};
        testFilter.makeParameters = [this](NamedImage *image, const RunContext *context, SPBlock *) {
            offer = {BytesOf(image),
                     BytesOf(context->alphaImage),
                     BytesOf(context->selectionImage),
                     context->width,
                     context->height,
                     context->colorPlanes,
                     context->extraPlanes,
                     context->originLeft,
                     context->originTop,
                     context->alphaImage != nullptr && context->alphaImage == context->selectionImage,
                     context->selectionUsed != 0,
                     context->maskHasZero != 0};
        };
    }

    Offer offer = {};
};

void Append(double sample, int32_t depth, Bytes *bytes) {
    const size_t at = bytes->size();
    bytes->resize(at + static_cast<size_t>(depth / 8));
    if (depth == 8) {
        StoreSample(bytes->data() + at, 0, static_cast<uint8_t>(sample));
    } else if (depth == 16) {
        StoreSample(bytes->data() + at, 0, static_cast<uint16_t>(sample));
    } else {
        StoreSample(bytes->data() + at, 0, static_cast<float>(sample));
    }
}

struct OfferCase {
    const char *name;
    int16_t mode;
    int32_t depth;
    int colorPlanes;
    std::vector<std::vector<double>> extraPlanes;  // a sample per pixel
    Bytes mask;
    Bytes selection;  // if empty, none is offered
    bool selectionUsed;
    bool maskHasZero;
};

const std::vector<double> kHole8 = {0, 9, 200, 9, 9, 30, 9, 255};
const std::vector<double> kOpaque8 = {1, 2, 3, 4, 5, 6, 7, 8};
const std::vector<double> kNothing = {0, 0, 0, 0, 0, 0, 0, 0};
const std::vector<double> kSteps16 = {0, 128, 129, 257, 16448, 32768, 65535, 1};
const Bytes kSteps16Bytes = {0, 0, 1, 2, 128, 255, 255, 0};
const Bytes kSelecting = {255, 128, 200, 129, 255, 255, 130, 255};
const Bytes kLeavingOut = {255, 255, 200, 255, 255, 127, 255, 128};
const std::vector<double> kFloats = {0, 1, 0.5, 0.5, 300, NAN, 0.5, 2.5};
// Only half of a row of floats is read: in each row, the third byte comes from the last row's fourth float,
// and the fourth is 0.
const Bytes kFloatBytes = {0, 1, 2, 0, 255, 0, 2, 0};

const OfferCase kOffers[] = {
    {"nothing but colours", plugInModeRGBColor, 8, 3, {}, {}, {}, false, false},
    {"a mask that selects all", plugInModeRGBColor, 8, 3, {}, kSelecting, {}, false, false},
    {"a mask", plugInModeGray16, 16, 1, {}, kLeavingOut, kLeavingOut, true, false},
    {"transparency", plugInModeGrayScale, 8, 1, {kHole8, kNothing}, {}, {}, false, true},
    {"a hole in the second plane alone", plugInModeRGBColor, 8, 3, {kOpaque8, kHole8}, {}, {}, false, false},
    {"transparency and a mask that selects all",
     plugInModeCMYKColor,
     8,
     4,
     {kHole8},
     kSelecting,
     {},
     false,
     true},
    {"transparency and a mask", plugInModeRGBColor, 8, 3, {kHole8}, kLeavingOut, kLeavingOut, true, true},
    {"deep transparency", plugInModeRGB48, 16, 3, {kSteps16, kOpaque8}, {}, kSteps16Bytes, false, true},
    {"deep transparency and a mask that selects all",
     plugInModeGray16,
     16,
     1,
     {kSteps16, kNothing, kOpaque8},
     kSelecting,
     kSteps16Bytes,
     false,
     true},
    {"float transparency", plugInModeRGB96, 32, 3, {kFloats}, {}, kFloatBytes, false, true},
    {"opaque floats", plugInModeGray32, 32, 1, {kOpaque8}, {}, {}, false, false},
};

double Color(const OfferCase &c, int pixel, int plane) {
    const double sample = 1 + pixel * 5 + plane;
    return c.depth == 32 ? sample / 64 : sample;
}

double White(int32_t depth) {
    return depth == 8 ? 255 : depth == 16 ? 32768 : 1;
}

TestDocument DocumentOf(const OfferCase &c) {
    const auto planes = static_cast<int16_t>(static_cast<size_t>(c.colorPlanes) + c.extraPlanes.size());
    TestDocument document = {c.mode, c.depth, planes, kBounds, {}, c.mask};
    for (int pixel = 0; pixel < kPixels; ++pixel) {
        for (int plane = 0; plane < c.colorPlanes; ++plane) {
            Append(Color(c, pixel, plane), c.depth, &document.source);
        }
        for (const std::vector<double> &plane : c.extraPlanes) {
            Append(plane[static_cast<size_t>(pixel)], c.depth, &document.source);
        }
    }
    return document;
}

// Floats are filtered at the scale of bytes.
Bytes ImageOf(const OfferCase &c) {
    Bytes image;
    for (int pixel = 0; pixel < kPixels; ++pixel) {
        const bool hole = !c.extraPlanes.empty() && c.extraPlanes[0][static_cast<size_t>(pixel)] == 0;
        for (int plane = 0; plane < c.colorPlanes; ++plane) {
            const double sample = hole ? White(c.depth) : Color(c, pixel, plane);
            Append(c.depth == 32 ? sample * 255 : sample, c.depth, &image);
        }
    }
    return image;
}

Bytes AlphaOf(const OfferCase &c) {
    Bytes alpha;
    for (size_t pixel = 0; pixel < kPixels; ++pixel) {
        for (const std::vector<double> &plane : c.extraPlanes) {
            Append(plane[pixel], c.depth, &alpha);
        }
    }
    return alpha;
}

TEST_F(RunDriver, OffersImagesSelectionAndPlace) {
    for (const OfferCase &c : kOffers) {
        SCOPED_TRACE(c.name);
        ASSERT_EQ(RunPlugin(DocumentOf(c), {}).result, noErr);
        const bool isCMYK = c.colorPlanes == 4;
        if (!isCMYK) {
            EXPECT_EQ(offer.image, ImageOf(c));
        }
        EXPECT_EQ(offer.alpha, AlphaOf(c));
        // Bytes can be used as they are.
        const bool alphaServes = c.depth == 8 && c.maskHasZero && !c.selectionUsed;
        EXPECT_EQ(offer.alphaIsSelection, alphaServes);
        EXPECT_EQ(offer.selection, alphaServes ? AlphaOf(c) : c.selection);
        EXPECT_EQ(offer.selectionUsed, c.selectionUsed);
        EXPECT_EQ(offer.maskHasZero, c.maskHasZero);
        EXPECT_EQ(offer.width, kWidth);
        EXPECT_EQ(offer.height, kPixels / kWidth);
        EXPECT_EQ(offer.colorPlanes, isCMYK ? 3 : c.colorPlanes);
        EXPECT_EQ(static_cast<size_t>(offer.extraPlanes), c.extraPlanes.size());
        EXPECT_EQ(offer.originLeft, kBounds.left);
        EXPECT_EQ(offer.originTop, kBounds.top);
        EXPECT_EQ(testFilter.processedBits, c.depth == 32 ? 0 : c.depth);
    }
}

// Using another row's bytes would be worse.
TEST_F(RunDriver, SelectionRowsThatCannotBeReadStayUnselected) {
    const OfferCase deep = {"", plugInModeGray16, 16, 1, {kSteps16}, {}, kSteps16Bytes, false, true};
    const Bytes zeros(kWidth, 0);
    int leftOut = 0;
    bool struck = true;
    for (int64_t n = 1; struck; ++n) {
        ASSERT_LT(n, 1000);
        offer = {};
        faults::RefuseTemporaryMemory(true);
        faults::FailFileCall(n, ioErr);
        const OSErr result = RunPlugin(DocumentOf(deep), {}).result;
        struck = faults::FaultStruck();
        faults::FailFileCall(0, noErr);
        faults::RefuseTemporaryMemory(false);
        for (auto row = 0; result == noErr && !offer.selection.empty() && row < kPixels; row += kWidth) {
            const Bytes got(offer.selection.begin() + row, offer.selection.begin() + row + kWidth);
            if (got == zeros) {
                ++leftOut;
            } else {
                EXPECT_EQ(got, Bytes(kSteps16Bytes.begin() + row, kSteps16Bytes.begin() + row + kWidth)) << n;
            }
        }
    }
    EXPECT_GT(leftOut, 1);
}

// A host with two grey pixels, one above the other, whose advanceState can return a different result once.
struct Host {
    PluginState state;
    FilterRecord record;
    uint8_t row[2];  // room for an alpha plane
    int calls;
    int answerAt;
    OSErr answer;
    bool vanishes;
};
Host host;

OSErr Advance() {
    if (++host.calls != host.answerAt) {
        return noErr;
    }
    host.record.advanceState = host.vanishes ? nullptr : host.record.advanceState;
    return host.answer;
}

void SetUpHost(int16_t planes) {
    host = {};
    host.state.filterRecord = &host.record;
    host.record.imageMode = plugInModeGrayScale;
    host.record.depth = 8;
    host.record.planes = planes;
    host.record.filterRect = {0, 0, 2, 1};
    host.record.inData = host.record.outData = host.record.maskData = host.row;
}

TEST_F(RunDriver, WhatAdvanceStateAnswersEndsStart) {
    const struct {
        int at;
        OSErr answer;
        bool vanishes;
        OSErr result;
        int calls;
    } cases[] = {
        {0, noErr, false, noErr, 5},  // two rows, the filter, two rows
        {1, -77, false, -77, 1},
        {2, userCanceledErr, false, userCanceledErr, 2},
        {3, 5, false, 5, 3},
        {5, -77, false, -77, 5},
        {1, noErr, true, userCanceledErr, 1},
        {4, noErr, true, userCanceledErr, 4},
        {4, -77, true, -77, 4},
        {5, noErr, true, noErr, 5},  // when all is done
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << "call " << c.at << " answers " << c.answer);
        SetUpHost(1);
        host.record.advanceState = Advance;
        host.answerAt = c.at;
        host.answer = c.answer;
        host.vanishes = c.vanishes;
        EXPECT_EQ(DoStart(&host.state), c.result);
        EXPECT_EQ(host.calls, c.calls);
        EXPECT_EQ(host.state.phase, phaseDone);
        DoFinish(&host.state);
    }
}

// The most recent image decides whether the mask is still read: the alpha image, if there is one.
TEST_F(RunDriver, NoMaskIsAskedForAfterAnImageThatCouldNotBeMade) {
    const struct {
        int16_t planes;
        std::vector<bool> maskAfterFailure;  // after the image's failure, after the alpha image's
    } cases[] = {{1, {false}}, {2, {true, false}}};
    for (const auto &c : cases) {
        std::vector<bool> maskAfterFailure;
        int withoutMask = 0;
        bool struck = true;
        for (int64_t n = 1; struck; ++n) {
            SetUpHost(c.planes);
            host.record.haveMask = true;
            ASSERT_EQ(DoStart(&host.state), noErr);
            faults::FailAllocation(n);
            const OSErr result = DoContinue(&host.state);
            struck = faults::FaultStruck();
            faults::FailAllocation(0);
            const bool haveMask = host.state.haveMask != 0;
            EXPECT_EQ(host.record.inRect.top, 1);
            EXPECT_EQ(host.record.maskRect.top, haveMask ? 1 : 0);
            if (result != noErr) {
                EXPECT_EQ(result, memFullErr);
                maskAfterFailure.push_back(haveMask);
                // A host that continues anyway gets the error again, and nothing is remembered.
                host.state.result = noErr;
                DoContinue(&host.state);
                EXPECT_EQ(host.state.phase, phaseFiltering);
                host.state.result = noErr;
                EXPECT_EQ(DoContinue(&host.state), memFullErr);
                EXPECT_FALSE(exists(folder / "WEMBpref"));
            } else {
                // A selection that cannot be made is simply left out.
                withoutMask += !haveMask;
            }
            ReleaseRun(&host.state);
        }
        EXPECT_EQ(maskAfterFailure, c.maskAfterFailure);
        EXPECT_EQ(withoutMask, 1);
    }
}

// The filter is not called, yet what the family remembers is kept.
TEST_F(RunDriver, WithoutMemoryForSettingsPreferencesAreStillWritten) {
    int calls = 0;
    testFilter.declareSettings = [&](RunContext *, SPBlock *) { ++calls; };
    SetUpHost(1);
    ASSERT_EQ(DoStart(&host.state), noErr);
    while (host.state.phase == phaseReading) {
        ASSERT_EQ(DoContinue(&host.state), noErr);
    }
    faults::FailAllocation(1);
    EXPECT_EQ(DoContinue(&host.state), memFullErr);
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(host.state.phase, phaseDone);
    EXPECT_TRUE(exists(folder / "WEMBpref"));
    DoFinish(&host.state);
}

}  // namespace
