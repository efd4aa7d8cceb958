#include "host/filter/orders.h"

#include "host/filter/packing.h"
#include "hybridmedian/public.h"
#include "platform/dialog_backend.h"
#include "platform/scripted_dialogs.h"

namespace {

ScriptedSession answers;
DialogBackend answering;

// Every dialog gets the same answers.
bool OpenAnswered(DialogRecord *) {
    answers.done = 0;
    return true;
}

MaybeFailure AnswerByScript(const FilterOrders &orders) {
    answers.actions = user::Answer(kRadiusFieldItem, std::to_string(orders.radius));
    UseScriptedDialogs(&answers);
    answering = CurrentDialogBackend();
    answering.open = OpenAnswered;
    SetDialogBackend(&answering);
    return std::nullopt;
}

MaybeFailure ShowToPerson(const FilterOrders &) {
    const OSErr problem = UseScreenDialogs();
    return problem == noErr ? std::nullopt : MaybeFailure({kExitFailed, ScreenDialogProblem(problem)});
}

}  // namespace

FilterOrders OrdersForRadius(int32_t radius) {
    FilterOrders orders;
    if (radius > kMaxPlayedRadius) {
        orders.user = DialogUser::script;
        orders.radius = radius;
    } else {
        orders.action.items.push_back(
            {.key = kRadiusKey, .type = typeFloat, .number = static_cast<double>(radius)});
    }
    return orders;
}

MaybeFailure ChooseDialogUser(const FilterOrders &orders) {
    switch (orders.user) {
        case DialogUser::script:
            return AnswerByScript(orders);
        case DialogUser::person:
            return ShowToPerson(orders);
        case DialogUser::nobody:
            break;
    }
    return std::nullopt;
}

MaybeFailure RepeatAnswer(int32_t radius, FilterOrders *orders) {
    if (orders->user != DialogUser::person) {
        return std::nullopt;
    }
    *orders = OrdersForRadius(radius);
    return ChooseDialogUser(*orders);
}

void AppendOrders(std::string *packed, const FilterOrders &orders) {
    AppendText(packed, PackAction(orders.action));
    AppendRecord(packed, orders.user);
    AppendRecord(packed, orders.radius);
}

bool TakeOrders(std::string_view *packed, FilterOrders *orders) {
    std::string action;
    return TakeText(packed, &action) && UnpackAction(action, &orders->action) &&
           TakeRecord(packed, &orders->user) && TakeRecord(packed, &orders->radius);
}
