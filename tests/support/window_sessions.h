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

void ExpectSame(const DialogOutcome &shown, const DialogOutcome &scripted);
