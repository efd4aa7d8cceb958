// A host that runs the plug-in over a document in memory and records what happened.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "photoshop/filter_record.h"
#include "tests/support/script_host.h"

struct TestDocument {
    int16_t imageMode;
    int32_t depth;
    int16_t planes;
    Rect bounds;                  // the filter rectangle
    std::vector<uint8_t> source;  // interleaved, without padding
    std::vector<uint8_t> mask;    // a byte per pixel; empty for none
};

struct TestHostOptions {
    bool advanceState = true;   // otherwise the host sends Continue
    int64_t cancelAtCall = -1;  // abortProc answers yes from this call on
    PIDescriptorParameters *descriptorParameters = nullptr;
    ReadImageDocumentDesc *documentInfo = nullptr;
    bool ignoreErrors = false;  // continues whatever the result
};

struct TestRun {
    OSErr result;                      // the first error
    std::vector<uint8_t> destination;  // what reached the document
    std::vector<int16_t> requestedTops;
    std::vector<std::pair<int32_t, int32_t>> progress;
    int64_t abortCalls;
    FilterRecord record;
};

// Calls Prepare, Start, Continue and Finish, then disposes of the plug-in's data.
TestRun RunPlugin(const TestDocument &document, const TestHostOptions &options);

// Runs with a recorded action that holds `items`.
TestRun RunScripted(const TestDocument &document, std::vector<script::Item> items,
                    TestHostOptions options = {}, int16_t playInfo = plugInDialogDontDisplay);

int32_t RowBytes(const TestDocument &document);
