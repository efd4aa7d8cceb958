// This filter's settings: one, the radius.
#include <cstring>

#include "platform/memory.h"
#include "plugin/radius_setting.h"
#include "settings/setting_registry.h"
#include "toolkit/filter_hooks.h"
#include "toolkit/run_context.h"

namespace {

constexpr OSType kSignature = FourCharCode("HyMd");
constexpr float kMinFilterRadius = 1.0f;
constexpr float kMaxFilterRadius = 6.0f;

float ClampRadius(float radius) {
    if (radius > kMaxFilterRadius) {
        return kMaxFilterRadius;
    }
    // Also what is not a number.
    return radius >= kMinFilterRadius ? radius : kMinFilterRadius;
}

}  // namespace

OSErr GetDefaultSettings(RunContext *context, SPBlock *settings) {
    InitializeSPSettings(settings, kSignature, false, false);
    AddSPInputSettingFloat(settings, kRadiusKey, float{kMinPlayedRadius}, float{kMaxPlayedRadius},
                           PreferenceFloat(context, kRememberedRadiusOffset));
    return noErr;
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
