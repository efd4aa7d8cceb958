// The progress bar on standard error.
#pragma once

struct ProgressBar {
    bool shown = false;
    double done = 0;   // 0 to 1, the furthest so far: the bar never goes back
    int percent = -1;  // as shown on the terminal; -1 when there is no bar
};

// The bar is only shown on a terminal.
ProgressBar MakeProgressBar(bool wanted);
void AdvanceBar(ProgressBar *bar, double done);
// Leaves an empty line for other output; the next advance redraws the bar.
void ClearBar(ProgressBar *bar);
