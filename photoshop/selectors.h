// The calls a host makes to a filter plug-in, and the results it understands.
#pragma once

#include "platform/types.h"

enum : int16_t {
    filterSelectorAbout = 0,
    filterSelectorParameters = 1,
    filterSelectorPrepare = 2,
    filterSelectorStart = 3,
    filterSelectorContinue = 4,
    filterSelectorFinish = 5,
};

// A positive result means: stop quietly, the plug-in has already told the user.
constexpr OSErr filterBadParameters = -30100;
constexpr OSErr filterBadMode = -30101;
constexpr OSErr errPlugInHostInsufficient = -30900;
constexpr OSErr errReportString = -30904;

struct FilterRecord;

// The signature of a plug-in module's "main" symbol. For About the host passes an AboutRecord in place of the
// FilterRecord. `data` starts as 0, and is the plug-in's to use from call to call.
using FilterEntryProc = void (*)(int16_t selector, FilterRecord *record, intptr_t *data, int16_t *result);
