#include "tests/support/test_host.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "platform/memory.h"
#include "plugin/entry.h"
#include "plugin/states.h"

namespace {

constexpr size_t kPadding = 13;

struct Session {
    const TestDocument *document;
    const TestHostOptions *options;
    TestRun run;
    std::vector<uint8_t> inRow, outRow, maskRow;
    int32_t outputRow = -1;  // the row that outRow holds
};
Session *session;

int32_t RowIndex(const Rect &rect) {
    return rect.bottom > rect.top ? rect.top - session->document->bounds.top : -1;
}

void StoreOutput() {
    if (session->outputRow >= 0) {
        const int32_t rowBytes = RowBytes(*session->document);
        std::copy_n(session->outRow.begin(), rowBytes,
                    session->run.destination.begin() + session->outputRow * rowBytes);
    }
}

// A run asks for one row of all planes at a time.
void ExpectOneRow(const Rect &rect) {
    const Rect &bounds = session->document->bounds;
    EXPECT_EQ(rect.bottom, rect.top + 1);
    EXPECT_EQ(rect.left, bounds.left);
    EXPECT_EQ(rect.right, bounds.right);
}

void DeliverRow() {
    const TestDocument &document = *session->document;
    FilterRecord &record = session->run.record;
    ExpectOneRow(record.inRect);
    ExpectOneRow(record.outRect);
    EXPECT_EQ(record.inLoPlane, 0);
    EXPECT_EQ(record.outLoPlane, 0);
    EXPECT_EQ(record.inHiPlane, document.planes - 1);
    EXPECT_EQ(record.outHiPlane, document.planes - 1);
    if (record.haveMask) {
        ExpectOneRow(record.maskRect);
    }
    const int32_t rowBytes = RowBytes(document);
    const auto fetch = [&](const std::vector<uint8_t> &from, int32_t row, int32_t bytes,
                           std::vector<uint8_t> *to) {
        to->assign(static_cast<size_t>(bytes) + kPadding, 0xEE);
        std::copy_n(from.begin() + row * bytes, bytes, to->begin());
        return static_cast<void *>(to->data());
    };
    session->outputRow = RowIndex(record.outRect);
    const int32_t row = RowIndex(record.inRect);
    record.inData = row < 0 ? nullptr : fetch(document.source, row, rowBytes, &session->inRow);
    record.outData = session->outputRow < 0
                         ? nullptr
                         : fetch(session->run.destination, session->outputRow, rowBytes, &session->outRow);
    const int32_t maskRow = document.mask.empty() ? -1 : RowIndex(record.maskRect);
    const int32_t width = document.bounds.right - document.bounds.left;
    record.maskData = maskRow < 0 ? nullptr : fetch(document.mask, maskRow, width, &session->maskRow);
    record.inRowBytes = record.outRowBytes = rowBytes + static_cast<int32_t>(kPadding);
    record.maskRowBytes = width + static_cast<int32_t>(kPadding);
}

// Every row is read and written, with the filter in between.
size_t MostRequests() {
    const Rect &bounds = session->document->bounds;
    return 2 * static_cast<size_t>(bounds.bottom - bounds.top) + 1;
}

OSErr AdvanceState() {
    StoreOutput();
    if (session->run.requestedTops.size() == MostRequests()) {
        ADD_FAILURE() << "the run asks for more rows than there are";
        return ioErr;
    }
    session->run.requestedTops.push_back(session->run.record.inRect.top);
    DeliverRow();
    return noErr;
}

bool WantsMore() {
    return RowIndex(session->run.record.inRect) >= 0 || RowIndex(session->run.record.outRect) >= 0;
}

void FillRecord() {
    const TestDocument &document = *session->document;
    FilterRecord &record = session->run.record;
    record.planes = document.planes;
    record.filterRect = document.bounds;
    record.imageMode = document.imageMode;
    record.depth = document.depth;
    record.haveMask = !document.mask.empty();
    record.advanceState = session->options->advanceState ? AdvanceState : nullptr;
    record.bufferSpace = 77;
    record.handleProcs = &script::handleProcs;
    record.descriptorParameters = session->options->descriptorParameters;
    record.documentInfo = session->options->documentInfo;
    record.progressProc = [](int32_t done, int32_t total) {
        session->run.progress.emplace_back(done, total);
    };
    record.abortProc = []() -> Boolean {
        const int64_t at = session->options->cancelAtCall;
        return session->run.abortCalls++ >= at && at >= 0;
    };
}

}  // namespace

int32_t RowBytes(const TestDocument &document) {
    return (document.bounds.right - document.bounds.left) * document.planes * document.depth / 8;
}

TestRun RunPlugin(const TestDocument &document, const TestHostOptions &options) {
    Session current = {&document, &options, {}, {}, {}, {}, -1};
    session = &current;
    current.run.destination = document.source;
    FillRecord();

    intptr_t data = 0;
    int16_t result = 0;
    FilterRecord *record = &current.run.record;
    PluginMain(filterSelectorPrepare, record, &data, &result);
    PluginMain(filterSelectorStart, record, &data, &result);
    current.run.result = result;
    const auto goesOn = [&] { return current.run.result == noErr || options.ignoreErrors; };
    if (goesOn()) {
        while (goesOn() && WantsMore()) {
            if (AdvanceState() != noErr) {
                break;
            }
            PluginMain(filterSelectorContinue, record, &data, &result);
            current.run.result = current.run.result == noErr ? result : current.run.result;
        }
        StoreOutput();
        int16_t finishResult = 0;
        PluginMain(filterSelectorFinish, record, &data, &finishResult);
    }
    if (!goesOn()) {
        current.run.destination = document.source;
    }
    DisposeState(data);
    session = nullptr;
    return current.run;
}

TestRun RunScripted(const TestDocument &document, std::vector<script::Item> items, TestHostOptions options,
                    int16_t playInfo) {
    PIDescriptorParameters parameters = script::Parameters(std::move(items), playInfo);
    options.descriptorParameters = &parameters;
    TestRun run = RunPlugin(document, options);
    DisposeHandle(parameters.descriptor);
    return run;
}
