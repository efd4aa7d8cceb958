// How the host drives a filter: with stand-ins that check what they are given, and with the real one.
#include "host/filter/filter_run.h"

#include <functional>

#include "host/document/sample_scale.h"
#include "host/filter/filter_result.h"
#include "tests/host/host_fixture.h"

namespace {

// A filter made of two functions. Continue must request the next rows itself.
struct StandIn {
    std::function<OSErr(FilterRecord *)> start;
    std::function<OSErr(FilterRecord *)> next;
    std::string calls;  // one letter per selector
};
StandIn *standIn = nullptr;

void StandInEntry(int16_t selector, FilterRecord *record, intptr_t *, int16_t *result) {
    standIn->calls += "APpSCF"[selector];
    *result = selector == filterSelectorStart      ? standIn->start(record)
              : selector == filterSelectorContinue ? standIn->next(record)
                                                   : OSErr{noErr};
}

void Ask(FilterRecord *record, const Rect &rect, int16_t loPlane, int16_t hiPlane) {
    record->inRect = record->outRect = rect;
    record->inLoPlane = record->outLoPlane = loPlane;
    record->inHiPlane = record->outHiPlane = hiPlane;
}

OSErr AskNothing(FilterRecord *record) {
    Ask(record, {}, 0, 0);
    return noErr;
}

OSErr AskRow(FilterRecord *record, int16_t row) {
    Ask(record, {row, 0, static_cast<int16_t>(row + 1), record->imageSize.h}, 0,
        static_cast<int16_t>(record->planes - 1));
    return noErr;
}

FilterOutcome RunStandIn(StandIn *filter, Document *document, bool advance = false, Watcher watcher = {}) {
    standIn = filter;
    Module module = {StandInEntry, 0};
    return RunFilter({&module, document, {}, advance, watcher});
}

class FilterRun : public HostTest {};

TEST_F(FilterRun, SelectorsFollowEachOther) {
    const auto fail = [](FilterRecord *) { return OSErr{memFullErr}; };
    const auto ask = [](FilterRecord *record) { return AskRow(record, 0); };
    const auto askOutside = [](FilterRecord *record) { return AskRow(record, record->imageSize.v); };
    const auto report = [](FilterRecord *record) {
        std::memcpy(*record->errorString, "\3Ugh", 4);
        return OSErr{errReportString};
    };
    const struct {
        const char *description;
        StandIn filter;
        const char *calls;
        OSErr result;
        const char *told;
    } cases[] = {
        {"all in Start", {AskNothing, fail, ""}, "pSF", noErr, nullptr},
        {"one row", {ask, AskNothing, ""}, "pSCF", noErr, nullptr},
        {"Start fails", {fail, fail, ""}, "pS", memFullErr, "x: there is not enough memory to filter it."},
        {"Continue fails",
         {ask, fail, ""},
         "pSCF",
         memFullErr,
         "x: there is not enough memory to filter it."},
        {"outside the picture",
         {askOutside, AskNothing, ""},
         "pSF",
         filterBadParameters,
         "x: the filter did not understand what it was given."},
        {"own words", {ask, report, ""}, "pSCF", errReportString, "x: Ugh."},
        {"told the user itself", {ask, [](FilterRecord *) { return OSErr{1}; }, ""}, "pSCF", 1, ""},
    };
    for (const auto &test : cases) {
        SCOPED_TRACE(test.description);
        Document document = RandomDocument(plugInModeRGBColor, 8, 3, 3, 6, 4);
        StandIn filter = test.filter;
        const FilterOutcome outcome = RunStandIn(&filter, &document);
        EXPECT_EQ(filter.calls, test.calls);
        EXPECT_EQ(outcome.result, test.result);
        const MaybeFailure failure = FailureOfFilter(outcome, "x");
        ASSERT_EQ(failure.has_value(), test.told != nullptr);
        EXPECT_EQ(failure ? failure->sentence : "", failure ? test.told : "");
    }
}

TEST_F(FilterRun, EndlessFiltersAreEnded) {
    constexpr int kGivesUp = 10'000;  // so that a missing limit fails the test instead of hanging it
    const auto askRow = [](FilterRecord *record) { return AskRow(record, 1); };
    const auto askMask = [](FilterRecord *record) {
        record->maskRect = {0, 0, 1, 1};
        return AskNothing(record);
    };
    // Row by row and plane by plane, `passes` times.
    const auto askPasses = [](FilterRecord *record, int passes, int request) {
        const int requests = record->imageSize.v * record->planes;
        const auto row = static_cast<int16_t>(request / record->planes % record->imageSize.v);
        const auto plane = static_cast<int16_t>(request % record->planes);
        Ask(record, {row, 0, static_cast<int16_t>(row + 1), record->imageSize.h}, plane, plane);
        return request < passes * requests ? OSErr{noErr} : AskNothing(record);
    };
    const struct {
        const char *description;
        std::function<OSErr(FilterRecord *, int request)> ask;
        OSErr result;
    } cases[] = {
        {"the same row", [=](FilterRecord *record, int) { return askRow(record); }, errReportString},
        {"a mask and nothing else", [=](FilterRecord *record, int) { return askMask(record); },
         errReportString},
        {"eight passes", [=](FilterRecord *record, int i) { return askPasses(record, 8, i); }, noErr},
    };
    for (const auto &test : cases) {
        for (const bool advance : {false, true}) {
            SCOPED_TRACE(testing::Message() << test.description << advance);
            Document document = RandomDocument(plugInModeRGBColor, 8, 3, 4, 6, 7);
            int requests = 0;
            const auto next = [&](FilterRecord *record) {
                record->maskRect = {};
                return ++requests > kGivesUp ? AskNothing(record) : test.ask(record, requests - 1);
            };
            const auto whole = [&](FilterRecord *record) {
                OSErr err = noErr;
                for (next(record); err == noErr && record->inRect.bottom + record->maskRect.bottom > 0;) {
                    err = record->advanceState();
                    next(record);
                }
                return err;
            };
            StandIn filter = advance ? StandIn{whole, AskNothing, ""} : StandIn{next, next, ""};
            const FilterOutcome outcome = RunStandIn(&filter, &document, advance);
            EXPECT_EQ(outcome.result, test.result);
            EXPECT_LT(requests, 1000);
            EXPECT_EQ(BytesOf(document, document.destination), BytesOf(document, document.source));
            EXPECT_EQ(outcome.message.find("does not come to an end") != std::string::npos,
                      test.result == errReportString);
        }
    }
}

TEST_F(FilterRun, RowsAndPlanesGoWhereTheyWereAskedFor) {
    // Every column and plane of several rectangles is inverted; nothing around them may change.
    const struct {
        Rect rect;
        int16_t loPlane, hiPlane;
    } requests[] = {{{0, 0, 5, 7}, 0, 3}, {{1, 2, 3, 6}, 1, 2}, {{4, 6, 5, 7}, 3, 3}};
    for (const auto &request : requests) {
        Document document = RandomDocument(plugInModeRGBColor, 8, 3, 4, 7, 5);
        const int width = (request.rect.right - request.rect.left) * (request.hiPlane - request.loPlane + 1);
        StandIn filter = {[&](FilterRecord *record) {
                              Ask(record, request.rect, request.loPlane, request.hiPlane);
                              return noErr;
                          },
                          [&](FilterRecord *record) {
                              EXPECT_GT(record->outRowBytes, width) << "rows are padded";
                              for (int y = 0; y < request.rect.bottom - request.rect.top; ++y) {
                                  auto *in = static_cast<uint8_t *>(record->inData) + y * record->inRowBytes;
                                  auto *out =
                                      static_cast<uint8_t *>(record->outData) + y * record->outRowBytes;
                                  for (int i = 0; i < record->outRowBytes; ++i) {
                                      out[i] = static_cast<uint8_t>(i < width ? ~in[i] : 0xEE);
                                  }
                              }
                              return AskNothing(record);
                          },
                          ""};
        ASSERT_EQ(RunStandIn(&filter, &document).result, noErr);
        std::vector<uint8_t> expected = BytesOf(document, document.source);
        for (int y = request.rect.top; y < request.rect.bottom; ++y) {
            for (int x = request.rect.left; x < request.rect.right; ++x) {
                for (int p = request.loPlane; p <= request.hiPlane; ++p) {
                    uint8_t &sample = expected[static_cast<size_t>((y * 7 + x) * 4 + p)];
                    sample = static_cast<uint8_t>(~sample);
                }
            }
        }
        EXPECT_EQ(BytesOf(document, document.destination), expected);
    }
}

TEST_F(FilterRun, SixteenBitScalesMeetAtBothEnds) {
    for (uint32_t sample = 0; sample <= plugInMaxSample16; ++sample) {
        ASSERT_EQ(FilterSample(FileSample(static_cast<uint16_t>(sample))), sample);
    }
    for (uint32_t sample = 0; sample <= kMaxFileSample16; ++sample) {
        const int back = FileSample(FilterSample(static_cast<uint16_t>(sample)));
        ASSERT_LE(std::abs(back - static_cast<int>(sample)), 1) << sample;
    }
    EXPECT_EQ(FilterSample(65535), 32768);
    EXPECT_EQ(FileSample(32768), 65535);
    EXPECT_EQ(FileSample(40000), 65535) << "beyond white";
}

TEST_F(FilterRun, UntouchedTransparencyKeepsEveryBitAndOtherChannelsAreNotShown) {
    for (const int32_t transparency : {3, 4, 0}) {
        Document document = RandomDocument(plugInModeRGB48, 16, 3, 5, 9, 6);
        document.transparency = transparency;
        const int shown = transparency == 0 ? 3 : 4;
        StandIn filter = {[](FilterRecord *record) { return AskRow(record, 0); },
                          [&](FilterRecord *record) {
                              EXPECT_EQ(record->planes, shown);
                              // Writes back what it was given, except for the last plane of the first pixel.
                              std::memcpy(record->outData, record->inData,
                                          static_cast<size_t>(record->outRowBytes));
                              static_cast<uint16_t *>(record->outData)[shown - 1] = 1234;
                              const auto next = static_cast<int16_t>(record->outRect.bottom);
                              return next < record->imageSize.v ? AskRow(record, next) : AskNothing(record);
                          },
                          ""};
        ASSERT_EQ(RunStandIn(&filter, &document).result, noErr);
        const auto *source = reinterpret_cast<const uint16_t *>(document.source.get());
        const auto *destination = reinterpret_cast<const uint16_t *>(document.destination.get());
        for (int i = 0; i < 9 * 6 * 5; ++i) {
            const bool written = i % (9 * 5) == (transparency == 0 ? 2 : transparency);
            ASSERT_EQ(destination[i], written     ? FileSample(1234)
                                      : i % 5 < 3 ? FileSample(FilterSample(source[i]))
                                                  : source[i])
                << i << " " << transparency;
        }
    }
}

TEST_F(FilterRun, BothWaysOfDrivingGiveTheSame) {
    const struct {
        int16_t mode;
        int32_t depth, colorPlanes, planes;
    } kinds[] = {{plugInModeGrayScale, 8, 1, 1}, {plugInModeGray16, 16, 1, 2}, {plugInModeRGBColor, 8, 3, 5},
                 {plugInModeRGB48, 16, 3, 4},    {plugInModeGray32, 32, 1, 1}, {plugInModeRGB96, 32, 3, 3}};
    Action action;
    action.items.push_back({.key = kRadiusKey, .type = typeFloat, .number = 2.5});
    for (const auto &kind : kinds) {
        SCOPED_TRACE(kind.mode);
        std::vector<uint8_t> results[2];
        for (const bool advance : {false, true}) {
            Document document = RandomDocument(kind.mode, kind.depth, kind.colorPlanes, kind.planes, 23, 17);
            const FilterOutcome outcome = RunFilter({&realFilter, &document, {action}, advance, {}});
            ASSERT_EQ(outcome.result, noErr);
            const ActionItem *recorded = FindItem(outcome.recorded, kRadiusKey);
            ASSERT_NE(recorded, nullptr);
            EXPECT_EQ(recorded->number, 2.5);
            results[advance] = BytesOf(document, document.destination);
            EXPECT_NE(results[advance], BytesOf(document, document.source)) << "nothing was filtered";
        }
        EXPECT_EQ(results[0], results[1]);
    }
}

TEST_F(FilterRun, CancelLeavesTheDocumentAsItWas) {
    for (const bool advance : {false, true}) {
        // Counts the calls once, then cancels at one point after another, up to the very last.
        int asked = 0;
        int limit = INT32_MAX;
        Watcher watcher;
        watcher.cancelled = [&] { return ++asked > limit; };
        Document document = RandomDocument(plugInModeRGBColor, 8, 3, 4, 20, 16);
        ASSERT_EQ(RunFilter({&realFilter, &document, {}, advance, watcher}).result, noErr);
        const int total = asked;
        ASSERT_GT(total, 3 * 16) << "asked at least once a row, in each of the three phases";
        for (limit = 0; limit < total; limit += 5) {
            asked = 0;
            EXPECT_EQ(RunFilter({&realFilter, &document, {}, advance, watcher}).result, userCanceledErr);
            ASSERT_EQ(BytesOf(document, document.destination), BytesOf(document, document.source));
        }
    }
}

}  // namespace
