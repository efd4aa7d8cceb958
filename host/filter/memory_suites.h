// The memory suites that the host gives to the filter, built on the Memory Manager.
#pragma once

#include "photoshop/suites.h"

HandleProcs *HostHandleProcs();
BufferProcs *HostBufferProcs();
