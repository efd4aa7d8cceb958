#include "host/filter/orders.h"

#include "hybridmedian/public.h"
#include "platform/dialog_backend.h"
#include "platform/packing.h"

MaybeFailure CheckDialogUser(const FilterOrders &orders, const std::string &pluginFolder) {
    const OSErr problem = orders.user == DialogUser::person ? TryDialogProgram(pluginFolder) : noErr;
    return problem == noErr ? std::nullopt : MaybeFailure({kExitFailed, DialogProgramProblem(problem)});
}

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

void RepeatAnswer(int32_t radius, FilterOrders *orders) {
    if (orders->user == DialogUser::person) {
        *orders = OrdersForRadius(radius);
    }
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
