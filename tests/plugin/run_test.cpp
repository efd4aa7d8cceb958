// Whole runs of the plug-in through its entry point.
#include <bit>
#include <cstring>

#include "colors/color_modes.h"
#include "hybridmedian/public.h"
#include "photoshop/image_modes.h"
#include "platform/memory.h"
#include "plugin/entry.h"
#include "plugin/states.h"
#include "settings/setting_registry.h"
#include "tests/support/filtered_image.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/test_host.h"
#include "toolkit/filter_hooks.h"
#include "toolkit/run_context.h"

namespace {

class Run : public ScratchFolder {
  protected:
    TestRun Play(const TestDocument &document, double radius, TestHostOptions options = {}) {
        return RunScripted(document, {{kRadiusKey, typeFloat, radius}}, options);
    }
};

TestDocument Document(int16_t mode, int32_t depth, int16_t planes, int16_t width, int16_t height) {
    const Rect bounds = {5, 3, static_cast<int16_t>(5 + height), static_cast<int16_t>(3 + width)};
    return {mode,
            depth,
            planes,
            bounds,
            RandomBytes(static_cast<size_t>(width * height * planes) * static_cast<size_t>(depth / 8), 11),
            {}};
}

bool IsZero(const Rect &rect) {
    return (rect.top | rect.left | rect.bottom | rect.right) == 0;
}

using Convert = void (*)(void *row, int32_t width);

struct ModeCase {
    int16_t mode;
    int32_t depth;
    int16_t planes;
    int16_t colorPlanes;
    Convert toRGB = nullptr;
    Convert fromRGB = nullptr;
};

constexpr int16_t kWidth = 17;
constexpr int16_t kHeight = 9;

// What the filter should see of a row, in the document's own mode: transparent pixels are white.
std::vector<uint8_t> ColorsOfRow(const ModeCase &c, const uint8_t *row) {
    const int sampleBytes = c.depth / 8;
    const int colorBytes = c.colorPlanes * sampleBytes;
    std::vector<uint8_t> colors;
    for (int x = 0; x < kWidth; ++x) {
        const uint8_t *pixel = row + x * c.planes * sampleBytes;
        const uint8_t *alpha = pixel + colorBytes;
        const bool transparent =
            c.planes > c.colorPlanes &&
            std::all_of(alpha, alpha + sampleBytes, [](uint8_t byte) { return byte == 0; });
        for (int b = 0; b < colorBytes; ++b) {
            const int white = sampleBytes == 1 ? 255 : (b % 2) * 0x80;
            colors.push_back(transparent ? static_cast<uint8_t>(white) : pixel[b]);
        }
    }
    return colors;
}

// The document after filtering, assembled from the conversions and the filter.
std::vector<uint8_t> ExpectedResult(const ModeCase &c, const TestDocument &document, float radius) {
    const int sampleBytes = c.depth / 8;
    const int filteredBytes = (c.colorPlanes == 4 ? 3 : c.colorPlanes) * sampleBytes;
    const int colorBytes = c.colorPlanes * sampleBytes;
    std::vector<uint8_t> seen;
    for (int y = 0; y < kHeight; ++y) {
        std::vector<uint8_t> row = ColorsOfRow(c, document.source.data() + y * RowBytes(document));
        if (c.toRGB != nullptr) {
            c.toRGB(row.data(), kWidth);
        }
        seen.insert(seen.end(), row.begin(), row.begin() + kWidth * filteredBytes);
    }
    const std::vector<uint8_t> filtered =
        Filtered({kWidth, kHeight, static_cast<int16_t>(filteredBytes), seen}, radius);
    std::vector<uint8_t> expected = document.source;
    for (int y = 0; y < kHeight; ++y) {
        std::vector<uint8_t> row(filtered.begin() + y * kWidth * filteredBytes,
                                 filtered.begin() + (y + 1) * kWidth * filteredBytes);
        row.resize(static_cast<size_t>(kWidth * colorBytes));
        if (c.fromRGB != nullptr) {
            c.fromRGB(row.data(), kWidth);
        }
        for (int x = 0; x < kWidth; ++x) {
            std::copy_n(row.begin() + x * colorBytes, colorBytes,
                        expected.begin() + y * RowBytes(document) + x * c.planes * sampleBytes);
        }
    }
    return expected;
}

TEST_F(Run, FiltersTheColorPlanesAndNothingElse) {
    const ModeCase cases[] = {
        {plugInModeGrayScale, 8, 1, 1},
        {plugInModeGrayScale, 8, 3, 1},
        {plugInModeRGBColor, 8, 3, 3},
        {plugInModeRGBColor, 8, 5, 3},
        {plugInModeGray16, 16, 1, 1},
        {plugInModeGray16, 16, 2, 1},
        {plugInModeRGB48, 16, 3, 3},
        {plugInModeRGB48, 16, 4, 3},
        {plugInModeMultichannel, 8, 3, 3},
        {plugInModeDeepMultichannel, 16, 1, 1},
        {plugInModeLabColor, 8, 3, 3, _ConvertLAB8toRGB24, _ConvertRGB24toLAB8},
        {plugInModeLabColor, 8, 4, 3, _ConvertLAB8toRGB24, _ConvertRGB24toLAB8},
        {plugInModeLab48, 16, 3, 3, _ConvertLAB16toRGB48, _ConvertRGB48toLAB16},
        {plugInModeLab48, 16, 5, 3, _ConvertLAB16toRGB48, _ConvertRGB48toLAB16},
        {plugInModeCMYKColor, 8, 4, 4, _ConvertCMYK8toRGB24, _ConvertRGB24toCMYK8},
        {plugInModeCMYKColor, 8, 6, 4, _ConvertCMYK8toRGB24, _ConvertRGB24toCMYK8},
        {plugInModeCMYK64, 16, 4, 4, _ConvertCMYK16toRGB48, _ConvertRGB48toCMYK16},
        {plugInModeCMYK64, 16, 5, 4, _ConvertCMYK16toRGB48, _ConvertRGB48toCMYK16},
    };
    for (const ModeCase &c : cases) {
        SCOPED_TRACE(testing::Message() << "mode " << c.mode << ", planes " << c.planes);
        TestDocument document = Document(c.mode, c.depth, c.planes, kWidth, kHeight);
        for (int64_t pixel = 0; c.planes > c.colorPlanes && pixel < kWidth * kHeight; pixel += 7) {
            std::fill_n(document.source.begin() + (pixel * c.planes + c.colorPlanes) * c.depth / 8,
                        c.depth / 8, uint8_t{0});
        }
        const std::vector<uint8_t> expected = ExpectedResult(c, document, 2);
        const TestRun advanced = Play(document, 2);
        EXPECT_EQ(advanced.result, noErr);
        EXPECT_EQ(advanced.destination, expected);
        const TestRun continued = Play(document, 2, {.advanceState = false});
        EXPECT_EQ(continued.destination, expected);
        EXPECT_EQ(continued.progress, advanced.progress);

        faults::RefuseTemporaryMemory(true);
        const TestRun onDisk = Play(document, 2);
        faults::RefuseTemporaryMemory(false);
        EXPECT_EQ(onDisk.result, noErr);
        EXPECT_EQ(onDisk.destination, expected);
        EXPECT_EQ(FileCount(), 0u);
    }
}

TEST_F(Run, AsksForRowsInOrderAndTellsProgress) {
    TestDocument document = Document(plugInModeRGBColor, 8, 3, 4, 2);
    document.mask.assign(8, 255);
    const TestRun run = Play(document, 2);
    EXPECT_EQ(run.requestedTops, (std::vector<int16_t>{5, 6, 5, 5, 6}));
    std::vector<std::pair<int32_t, int32_t>> expected = {{0, 12}, {1, 12}};
    for (int32_t t = 0; t < 14; ++t) {
        expected.emplace_back(t, 42);
    }
    for (int32_t t = 0; t < 26; ++t) {
        expected.emplace_back(100 + 100 * t / 26, 300);
    }
    expected.insert(expected.end(), {{4, 6}, {5, 6}, {10, 12}, {11, 12}});
    EXPECT_EQ(run.progress, expected);
    EXPECT_TRUE(IsZero(run.record.inRect) && IsZero(run.record.outRect) && IsZero(run.record.maskRect));
    EXPECT_EQ(run.record.bufferSpace, 0);
}

TEST_F(Run, CancelLeavesTheDocumentUntouched) {
    const TestDocument document = Document(plugInModeRGBColor, 8, 4, 12, 6);
    const int64_t asked = Play(document, 2).abortCalls;
    EXPECT_EQ(asked, 18 + 30 + 6);
    for (const bool advanceState : {true, false}) {
        for (int64_t call = 0; call < asked; call += 5) {
            const TestRun run = Play(document, 2, {advanceState, call});
            EXPECT_EQ(run.result, userCanceledErr);
            EXPECT_EQ(run.destination, document.source);
            EXPECT_EQ(script::recorded.size(), 1u) << "recorded after a cancel too";
        }
    }
}

TEST_F(Run, DeepFloatsPassThroughScaled) {
    const struct {
        int16_t mode, planes, colorPlanes;
        float in;
        uint32_t out;
    } cases[] = {
        {plugInModeGray32, 1, 1, 0.5f, std::bit_cast<uint32_t>(0.5f)},
        {plugInModeRGB96, 3, 3, 0.5f, std::bit_cast<uint32_t>(0.5f)},
        {plugInModeGray32, 2, 1, 0.5f, 0x3B008081},
        {plugInModeRGB96, 5, 3, 1.0f, 0x3B808081},
    };
    for (const auto &c : cases) {
        TestDocument document = Document(c.mode, 32, c.planes, 3, 2);
        std::vector<uint32_t> expected;
        std::vector<float> samples;
        for (int i = 0; i < 6 * c.planes; ++i) {
            const bool color = i % c.planes < c.colorPlanes;
            samples.push_back(color ? c.in : 0.25f);
            expected.push_back(color ? c.out : std::bit_cast<uint32_t>(0.25f));
        }
        std::memcpy(document.source.data(), samples.data(), document.source.size());
        const TestRun run = Play(document, 2);
        ASSERT_EQ(run.result, noErr);
        EXPECT_EQ(std::memcmp(run.destination.data(), expected.data(), run.destination.size()), 0)
            << c.planes;
    }
}

TEST_F(Run, RefusesWhatItCannotFilter) {
    const struct {
        int16_t mode, planes, width, height;
        OSErr result;
    } cases[] = {
        {plugInModeBitmap, 1, 4, 4, filterBadMode},
        {plugInModeIndexedColor, 3, 4, 4, filterBadMode},
        {18, 3, 4, 4, filterBadMode},
        {-1, 3, 4, 4, filterBadMode},
        {plugInModeRGBColor, 2, 4, 4, filterBadMode},
        {plugInModeMultichannel, 2, 4, 4, filterBadMode},
        {plugInModeMultichannel, 5, 4, 4, filterBadMode},
        {plugInModeGrayScale, 1, 0, 4, noErr},
        {plugInModeGrayScale, 1, 4, 0, noErr},
        {plugInModeGrayScale, 1, 32760, 1, memFullErr},
    };
    for (const auto &c : cases) {
        for (const bool advanceState : {true, false}) {
            const TestDocument document = Document(c.mode, 8, c.planes, c.width, c.height);
            const TestRun run = Play(document, 2, {.advanceState = advanceState});
            EXPECT_EQ(run.result, c.result) << c.mode << ' ' << c.planes;
            EXPECT_EQ(run.destination, document.source);
        }
    }
    // Without a script the dialog decides, and there is none to show.
    EXPECT_EQ(RunPlugin(Document(plugInModeGrayScale, 8, 1, 4, 4), {}).result, userCanceledErr);
}

// Images store the number of bytes per pixel in 16 bits.
TEST_F(Run, RefusesPixelsThatNoImageCanHave) {
    const struct {
        int16_t mode;
        int32_t depth;
        int16_t planes;
        OSErr result;
    } cases[] = {
        {plugInModeRGBColor, 8, 32767, noErr},       {plugInModeRGB48, 16, 16383, noErr},
        {plugInModeRGB48, 16, 16384, filterBadMode}, {plugInModeGray32, 32, 8191, noErr},
        {plugInModeGray32, 32, 8192, filterBadMode}, {plugInModeRGB96, 32, 8200, filterBadMode},
    };
    for (const auto &c : cases) {
        const TestRun run = Play(Document(c.mode, c.depth, c.planes, 2, 1), 2);
        EXPECT_EQ(run.result, c.result) << c.planes;
        EXPECT_EQ(run.requestedTops.size(), c.result == noErr ? 3u : 0u) << c.planes;
    }
}

// A radius above the declared maximum leaves the remembered one unchanged.
TEST_F(Run, RecordsTheRadiusThatWasUsed) {
    const std::pair<double, float> cases[] = {{2, 2}, {3.5, 3.5f}, {0.5, 1}, {9, 1}, {4, 4}, {5, 4}};
    for (const auto &[played, used] : cases) {
        Play(Document(plugInModeGrayScale, 8, 1, 4, 4), played);
        EXPECT_EQ(script::recorded, (std::vector<script::Item>{{kRadiusKey, typeFloat, used}})) << played;
    }
}

TEST_F(Run, LeftOversOfDeadRunsGoAndLivingRunsKeepTheirs) {
    const char *names[] = {"BackingStore", "TempImage", "AlphaImage", "SelectionImage"};
    for (const char *name : names) {
        WriteBytes(name, "left by a run that died");
    }
    const TestDocument document = Document(plugInModeRGBColor, 8, 3, 5, 4);
    EXPECT_EQ(Play(document, 1).result, noErr);
    EXPECT_EQ(FileCount(), 0u);

    // An image on disk, as another run in this folder would have one.
    faults::RefuseTemporaryMemory(true);
    const TestImage source = RandomImage(6, 5, 3, 31);
    NamedImage *living = nullptr;
    ASSERT_EQ(MakeAlphaImage(source.width, source.height, source.bytesPerPixel, &living), noErr);
    for (int32_t y = 0; y < source.height; ++y) {
        PutLine(living, 0, y, source.RowBytes(), source.bytes.data() + y * source.RowBytes());
    }
    EXPECT_EQ(Play(Document(plugInModeRGBColor, 8, 4, 5, 4), 1).result, noErr);
    faults::RefuseTemporaryMemory(false);
    EXPECT_EQ(BytesOf(living), source.bytes);
    TossAlphaImage(living);
}

TEST_F(Run, SelectorsAnswerAndKeepTheirState) {
    FilterRecord record = {};
    record.bufferSpace = 77;
    intptr_t data = 0;
    int16_t result = 7;
    faults::FailAllocation(1);
    PluginMain(filterSelectorPrepare, &record, &data, &result);
    EXPECT_EQ(result, memFullErr);
    EXPECT_EQ(data, 0);

    const auto call = [&](int selector) {
        PluginMain(static_cast<int16_t>(selector), selector == filterSelectorAbout ? nullptr : &record, &data,
                   &result);
        return result;
    };
    const auto state = [&] { return reinterpret_cast<PluginState *>(*reinterpret_cast<Handle>(data)); };
    EXPECT_EQ(call(filterSelectorAbout), noErr);
    ASSERT_NE(data, 0);
    for (const int unknown : {-1, 6, 32767}) {
        EXPECT_EQ(call(unknown), filterBadParameters);
    }
    EXPECT_EQ(record.bufferSpace, 77);
    EXPECT_EQ(call(filterSelectorPrepare), noErr);
    EXPECT_EQ(record.bufferSpace, 0);

    faults::FailAllocation(1);
    EXPECT_EQ(call(filterSelectorParameters), memFullErr);
    EXPECT_TRUE(record.parameters == nullptr);  // the record is packed: no reference to a pointer in it
    EXPECT_FALSE(state()->parametersSet);
    // An existing handle keeps its first word.
    for (const int16_t mark : {int16_t{50}, int16_t{3}}) {
        EXPECT_EQ(call(filterSelectorParameters), noErr);
        EXPECT_TRUE(state()->parametersSet);
        int16_t words[2];
        std::memcpy(words, *record.parameters, sizeof words);
        EXPECT_EQ(words[0], mark);
        EXPECT_EQ(words[1], 1);
        const int16_t others[2] = {3, 9};
        std::memcpy(*record.parameters, others, sizeof others);
    }
    // A host without a suite cannot free what it forgets, so it gets the same again.
    const Handle made = record.parameters;
    record.parameters = nullptr;
    EXPECT_EQ(call(filterSelectorParameters), noErr);
    EXPECT_TRUE(record.parameters == made);
    DisposeHandle(made);

    // Nothing happens without a Start, or after one with an empty rectangle, whatever was requested.
    for (const int selector : {filterSelectorContinue, filterSelectorStart}) {
        record.filterRect = {5, 9, 5, 20};
        record.inRect = {1, 2, 3, 4};
        record.outRect = {5, 6, 7, 8};
        EXPECT_EQ(call(selector), noErr);
        EXPECT_TRUE(IsZero(record.inRect) && IsZero(record.outRect)) << selector;
        EXPECT_EQ(state()->phase, phaseIdle);
    }
    // Parameters counts for one run.
    EXPECT_FALSE(state()->repeatsLastFilter);
    // One pixel wider than any image can be.
    record.filterRect = {0, -1, 1, 32767};
    EXPECT_EQ(call(filterSelectorStart), filterBadParameters);
    EXPECT_EQ(state()->phase, phaseDone);
    EXPECT_TRUE(state()->repeatsLastFilter);
    record.filterRect = {};

    // The selection is the only image that Finish leaves; the next Start takes it over.
    record.maxSpace = 15;  // of which the image takes ten bytes
    EXPECT_EQ(call(filterSelectorPrepare), noErr);
    EXPECT_EQ(MakeImage(2, 2, 1, &state()->image), noErr);
    EXPECT_FALSE(state()->image->onDisk);
    EXPECT_EQ(MakeAlphaImage(2, 2, 1, &state()->alphaImage), noErr);
    EXPECT_EQ(MakeSelectionImage(2, 2, 1, &state()->selectionImage), noErr);
    EXPECT_TRUE(state()->alphaImage->onDisk);
    record.maxSpace = 0;
    EXPECT_EQ(call(filterSelectorFinish), noErr);
    EXPECT_EQ(state()->image, nullptr);
    EXPECT_EQ(state()->alphaImage, nullptr);
    EXPECT_NE(state()->selectionImage, nullptr);
    EXPECT_EQ(call(filterSelectorStart), noErr);
    EXPECT_EQ(state()->selectionImage, nullptr);
    DisposeState(data);
}

TEST_F(Run, RowBufferFitsEveryDepth) {
    const std::pair<int32_t, int64_t> cases[] = {{8, 50}, {16, 90}, {32, 170}, {1, 50}, {24, 50}};
    for (const auto &[depth, size] : cases) {
        FilterRecord record = {};
        record.depth = depth;
        record.planes = 4;
        record.imageMode = plugInModeRGBColor;
        record.filterRect = {0, 0, 5, 10};
        PluginState state = {};
        state.filterRecord = &record;
        EXPECT_EQ(DoStart(&state), noErr);
        EXPECT_EQ(GetPtrSize(state.rowBuffer), size);
        // A second Start releases what the first one took.
        EXPECT_EQ(DoStart(&state), noErr);
        DoFinish(&state);
    }
}

TEST_F(Run, RadiusIsClampedFromOneToSix) {
    const float infinity = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const std::pair<float, float> cases[] = {
        {-3, 1},       {0, 1}, {0.5f, 1}, {0.99999994f, 1}, {nan, 1},        {1.0000001f, 1.0000001f},
        {2.5f, 2.5f},  {4, 4}, {5, 5},    {6, 6},           {6.0000005f, 6}, {7, 6},
        {infinity, 6},
    };
    for (const auto &[remembered, radius] : cases) {
        RunContext context = {};
        SetPreferenceFloat(&context, kRememberedRadiusOffset, remembered);
        SPBlock *settings = _AllocateSPBlock(22);
        ASSERT_EQ(GetDefaultSettings(&context, settings), noErr);
        EXPECT_EQ(GetSPWEMBSignature(settings), FourCharCode("HyMd"));
        Handle parameters = nullptr;
        ASSERT_EQ(GetParameters(nullptr, &context, &parameters, settings), noErr);
        FilterParameters values;
        std::memcpy(&values, *parameters, sizeof values);
        EXPECT_EQ(GetHandleSize(parameters), 6);
        EXPECT_EQ(values.radius, radius);
        EXPECT_EQ(values.enabled, 1);
        DisposeHandle(parameters);
        _DisposeSPBlock(settings);
    }
}

}  // namespace
