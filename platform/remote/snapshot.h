// A dialog's state as bytes: all that whoever shows it needs to know, except its picture.
#pragma once

#include <string>
#include <string_view>

#include "platform/internal/dialog_model.h"

namespace remote {

std::string PackDialog(const DialogRecord &dialog);

// Brings a copy up to date; an empty copy becomes one of the dialog, with a picture that the caller releases.
// Controls that are still as they were stay where they are in memory. False for bytes that cannot be the
// state of the copied dialog; the copy is then of no use.
bool UnpackDialog(std::string_view packed, DialogRecord *copy);

}  // namespace remote
