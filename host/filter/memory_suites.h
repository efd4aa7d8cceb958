// The memory suites that the host lends to the filter, on the Memory Manager.
#pragma once

#include "photoshop/suites.h"

HandleProcs *HostHandleProcs();
BufferProcs *HostBufferProcs();
