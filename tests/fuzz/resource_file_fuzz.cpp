// Reads a plug-in's resource file: its property list, the names of its settings, and a session in its dialog.
#include <string_view>

#include "host/filter/plugin_info.h"
#include "hybridmedian/public.h"
#include "photoshop/property_list.h"
#include "platform/faults/fault_injection.h"
#include "platform/files.h"
#include "platform/memory.h"
#include "platform/native_paths.h"
#include "platform/resources.h"
#include "platform/scripted_dialogs.h"
#include "settings/key_names.h"
#include "tests/fuzz/fuzz_folder.h"
#include "toolkit/filter_hooks.h"
#include "toolkit/run_context.h"

namespace {

// Items of the dialog.
void ReadPropertyList() {
    Handle list = GetResource(PIPropertyListType, kPropertyListID);
    PluginInfo info;
    if (list != nullptr &&
        ParsePropertyList(std::string_view(*list, static_cast<size_t>(GetHandleSize(list))), &info)) {
        DescribePlugin(info);
    }
}

void RunDialog() {
    ScriptedSession session;
    session.actions = {user::Click(kPreviewCheckBoxItem),
                       user::Press(kRadiusBarItem, kControlPageDownPart),
                       user::MoveThumb(kHorizontalBarItem, 1),
                       user::Press(kVerticalBarItem, kControlDownButtonPart),
                       user::Click(kPlusItem),
                       user::DoubleClick(kRadiusFieldItem),
                       user::Key('3'),
                       user::Event(updateEvt),
                       user::Key(kReturnCharCode)};
    UseScriptedDialogs(&session);
    NamedImage *image = nullptr;
    FilterRecord record = {};
    RunContext context = {};
    context.filterRecord = &record;
    context.colorPlanes = 3;
    FilterParameters values = {2, 1};
    Ptr block = reinterpret_cast<Ptr>(&values);
    if (MakeImage(10, 9, 3, &image) == noErr) {
        InteractiveDialog(image, &context, &block);
    }
    TossImage(image);
    UseScriptedDialogs(nullptr);
    if (values.radius < 1 || values.radius > 6) {
        std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    static const FuzzFolder folder;
    folder.Write("test.rsrc", bytes, size);
    // Painting is slow, so windows are kept small.
    faults::SetMemoryLimit(faults::BytesInUse() + (64 << 10));
    FSSpec file;
    SpecFromNativePath(folder.path / "test.rsrc", &file);
    const int16_t resources = FSpOpenResFile(&file, fsRdPerm);
    ReadPropertyList();
    char name[kKeyNameSize], units[kKeyNameSize];
    _LookupParamKeyName(FourCharCode("nRad"), name, units, static_cast<int32_t>(size % 13));
    RunDialog();
    CloseResFile(resources);
    return 0;
}
