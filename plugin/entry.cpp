#include "plugin/entry.h"

#include <cstddef>
#include <cstring>
#include <iterator>

#include "imagestore/named_images.h"
#include "platform/memory.h"
#include "plugin/run_driver.h"
#include "plugin/run_geometry.h"
#include "plugin/states.h"
#include "toolkit/host_handles.h"

namespace {

// The host keeps this handle, as a sign that parameters were asked for. Nothing here reads it back.
struct HostParameters {
    int16_t mark;
    int16_t asked;
};
constexpr int16_t kHostParametersMark = 50;  // fixed, but without a meaning

// Writes the block from `offset` on.
void WriteHostParameters(const FilterRecord *record, size_t offset) {
    constexpr HostParameters kParameters = {kHostParametersMark, 1};
    const Ptr contents = HostLockHandle(record->handleProcs, record->parameters);
    if (contents != nullptr) {
        std::memcpy(contents + offset, reinterpret_cast<const char *>(&kParameters) + offset,
                    sizeof kParameters - offset);
    }
    HostUnlockHandle(record->handleProcs, record->parameters);
}

// Whether the host's handle, which may be of an earlier session, has room for the block. If the host cannot
// tell, only the handle that was made here is known to have it.
bool HasHostParameters(const PluginState *state) {
    const FilterRecord *record = state->filterRecord;
    const int32_t size = HostHandleSize(record->handleProcs, record->parameters);
    return size == kUnknownSize ? record->parameters == state->madeParameters
                                : size >= static_cast<int32_t>(sizeof(HostParameters));
}

OSErr DoAbout(PluginState *) {
    return noErr;
}

int16_t SupportedDepth(int32_t depth) {
    return depth == 16 || depth == 32 ? static_cast<int16_t>(depth) : int16_t{8};
}

// Removes backing files of runs that died; making an image only clears its own name. The images of a living
// run keep their open files.
void ClearLeftOvers() {
    TossTempImage(nullptr);
    TossAlphaImage(nullptr);
    TossSelectionImage(nullptr);
}

void ResetRun(PluginState *state) {
    ReleaseRun(state);
    ClearLeftOvers();
    state->phase = phaseReading;
    state->depth = SupportedDepth(state->filterRecord->depth);
    state->haveMask = false;
    state->maskAnd = -1;
    state->maskHasZero = false;
    state->selectionUsed = false;
    state->imageError = noErr;
    state->repeatsLastFilter = !state->userToBeAsked;
    state->userToBeAsked = false;
    state->originLeft = state->filterRecord->filterRect.left;
    state->originTop = state->filterRecord->filterRect.top;
}

// Some hosts state no size of the image.
bool LiesInImage(const FilterRecord &record) {
    const auto [height, width] = record.imageSize;
    return (width <= 0 && height <= 0) ||
           (record.filterRect.left >= 0 && record.filterRect.top >= 0 && record.filterRect.right <= width &&
            record.filterRect.bottom <= height);
}

OSErr AllocateRowBuffer(PluginState *state) {
    RunGeometry run;
    const OSErr err = GetRunGeometry(state, &run);
    if (err != noErr) {
        return err;
    }
    state->rowBuffer = NewPtrClear(RowBufferSize(run));
    return state->rowBuffer == nullptr ? memFullErr : noErr;
}

void RequestFirstRow(PluginState *state) {
    FilterRecord *record = state->filterRecord;
    record->inRect = record->filterRect;
    record->outRect = record->filterRect;
    RequestRow(record, 0);
    state->haveMask = record->haveMask != 0;
    if (state->haveMask) {
        record->maskRect = record->filterRect;
        RequestMaskRow(record, 0);
    }
    record->inLoPlane = 0;
    record->outLoPlane = 0;
    record->inHiPlane = static_cast<int16_t>(record->planes - 1);
    record->outHiPlane = record->inHiPlane;
    state->requested = record->outRect;
}

bool RequestsNothing(const FilterRecord *record) {
    const Rect nothing = {};
    return std::memcmp(&record->inRect, &nothing, sizeof nothing) == 0 &&
           std::memcmp(&record->outRect, &nothing, sizeof nothing) == 0;
}

OSErr AdvanceToTheEnd(PluginState *state) {
    for (;;) {
        OSErr err = PhotoshopAdvanceState(state);
        if (err == noErr) {
            err = DoContinue(state);
        }
        if (err != noErr || RequestsNothing(state->filterRecord)) {
            return err;
        }
    }
}

OSErr StartRun(PluginState *state) {
    ResetRun(state);
    if (IsEmpty(state->filterRecord->filterRect)) {
        state->phase = phaseIdle;
        ClearRequest(state->filterRecord);
        return noErr;
    }
    if (!LiesInImage(*state->filterRecord)) {
        return filterBadParameters;
    }
    const OSErr err = AllocateRowBuffer(state);
    if (err != noErr) {
        return err;
    }
    RequestFirstRow(state);
    return state->filterRecord->advanceState == nullptr ? noErr : AdvanceToTheEnd(state);
}

constexpr OSErr (*kSelectors[])(PluginState *) = {DoAbout, DoParameters, DoPrepare,
                                                  DoStart, DoContinue,   DoFinish};

}  // namespace

