// This filter's only setting, the radius.
#include <cstring>

#include "hybridmedian/public.h"
#include "platform/memory.h"
#include "settings/setting_registry.h"
#include "toolkit/filter_hooks.h"
#include "toolkit/run_context.h"

OSErr GetDefaultSettings(RunContext *context, SPBlock *settings) {
    InitializeSPSettings(settings, kHybridMedianEvent, false, false);
    AddSPInputSettingFloat(settings, kRadiusKey, kMinPlayedRadius, kMaxPlayedRadius,
                           PreferenceFloat(context, kRememberedRadiusOffset));
    return noErr;
}

bool RemembersSettings(const RunContext *context) {
    return PreferenceFloat(context, kRememberedRadiusOffset) != 0;
}

OSErr GetParameters(NamedImage *, RunContext *, Handle *parameters, SPBlock *settings) {
    const FilterParameters values = {ClampRadius(GetSPInputSettingFloat(settings, 0)), 1};
    *parameters = NewHandle(sizeof values);
    if (*parameters == nullptr) {
        return memFullErr;
    }
    std::memcpy(**parameters, &values, sizeof values);
    return noErr;
}
