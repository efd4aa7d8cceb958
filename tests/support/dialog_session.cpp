#include "tests/support/dialog_session.h"

namespace {

int32_t Short(const uint8_t *bytes) {
    return bytes[0] << 8 | bytes[1];
}

}  // namespace

uint8_t *ItemBounds(std::vector<uint8_t> *list, int16_t item) {
    size_t at = 2;
    for (int16_t i = 1; i < item; ++i) {
        at += 14 + (static_cast<size_t>((*list)[at + 13]) + 1) / 2 * 2;
    }
    return list->data() + at + 4;
}

void DialogTest::PutShort(uint8_t *bytes, int32_t value) {
    bytes[0] = static_cast<uint8_t>(value >> 8);
    bytes[1] = static_cast<uint8_t>(value);
}

void DialogTest::InstallDialog(int16_t previewWidth, int16_t previewHeight) {
    std::vector<uint8_t> items = DialogItemList();
    uint8_t *bounds = ItemBounds(&items, kPreviewItem);
    PutShort(bounds + 4, Short(bounds) + previewHeight);
    PutShort(bounds + 6, Short(bounds + 2) + previewWidth);
    InstallItems(items);
}

void DialogTest::InstallItems(const std::vector<uint8_t> &items) {
    faults::RemoveResources();
    faults::AddResource(kDialogType, kRadiusDialogID, DialogTemplate());
    faults::AddResource(kItemListType, kRadiusDialogID, items);
}

DialogOutcome DialogTest::Run(const TestImage &source, float radius, std::vector<UserAction> actions) {
    std::vector<DialogState> states;
    ScriptedSession session;
    session.actions = std::move(actions);
    session.states = &states;
    UseScriptedDialogs(&session);
    DialogOutcome outcome = RunOnBackend(source, radius);
    outcome.states = std::move(states);
    return outcome;
}

DialogOutcome DialogTest::RunOnBackend(const TestImage &source, float radius) {
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
