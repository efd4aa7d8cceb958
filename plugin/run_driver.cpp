#include "plugin/run_driver.h"

#include "platform/memory.h"
#include "plugin/filter_phase.h"
#include "plugin/rows.h"
#include "plugin/run_geometry.h"

namespace {

void ReportProgress(const FilterRecord *record, int32_t done, int32_t total) {
    if (record->progressProc != nullptr) {
        record->progressProc(done, total);
    }
}

// Ends the run, successfully or not.
OSErr End(PluginState *state, OSErr result) {
    state->result = result;
    state->phase = phaseDone;
    TossImages(state);
    return result;
}

// A CMYK run keeps RGB rows in an image with room for four samples per pixel.
int32_t FilteredRowBytes(const RunGeometry &run) {
    return run.width * run.filteredPlanes * run.sampleBytes;
}

int32_t ExtraRowBytes(const RunGeometry &run) {
    return run.width * run.extraPlanes * run.sampleBytes;
}

// An image that cannot be made shows in the result; the rest of this call goes on with the images there are.
// A selection that cannot be made is simply left out.
void MakeImages(PluginState *state, const RunGeometry &run) {
    const auto width = static_cast<int16_t>(run.width);
    const auto height = static_cast<int16_t>(run.height);
    OSErr err =
        MakeImage(width, height, static_cast<int16_t>(run.sampleBytes * run.colorPlanes), &state->image);
    state->result = err;
    if (run.extraPlanes > 0 && state->alphaImage == nullptr) {
        err = MakeAlphaImage(width, height, static_cast<int16_t>(run.sampleBytes * run.extraPlanes),
                             &state->alphaImage);
    }
    if (err != noErr) {
        state->result = err;
        state->haveMask = false;
    } else if (state->haveMask && state->selectionImage == nullptr) {
        state->haveMask = MakeSelectionImage(width, height, 1, &state->selectionImage) == noErr;
    }
    state->imageError = state->imageError == noErr ? state->result : state->imageError;
}

// Whether the host delivered a row of that many bytes. A host that states no row bytes is trusted.
bool HasRow(const void *data, int32_t rowBytes, int64_t needed) {
    return data != nullptr && (rowBytes <= 0 || rowBytes >= needed);
}

// A host without a mask for this row leaves the selection as it is.
void StoreMaskRow(PluginState *state, const RunGeometry &run) {
    const auto *mask = static_cast<const uint8_t *>(state->filterRecord->maskData);
    if (mask == nullptr) {
        return;
    }
    PutLine(state->selectionImage, 0, run.row, run.width, mask);
    for (int32_t x = 0; x < run.width; ++x) {
        state->maskAnd = static_cast<int8_t>(state->maskAnd & static_cast<int8_t>(mask[x]));
    }
}

int64_t DeliveredRowBytes(const RunGeometry &run) {
    return int64_t{run.width} * run.planes * run.sampleBytes;
}

OSErr ReadRow(PluginState *state, const RunGeometry &run) {
    FilterRecord *record = state->filterRecord;
    const bool maskFits = !state->haveMask || record->maskData == nullptr ||
                          HasRow(record->maskData, record->maskRowBytes, run.width);
    if (!HasRow(record->inData, record->inRowBytes, DeliveredRowBytes(run)) || !maskFits) {
        return End(state, filterBadParameters);
    }
    if (state->image == nullptr) {
        MakeImages(state, run);
    }
    OSErr err = noErr;
    if (run.extraPlanes > 0) {
        if (RowCallsFor(run.sampleBytes).splitExtraPlanes(run, record->inData, state->rowBuffer)) {
            state->maskHasZero = true;
        }
        err = PutLine(state->alphaImage, 0, run.row, ExtraRowBytes(run), state->rowBuffer);
    }
    if (state->depth == 32) {
        ScaleFloatsIn(record->inData, int64_t{run.width} * run.colorPlanes);
    }
    if (run.conversion != nullptr) {
        run.conversion->toRGB(record->inData, run.width);
    }
    if (err == noErr) {
        err = PutLine(state->image, 0, run.row, FilteredRowBytes(run), record->inData);
    }
    // If an image could not be made, the host is told that instead.
    if (err != noErr && state->result == noErr) {
        return End(state, err);
    }
    if (state->haveMask) {
        StoreMaskRow(state, run);
    }
    // Reading is the first sixth of the bar; the filter reports on a scale of its own.
    ReportProgress(record, run.row, 6 * run.height);
    const bool last = run.row + 1 >= run.height;
    if (last) {
        state->phase = phaseFiltering;
    }
    RequestRow(record, last ? 0 : run.row + 1);
    if (state->haveMask) {
        RequestMaskRow(record, last ? 0 : run.row + 1);
    }
    return state->result;
}

OSErr WriteRow(PluginState *state, const RunGeometry &run) {
    FilterRecord *record = state->filterRecord;
    if (!HasRow(record->outData, record->outRowBytes, DeliveredRowBytes(run))) {
        return End(state, filterBadParameters);
    }
    OSErr err = GetLine(state->image, 0, run.row, FilteredRowBytes(run), record->outData);
    if (run.conversion != nullptr) {
        run.conversion->fromRGB(record->outData, run.width);
    }
    if (state->depth == 32) {
        ScaleFloatsOut(record->outData, int64_t{run.width} * run.colorPlanes);
    }
    if (run.extraPlanes > 0) {
        const OSErr extraErr = GetLine(state->alphaImage, 0, run.row, ExtraRowBytes(run), state->rowBuffer);
        err = err == noErr ? extraErr : err;
        RowCallsFor(run.sampleBytes).mergeExtraPlanes(run, record->outData, state->rowBuffer);
    }
    if (err != noErr) {
        return End(state, err);
    }
    // Writing is the last sixth of the bar.
    ReportProgress(record, 5 * run.height + run.row, 6 * run.height);
    if (run.row + 1 < run.height) {
        RequestRow(record, run.row + 1);
    } else {
        End(state, state->result);
        ClearRequest(record);
        record->maskRect = {};
    }
    return state->result;
}

// A host that sends Continue despite an error gets this far, with rows that no image has taken.
OSErr Filter(PluginState *state, const RunGeometry &run) {
    const OSErr err = state->imageError == noErr ? RunFilterPhase(state, run) : state->imageError;
    if (err != noErr) {
        return End(state, err);
    }
    state->phase = phaseWriting;
    return state->result;
}

Rect RowOf(Rect rect, int16_t filterTop, int32_t row) {
    rect.top = static_cast<int16_t>(filterTop + row);
    rect.bottom = static_cast<int16_t>(rect.top + 1);
    return rect;
}

bool AreEqual(const Rect &a, const Rect &b) {
    return a.top == b.top && a.left == b.left && a.bottom == b.bottom && a.right == b.right;
}

// Whether the record holds the row that was requested, with all planes, and that row is of the filter
// rectangle.
bool IsDelivered(const PluginState *state, const RunGeometry &run) {
    const FilterRecord *record = state->filterRecord;
    const Rect row = RowOf(record->filterRect, record->filterRect.top, run.row);
    return run.row >= 0 && run.row < run.height && AreEqual(row, state->requested) &&
           AreEqual(record->inRect, row) && AreEqual(record->outRect, row) && record->inLoPlane == 0 &&
           record->outLoPlane == 0 && record->inHiPlane == run.planes - 1 &&
           record->outHiPlane == run.planes - 1;
}

}  // namespace

