// The scripting suites: through one a filter reads an action from a Handle, through the other it writes one.
//
// Object references and list counts are not supported; their procedures return an error.
#pragma once

#include "photoshop/descriptors.h"

ReadDescriptorProcs *HostReadDescriptorProcs();
WriteDescriptorProcs *HostWriteDescriptorProcs();
