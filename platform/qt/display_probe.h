#pragma once

namespace qt {

// Whether an application can be made here. Qt ends a process that has no display, so a child tries first.
bool DisplayAnswers();

}  // namespace qt
