// For hosts: answers a module's dialogs from a script, without showing them. Host and module may each have a
// platform layer of their own.
#pragma once

#include <memory>
#include <thread>

#include "platform/dialog_line.h"
#include "platform/scripted_dialogs.h"

// Answers as long as it lives, on a thread of its own.
struct AnsweredDialogs {
    ScriptedSession session;
    DialogLine forModule = {};  // for the record's platformData
    int line = -1;
    std::thread thread;

    AnsweredDialogs() = default;
    AnsweredDialogs(const AnsweredDialogs &) = delete;
    AnsweredDialogs &operator=(const AnsweredDialogs &) = delete;
    ~AnsweredDialogs();
};

// One at a time. Null when the system gives no line or thread.
std::unique_ptr<AnsweredDialogs> AnswerDialogs(std::vector<UserAction> actions);
