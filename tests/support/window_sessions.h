// Sessions that give in a window what they give from a script.
#pragma once

#include "tests/support/dialog_session.h"

struct DialogSession {
    std::string name;
    float radius;
    std::vector<UserAction> actions;
};

// For images of 250 x 181 pixels.
std::vector<DialogSession> WindowSessions();

// What a field of a dialog of radius 2.5 shows when it is left after this.
struct LeftField {
    std::vector<UserAction> typed;
    std::string shown;
};
std::vector<LeftField> LeftFields();

// The picture dragged from its middle, to one place and then to the next, or the wheel turned towards the
// user over it; and the bars moved as far, one after the other.
struct Panning {
    std::vector<Point> drags;
    std::vector<bool> notches;  // true with Shift
    std::vector<UserAction> moves;
};
std::vector<Panning> Pannings();

void ExpectSame(const DialogOutcome &shown, const DialogOutcome &scripted);