void InitGlobals(PluginState *state) {
    state->phase = phaseIdle;
    state->image = nullptr;
    state->parametersSet = false;
}

OSErr DoParameters(PluginState *state) {
    FilterRecord *record = state->filterRecord;
    // What a host without a suite forgot is still there.
    if (record->parameters == nullptr && state->ownsParameters && !HostMakesHandles(record->handleProcs)) {
        record->parameters = state->madeParameters;
    }
    if (record->parameters == nullptr) {
        record->parameters = HostNewHandle(record->handleProcs, sizeof(HostParameters));
        if (record->parameters == nullptr) {
            return memFullErr;
        }
        state->madeParameters = record->parameters;
        state->ownsParameters = !HostMakesHandles(record->handleProcs);
        WriteHostParameters(record, 0);
    } else if (HasHostParameters(state)) {
        WriteHostParameters(record, offsetof(HostParameters, asked));
    } else if (HostHandleSize(record->handleProcs, record->parameters) >= 0 &&
               HostSetHandleSize(record->handleProcs, record->parameters, sizeof(HostParameters)) == noErr) {
        WriteHostParameters(record, 0);
    }
    state->parametersSet = true;
    state->userToBeAsked = true;
    return noErr;
}

OSErr DoPrepare(PluginState *state) {
    state->filterRecord->bufferSpace = 0;
    return noErr;
}

OSErr DoStart(PluginState *state) {
    const OSErr err = StartRun(state);
    if (err != noErr) {
        // Hosts do not call Finish after a failed Start.
        ReleaseRun(state);
        ClearRequest(state->filterRecord);
        state->phase = phaseDone;
    }
    return err;
}

OSErr DoFinish(PluginState *state) {
    NamedImage *selection = state->selectionImage;
    state->selectionImage = nullptr;
    ReleaseRun(state);
    state->selectionImage = selection;
    return noErr;
}

OSErr PhotoshopAdvanceState(PluginState *state) {
    const auto advanceState = state->filterRecord->advanceState;
    return advanceState == nullptr ? userCanceledErr : advanceState();
}

void PluginMain(int16_t selector, FilterRecord *record, intptr_t *data, int16_t *result) {
    const Handle handle = TakeState(data);
    if (handle == nullptr) {
        *result = memFullErr;
        return;
    }
    // Handlers work on a copy; until this call returns, the handle holds the state as the last one left it.
    PluginState state;
    std::memcpy(&state, *handle, sizeof state);
    state.filterRecord = record;
    state.result = noErr;
    const bool hasFields = selector != filterSelectorAbout && record != nullptr;
    if (hasFields) {
        LimitImageMemory(record->maxSpace);
    }
    if ((hasFields || selector == filterSelectorAbout) && selector >= 0 &&
        selector < static_cast<int16_t>(std::size(kSelectors))) {
        state.result = kSelectors[selector](&state);
    } else {
        state.result = filterBadParameters;
    }
    *result = state.result;
    std::memcpy(*handle, &state, sizeof state);
    ReturnState(handle);
}
