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

// Keys and scroll bar parts, with names short enough for tables of sessions.
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

// The position of an item's rectangle in the bytes of an item list.
uint8_t *ItemBounds(std::vector<uint8_t> *list, int16_t item);

class DialogTest : public ScratchFolder {
  protected:
    DialogTest() { InstallDialog(100, 80); }
    ~DialogTest() override { UseScriptedDialogs(nullptr); }

    // Installs the dialog with a preview of another size at the usual place.
    void InstallDialog(int16_t previewWidth, int16_t previewHeight);

    void InstallItems(const std::vector<uint8_t> &items);

    // If no action ends the dialog, it is cancelled.
    DialogOutcome Run(const TestImage &source, float radius, std::vector<UserAction> actions);

    // Uses the back end that the caller has chosen.
    DialogOutcome RunOnBackend(const TestImage &source, float radius);

    static void PutShort(uint8_t *bytes, int32_t value);

    // Settings for the next runs.
    int16_t colorPlanes = 3;
    void (*processEvent)(EventRecord *event) = nullptr;
    bool refuseTemporaryMemory = false;
    int64_t failAllocation = 0;
};
