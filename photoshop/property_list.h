// The plug-in property list, resource 'PiPL': what a plug-in declares about itself.
//
// Big-endian: int32 version (0), int32 count, then for each property: vendor, key, int32 id (0), int32
// length, and the data, padded to a multiple of 4 bytes.
#pragma once

#include "platform/types.h"

constexpr OSType PIPropertyListType = FourCharCode("PiPL");
constexpr OSType plugInVendorID = FourCharCode("8BIM");
constexpr OSType PIKindProperty = FourCharCode("kind");
constexpr OSType PIFilterKind = FourCharCode("8BFM");
constexpr OSType PINameProperty = FourCharCode("name");
constexpr OSType PICategoryProperty = FourCharCode("catg");
constexpr OSType PIVersionProperty = FourCharCode("vers");
constexpr OSType PIPriorityProperty = FourCharCode("prty");
constexpr OSType PIImageModesProperty = FourCharCode("mode");
constexpr OSType PIEnableInfoProperty = FourCharCode("enbl");
constexpr OSType PIFilterCaseInfoProperty = FourCharCode("fici");
