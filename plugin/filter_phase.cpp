#include "plugin/filter_phase.h"

#include "imagestore/paths.h"
#include "imagestore/strings.h"
#include "platform/dialog_backend.h"
#include "plugin/outputs.h"
#include "plugin/rows.h"
#include "settings/host_descriptors.h"
#include "settings/preferences_file.h"
#include "settings/script_bridge.h"
#include "settings/setting_registry.h"
#include "toolkit/filter_hooks.h"
#include "toolkit/run_context.h"

namespace {

constexpr int32_t kSettingSlots = 22;  // the header's two and room for twenty settings
constexpr OSType kUndefinedSignature = FourCharCode("udef");

// For a preferences header that was never set: inches, and 72 pixels to the inch.
constexpr float kDefaultUnitIndex = 6.0f;
constexpr float kDefaultLengthCalibration = 1.0f / 72.0f;

// 8-bit alpha images are used as they are; deeper ones are turned into a selection image.
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
    // The alpha row goes after the selection bytes. Two bytes per sample are read at either depth, so the
    // second half of a row of floats is whatever the buffer held before.
    Ptr selection = state->rowBuffer;
    Ptr alphaRow = state->rowBuffer + run.width;
    for (int32_t y = 0; y < size.height; ++y) {
        // A row that cannot be read stays unselected.
        if (GetLine(state->alphaImage, 0, y, run.width * run.extraPlanes * 2, alphaRow) != noErr) {
            continue;
        }
        RowCallsFor(run.sampleBytes)
            .selectionFromExtraPlane(run, alphaRow, reinterpret_cast<uint8_t *>(selection));
        PutLine(state->selectionImage, 0, y, run.width, selection);
    }
    return state->selectionImage;
}

// The selection that the filter is given: the mask, if it selects some pixel by less than half; otherwise the
// transparency, if it has holes.
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

// Images with 32-bit samples are not filtered.
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

// Also frees the entries' texts, which disposing of the block alone would leak.
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

// Hosts without scripting repeat the last filter by leaving out Parameters. If there was none, the user is
// asked after all.
bool RepeatsLastFilter(const PluginState *state, const RunContext *context) {
    return state->repeatsLastFilter && RemembersSettings(context) &&
           !HostDescriptorAvailable(state->filterRecord->descriptorParameters, nullptr);
}

OSErr FilterWithSettings(PluginState *state, const RunGeometry &run, RunContext *context, SPBlock *settings) {
    const Boolean skipDialog =
        _ReadScriptParamFromPS(state->filterRecord, settings) || RepeatsLastFilter(state, context);
    OSErr err = GetParameters(state->image, context, &state->parameters, settings);
    if (err == noErr) {
        err = Process(state, run, context, settings, skipDialog);
    }
    // Recorded even after an error or a cancel.
    _WriteScriptParamToPS(state->filterRecord, settings);
    WriteMeasurements(context, settings);
    LogMeasurements(context, settings);
    return err;
}

}  // namespace

OSErr RunFilterPhase(PluginState *state, const RunGeometry &run) {
    UsePlatformData(state->filterRecord->hostSig, state->filterRecord->platformData);
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
    UsePlatformData(0, nullptr);
    return err;
}
