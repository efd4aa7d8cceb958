#pragma once

namespace qt {

// Whether a Qt application can start here. Without a display Qt ends the process, so a child process tries
// first.
bool DisplayAnswers();

}  // namespace qt
