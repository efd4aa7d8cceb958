// What the host, the plug-in, its dialog and its resources all know about this filter.
#pragma once

#include "platform/types.h"

// Resources.
constexpr int16_t kRadiusDialogID = 9534;   // 'DLOG' and 'DITL'
constexpr int16_t kKeyNameTableID = 9999;   // 'TEXT'
constexpr int16_t kPropertyListID = 16000;  // 'PiPL'

// The names that actions use for the filter and its one setting.
constexpr OSType kHybridMedianEvent = FourCharCode("HyMd");
constexpr OSType kRadiusKey = FourCharCode("nRad");

// Items of the radius dialog. The other items are texts that never change.
enum RadiusDialogItem : int16_t {
    kOKItem = 1,
    kCancelItem = 2,
    kPreviewCheckBoxItem = 3,
    kRadiusFieldItem = 5,
    kRadiusBarItem = 6,
    kPreviewItem = 7,
    kHorizontalBarItem = 8,
    kVerticalBarItem = 9,
    kPlusItem = 14,
    kMinusItem = 15,
};

// The radius counts whole pixels; a fraction is kept but has no effect.
constexpr int16_t kMinRadius = 1;
constexpr int16_t kMaxRadius = 6;
// The range that the setting declares. When an action is played, a radius outside it is ignored.
constexpr int16_t kMinPlayedRadius = 0;
constexpr int16_t kMaxPlayedRadius = 4;

// Where the latest run's radius lies in the file of this name in the preferences folder: a float, in pixels,
// 0 in a new file. It is in the header, see toolkit/run_context.h.
constexpr char kPreferencesFile[] = "WEMBpref";
constexpr int32_t kRememberedRadiusOffset = 744;

// NaN becomes the smallest radius.
constexpr float ClampRadius(float radius) {
    if (radius > float{kMaxRadius}) {
        return kMaxRadius;
    }
    return radius >= float{kMinRadius} ? radius : float{kMinRadius};
}
