// The filter's dialog on the screen.
#pragma once

#include "host/report/failure.h"

// From now on dialogs are shown. Fails without a display, or without what shows them.
MaybeFailure ShowDialogs();
