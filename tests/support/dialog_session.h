// Runs the radius dialog over an image with a scripted user.
#pragma once

#include "hybridmedian/public.h"
#include "platform/resources.h"
#include "platform/scripted_dialogs.h"
#include "resources/dialog_items.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/test_images.h"
#include "toolkit/filter_hooks.h"
#include "toolkit/run_context.h"

// Keys and parts of bars, short enough for tables of sessions.
constexpr char kReturn = kReturnCharCode;
constexpr char kEnter = kEnterCharCode;
constexpr char kEscape = kEscapeCharCode;
constexpr char kBackspace = kBackspaceCharCode;
constexpr int16_t kUp = kControlUpButtonPart;
constexpr int16_t kDownArrow = kControlDownButtonPart;
constexpr int16_t kPageUp = kControlPageUpPart;
constexpr int16_t kPageDown = kControlPageDownPart;

constexpr OSType kDialogType = FourCharCode("DLOG");
constexpr OSType kItemListType = FourCharCode("DITL");

struct DialogOutcome {
    OSErr result;
    float stored;                     // the radius in the parameter block afterwards
    std::vector<DialogState> states;  // before each action
    int64_t rebuilds;

    const DialogState &Last() const { return states.back(); }
    std::string Field() const { return Last().texts[kRadiusFieldItem - 1].characters; }
    int16_t Value(int16_t item) const { return Last().values[static_cast<size_t>(item - 1)]; }
};

// The rectangle of an item in the bytes of an item list.
inline uint8_t *ItemBounds(std::vector<uint8_t> *list, int16_t item) {
    size_t at = 2;
    for (int16_t i = 1; i < item; ++i) {
        at += 14 + (static_cast<size_t>((*list)[at + 13]) + 1) / 2 * 2;
    }
    return list->data() + at + 4;
}

class DialogTest : public ScratchFolder {
  protected:
    DialogTest() { InstallDialog(100, 80); }

    ~DialogTest() override { UseScriptedDialogs(nullptr); }

    void TearDown() override {
        faults::RemoveResources();
        ScratchFolder::TearDown();
    }

    // The dialog with a preview of another size at its usual place.
    void InstallDialog(int16_t previewWidth, int16_t previewHeight) {
        std::vector<uint8_t> items = DialogItemList();
        uint8_t *bounds = ItemBounds(&items, kPreviewItem);
        PutShort(bounds + 4, Short(bounds) + previewHeight);
        PutShort(bounds + 6, Short(bounds + 2) + previewWidth);
        InstallItems(items);
    }

    void InstallItems(const std::vector<uint8_t> &items) {
        faults::RemoveResources();
        faults::AddResource(kDialogType, kRadiusDialogID, DialogTemplate());
        faults::AddResource(kItemListType, kRadiusDialogID, items);
    }

    // Without an action that ends the dialog it is cancelled.
    DialogOutcome Run(const TestImage &source, float radius, std::vector<UserAction> actions) {
        std::vector<DialogState> states;
        ScriptedSession session;
        session.actions = std::move(actions);
        session.states = &states;
        UseScriptedDialogs(&session);
        DialogOutcome outcome = RunOnBackend(source, radius);
        outcome.states = std::move(states);
        return outcome;
    }

    // The caller has chosen the back end.
    DialogOutcome RunOnBackend(const TestImage &source, float radius) {
        NamedImage *image = MakeFrom(source);
        FilterParameters values = {radius, 1};
        Ptr block = reinterpret_cast<Ptr>(&values);
        FilterRecord record = {};
        record.processEvent = processEvent;
        RunContext context = {};
        context.filterRecord = &record;
        context.colorPlanes = colorPlanes;

        const Rect small = {0, 0, 1, 1};
        GWorldPtr current;
        EXPECT_EQ(NewGWorld(&current, 32, &small, nullptr, nullptr, 0), noErr);
        SetPort(current);

        DialogOutcome outcome = {};
        const int64_t before = faults::BlocksInUse();
        faults::RefuseTemporaryMemory(refuseTemporaryMemory);
        faults::FailAllocation(failAllocation);
        outcome.result = InteractiveDialog(image, &context, &block);
        faults::FailAllocation(0);
        faults::RefuseTemporaryMemory(false);
        outcome.rebuilds = faults::BlocksInUse() - before;
        outcome.stored = values.radius;
        blocksKept += outcome.rebuilds;
        EXPECT_EQ(values.enabled, 1);
        GrafPtr left;
        GetPort(&left);
        EXPECT_EQ(left, current);
        DisposeGWorld(current);
        TossImage(image);
        return outcome;
    }

    static int32_t Short(const uint8_t *bytes) { return bytes[0] << 8 | bytes[1]; }
    static void PutShort(uint8_t *bytes, int32_t value) {
        bytes[0] = static_cast<uint8_t>(value >> 8);
        bytes[1] = static_cast<uint8_t>(value);
    }

    // What the next runs meet.
    int16_t colorPlanes = 3;
    void (*processEvent)(EventRecord *event) = nullptr;
    bool refuseTemporaryMemory = false;
    int64_t failAllocation = 0;
};
