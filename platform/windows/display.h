// What depends on the display: its resolution, and the font that goes with it.
#pragma once

#include <windows.h>

namespace windows {

constexpr int kUsualResolution = 96;  // dots per inch, of which one is a dialog's pixel

int Scaled(int length, int resolution);
int Unscaled(int length, int resolution);

// Where a dialog of `owner`, which may be null, appears.
struct Display {
    RECT area;  // without the task bar
    int resolution;
};
Display DisplayOf(HWND owner);

// The font of messages; the caller deletes it.
LOGFONTW MessageFont(int resolution);

// While it lives, this thread's windows are made and measured in the dots of their display; before, a host
// may have the system enlarge its windows. Without effect before Windows 10.
class InOwnDots {
  public:
    InOwnDots();
    InOwnDots(const InOwnDots &) = delete;
    InOwnDots &operator=(const InOwnDots &) = delete;
    ~InOwnDots();

  private:
    void *before;
};

// While it lives, controls are made in the look that the module's manifest asks for.
class InOwnLook {
  public:
    InOwnLook();
    InOwnLook(const InOwnLook &) = delete;
    InOwnLook &operator=(const InOwnLook &) = delete;
    ~InOwnLook();

  private:
    HANDLE context;
    ULONG_PTR cookie = 0;
};

}  // namespace windows