void ClearRequest(FilterRecord *record) {
    record->inRect = {};
    record->outRect = {};
}

void RequestRow(FilterRecord *record, int32_t row) {
    record->inRect = RowOf(record->inRect, record->filterRect.top, row);
    record->outRect = RowOf(record->outRect, record->filterRect.top, row);
}

void RequestMaskRow(FilterRecord *record, int32_t row) {
    record->maskRect = RowOf(record->maskRect, record->filterRect.top, row);
}

OSErr DoContinue(PluginState *state) {
    if (state->phase == phaseIdle || state->phase == phaseDone) {
        TossImages(state);
        ClearRequest(state->filterRecord);
        return state->result;
    }
    static constexpr OSErr (*kSteps[])(PluginState *, const RunGeometry &) = {ReadRow, Filter, WriteRow};
    if (state->phase < phaseReading || state->phase > phaseWriting) {
        return state->result;
    }
    RunGeometry run;
    const OSErr err = GetRunGeometry(state, &run);
    if (err != noErr) {
        return End(state, err);
    }
    // The host may have changed the document's shape since Start, or deliver other rows than it was asked
    // for.
    if (GetPtrSize(state->rowBuffer) < RowBufferSize(run) || !IsDelivered(state, run)) {
        return End(state, filterBadParameters);
    }
    kSteps[state->phase - phaseReading](state, run);
    state->requested = state->filterRecord->outRect;
    return state->result;
}
