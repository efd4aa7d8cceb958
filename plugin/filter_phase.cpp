#include "plugin/filter_phase.h"

#include "imagestore/paths.h"
#include "imagestore/strings.h"
#include "plugin/outputs.h"
#include "plugin/rows.h"
#include "settings/preferences_file.h"
#include "settings/script_bridge.h"
#include "settings/setting_registry.h"
#include "toolkit/filter_hooks.h"
#include "toolkit/run_context.h"

namespace {

constexpr int32_t kSettingSlots = 22;
constexpr OSType kUndefinedSignature = FourCharCode("udef");

// Unit index (inches) and points per inch of a preferences header that was never set.
constexpr float kDefaultUnitIndex = 6.0f;
constexpr float kDefaultLengthCalibration = 1.0f / 72.0f;

// Alpha images of 8 bits serve as they are; deeper ones are turned into a selection image.
NamedImage *SelectionFromAlpha(PluginState *state, const RunGeometry &run) {
    if (run.sampleBytes == 1) {
        return state->alphaImage;
    }
    if (state->selectionImage != nullptr) {
        TossSelectionImage(state->selectionImage);
        state->selectionImage = nullptr;
    }
    ImageData size;
    GetImageData(state->alphaImage, &size);
    if (MakeSelectionImage(size.width, size.height, 1, &state->selectionImage) != noErr) {
        return nullptr;
    }
    // The alpha row goes behind the selection bytes. Two bytes per sample are read at either depth: the
    // second half of a row of floats is what the buffer held before.
    Ptr selection = state->rowBuffer;
    Ptr alphaRow = state->rowBuffer + run.width;
    for (int32_t y = 0; y < size.height; ++y) {
        // What cannot be read stays unselected.
        if (GetLine(state->alphaImage, 0, y, run.width * run.extraPlanes * 2, alphaRow) != noErr) {
            continue;
        }
        RowCallsFor(run.sampleBytes)
            .selectionFromExtraPlane(run, alphaRow, reinterpret_cast<uint8_t *>(selection));
        PutLine(state->selectionImage, 0, y, run.width, selection);
    }
    return state->selectionImage;
}

// What the filter is offered as its selection: a mask that somewhere selects less than half, else a
// transparency with holes.
NamedImage *ChooseSelection(PluginState *state, const RunGeometry &run) {
    if (state->haveMask && state->maskAnd >= 0) {
        state->selectionUsed = true;
        return state->selectionImage;
    }
    if (state->alphaImage != nullptr && state->maskHasZero) {
        return SelectionFromAlpha(state, run);
    }
    return nullptr;
}

// Null for a document that was never saved.
char *DocumentPath(const FilterRecord *record) {
    const ReadImageDocumentDesc *info = record->documentInfo;
    if (info == nullptr || info->maxVersion < 1 || info->documentFileSpec == nullptr) {
        return nullptr;
    }
    char *path = AllocateCString(kTextSize);
    if (path != nullptr) {
        FSSpecToCString(info->documentFileSpec, path, kTextSize);
    }
    return path;
}

void FillContext(PluginState *state, const RunGeometry &run, RunContext *context) {
    context->width = static_cast<int16_t>(run.width);
    context->height = static_cast<int16_t>(run.height);
    context->colorPlanes = static_cast<int16_t>(run.filteredPlanes);
    context->extraPlanes = static_cast<int16_t>(run.extraPlanes);
    context->filterRecord = state->filterRecord;
    context->alphaImage = state->alphaImage;
    context->selectionImage = ChooseSelection(state, run);
    context->originLeft = state->originLeft;
    context->originTop = state->originTop;
    context->selectionUsed = state->selectionUsed;
    context->maskHasZero = state->maskHasZero;
    context->logBasePath = DocumentPath(state->filterRecord);
}

void SetPreferenceDefaults(RunContext *context) {
    if (PreferenceFloat(context, kUnitIndexOffset) == 0) {
        SetPreferenceFloat(context, kUnitIndexOffset, kDefaultUnitIndex);
        SetPreferenceFloat(context, kLengthCalibrationOffset, kDefaultLengthCalibration);
    }
}

// Images of 32-bit samples are not filtered.
OSErr Process(PluginState *state, const RunGeometry &run, RunContext *context, SPBlock *settings,
              Boolean skipDialog) {
    switch (run.sampleBytes) {
        case 1:
            return ProcessImage(state->image, context, state->parameters, settings, skipDialog);
        case 2:
            return ProcessImage16_48(state->image, context, state->parameters, settings, skipDialog);
        default:
            return noErr;
    }
}

// Disposing of the block alone would leave the entries' texts behind.
void DisposeSettings(SPBlock *settings) {
    for (uint32_t i = 0; i < CountSPInputs(settings); ++i) {
        SetSPInputSettingCString(settings, i, nullptr);
    }
    for (uint32_t j = 0; j < CountSPOutputs(settings); ++j) {
        SetSPOutputSettingCString(settings, j, nullptr);
    }
    _DisposeSPBlock(settings);
}

// Null when memory is short.
SPBlock *MakeSettings(RunContext *context) {
    SPBlock *settings = _AllocateSPBlock(kSettingSlots);
    if (settings != nullptr) {
        InitializeSPSettings(settings, kUndefinedSignature, false, false);
        GetDefaultSettings(context, settings);
    }
    return settings;
}

OSErr FilterWithSettings(PluginState *state, const RunGeometry &run, RunContext *context, SPBlock *settings) {
    const Boolean skipDialog = _ReadScriptParamFromPS(state->filterRecord, settings);
    OSErr err = GetParameters(state->image, context, &state->parameters, settings);
    if (err == noErr) {
        err = Process(state, run, context, settings, skipDialog);
    }
    // Recorded also after an error or a cancel.
    _WriteScriptParamToPS(state->filterRecord, settings);
    WriteMeasurements(context, settings);
    LogMeasurements(context, settings);
    return err;
}

}  // namespace

OSErr RunFilterPhase(PluginState *state, const RunGeometry &run) {
    RunContext context = {};
    FillContext(state, run, &context);
    const int16_t preferences = ReadPreferences(&context);
    OSErr err = memFullErr;
    SPBlock *settings = MakeSettings(&context);
    SetPreferenceDefaults(&context);
    if (settings != nullptr) {
        err = FilterWithSettings(state, run, &context, settings);
        DisposeSettings(settings);
    }
    WritePreferences(&context, preferences);
    DisposeCString(context.logBasePath);
    return err;
}
