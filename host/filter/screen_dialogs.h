// The filter's dialog on the screen.
#pragma once

#include "host/report/failure.h"

// From now on dialogs are shown, and cancelled once `interrupted` says so. Fails without a display, or
// without what shows them.
MaybeFailure ShowDialogs(bool (*interrupted)());
