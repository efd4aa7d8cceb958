// What a run of the filter is to do: the action that is played, and who answers the filter's own dialog.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "host/filter/action.h"
#include "host/report/failure.h"

enum class DialogUser : uint8_t {
    nobody,  // the action is played without the dialog
    script,  // it is given a radius, as a user would, and nobody sees it
    person,  // on the screen
};

struct FilterOrders {
    Action action;
    DialogUser user = DialogUser::nobody;
    int32_t radius = 0;  // the script's answer
};

// Chooses who answers from now on, before the first run. Fails where a person has no display, or nothing that
// shows dialogs.
MaybeFailure ChooseDialogUser(const FilterOrders &orders);

// As bytes for another process of this program. Taken from the front; false when those are no orders.
void AppendOrders(std::string *packed, const FilterOrders &orders);
bool TakeOrders(std::string_view *packed, FilterOrders *orders);
