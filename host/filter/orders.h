// What a run of the filter has to do: the action to play, and who answers the filter's own dialog.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "host/filter/action.h"
#include "host/report/failure.h"

enum class DialogUser : uint8_t {
    nobody,  // the action is played without the dialog
    script,  // the dialog is given a radius, as by a user, and nobody sees it
    person,  // the dialog is on the screen
};

struct FilterOrders {
    Action action;
    DialogUser user = DialogUser::nobody;
    int32_t radius = 0;  // the script's answer
};

// Fails if there is a person to be asked, and the plug-in's folder and this machine have nothing to ask with.
MaybeFailure CheckDialogUser(const FilterOrders &orders, const std::string &pluginFolder);

// Those that run the filter at a radius, and ask nobody.
FilterOrders OrdersForRadius(int32_t radius);

// If a person was asked, further runs repeat the answer.
void RepeatAnswer(int32_t radius, FilterOrders *orders);

// To and from bytes for another process of this program. TakeOrders takes them from the front; false if there
// are no orders there.
void AppendOrders(std::string *packed, const FilterOrders &orders);
bool TakeOrders(std::string_view *packed, FilterOrders *orders);
