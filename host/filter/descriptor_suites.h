// The scripting suites: a filter reads an action behind a Handle through one and writes one through the
// other.
//
// Object references and counts of lists are not carried; their procedures return an error.
#pragma once

#include "photoshop/descriptors.h"

ReadDescriptorProcs *HostReadDescriptorProcs();
WriteDescriptorProcs *HostWriteDescriptorProcs();
