// Passes an action file through the host's scripting suites into the filter's setting, and back into a file.
#include <vector>

#include "host/filter/action_file.h"
#include "host/filter/descriptor_suites.h"
#include "host/filter/memory_suites.h"
#include "platform/memory.h"
#include "settings/script_bridge.h"
#include "tests/fuzz/fuzz_folder.h"
#include "toolkit/filter_hooks.h"
#include "toolkit/run_context.h"

namespace {

void Require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

// The filter adopts the radius, if there is one, and records it.
void Play(const Action &action) {
    RunContext context = {};
    SPBlock *settings = _AllocateSPBlock(8);
    GetDefaultSettings(&context, settings);
    PIDescriptorParameters parameters = {kDescriptorParametersVersion, plugInDialogDontDisplay,
                                         plugInDialogOptional,         EncodeAction(action),
                                         HostWriteDescriptorProcs(),   HostReadDescriptorProcs()};
    FilterRecord record = {};
    record.descriptorParameters = &parameters;
    record.handleProcs = HostHandleProcs();
    _ReadScriptParamFromPS(&record, settings);
    const ActionItem *radius = FindItem(action, kRadiusKey);
    const float expected = radius == nullptr ? 0 : static_cast<float>(radius->number);
    Require(GetSPInputSettingFloat(settings, 0) == expected);
    Require(_WriteScriptParamToPS(&record, settings) == noErr);
    Action recorded;
    Require(DecodeAction(parameters.descriptor, &recorded));
    Require(FindItem(recorded, kRadiusKey)->number == double{expected});
    DisposeHandle(parameters.descriptor);
    _DisposeSPBlock(settings);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    static const FuzzFolder folder;
    const std::string file = folder.path / "action.json";
    folder.Write("action.json", bytes, size);
    Action action, again;
    if (const MaybeFailure failure = ReadAction(file, &action)) {
        Require(failure->sentence.find(file) == 0);
        return 0;
    }
    Play(action);
    Require(!WriteAction(action, file, file) && !ReadAction(file, &again));
    Require(PackAction(again) == PackAction(action));
    return 0;
}
