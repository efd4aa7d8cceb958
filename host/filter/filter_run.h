// One run of a filter over a document, through its entry point.
#pragma once

#include <optional>
#include <string>

#include "host/document/document.h"
#include "host/filter/orders.h"
#include "host/filter/plugin.h"
#include "host/report/watcher.h"
#include "platform/types.h"

// Part of a document that is filtered as if it were all: of `framed`, which the filter is shown, only `core`
// is taken into the destination.
struct Tile {
    VRect core;
    VRect framed;
};

struct FilterRequest {
    Module *module;
    Document *document;
    FilterOrders orders;
    bool offerAdvanceState;  // else every request of the filter is answered by a Continue
    Watcher watcher;
    std::optional<Tile> tile = {};  // without it, all that is selected
};

struct FilterOutcome {
    OSErr result;         // noErr, userCanceledErr, or what the filter ended with
    std::string message;  // the filter's own, with errReportString
    Action recorded;      // what the filter wrote, also after an error; else the action played
};

// The interface counts rows and columns in 16 bits; this much of them is left to filters for margins.
constexpr int32_t kMaxRunSide = 30000;

// Filters the source into the destination, which has to be a copy of it there, and is one again after
// anything but noErr. The sides of what the filter is shown must not exceed kMaxRunSide. One run at a time:
// the callbacks of the interface are told nothing of whose they are.
FilterOutcome RunFilter(const FilterRequest &request);
