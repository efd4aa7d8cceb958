// The bar on standard error.
#pragma once

struct ProgressBar {
    bool shown = false;
    double done = 0;   // the furthest so far: the bar never goes back
    int percent = -1;  // what stands on the terminal
};

// Only a terminal shows a bar.
ProgressBar MakeProgressBar(bool wanted);
void AdvanceBar(ProgressBar *bar, double done);
// Leaves an empty line for what comes next.
void ClearBar(ProgressBar *bar);
