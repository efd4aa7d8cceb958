// How users are told of a failure.
#pragma once

#include "host/report/failure.h"

// One line on standard error. Returns the failure's status.
int Tell(Failure failure);
