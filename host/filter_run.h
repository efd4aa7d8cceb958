// One run of a filter over a document, through its entry point.
#pragma once

#include <string>

#include "host/action.h"
#include "host/document.h"
#include "host/module.h"
#include "host/watcher.h"
#include "platform/types.h"

struct FilterRequest {
    Module *module;
    Document *document;
    Action action;           // played back without a dialog
    bool offerAdvanceState;  // else every request of the filter is answered by a Continue
    Watcher watcher;
};

struct FilterOutcome {
    OSErr result;         // noErr, userCanceledErr, or what the filter ended with
    std::string message;  // the filter's own, with errReportString
    Action recorded;      // what the filter wrote, also after an error; else the action played
};

// Filters the source into the destination. After anything but noErr the destination is a copy of the source.
// One run at a time: the callbacks of the interface are told nothing of whose they are.
FilterOutcome RunFilter(const FilterRequest &request);
