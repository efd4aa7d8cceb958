// One run of a filter over a document, through the filter's entry point.
#pragma once

#include <optional>
#include <string>

#include "host/document/document.h"
#include "host/filter/orders.h"
#include "host/filter/plugin.h"
#include "host/report/watcher.h"
#include "platform/types.h"

// Part of a document, filtered as if it were the whole: the filter is shown `framed`, but only `core` goes
// into the destination.
struct Tile {
    VRect core;
    VRect framed;
};

struct FilterRequest {
    Module *module;
    Document *document;
    FilterOrders orders;
    bool offerAdvanceState;  // otherwise every request is answered by a Continue
    Watcher watcher;
    std::optional<Tile> tile = {};  // without one, everything selected
};

struct FilterOutcome {
    OSErr result;         // noErr, userCanceledErr, or what the filter ended with
    std::string message;  // the filter's own, with errReportString
    Action recorded;      // what the filter wrote, even after an error; otherwise the action played
};

// In pixels. The interface counts rows and columns in 16 bits, up to 32767; the rest is left for filters'
// margins.
constexpr int32_t kMaxRunSide = 30000;

// Filters the source into the destination. What is filtered must be a copy of the source beforehand, and is
// one again after anything but noErr. The sides of what the filter is shown must not exceed kMaxRunSide. One
// run at a time: the callbacks of the interface cannot tell runs apart.
FilterOutcome RunFilter(const FilterRequest &request);
