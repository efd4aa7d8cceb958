// Owns the states, which live in handles.
#include "plugin/states.h"

#include <map>

#include "platform/memory.h"
#include "plugin/plugin_state.h"

namespace {

// Whether a call is at work on the state.
using States = std::map<Handle, bool>;

struct GivenOut {
    States states;

    ~GivenOut() {
        for (const auto &[handle, atWork] : states) {
            // A host may end the process in the middle of a call, whose copy of the state is the valid one.
            if (!atWork) {
                Release(handle);
            }
        }
    }

    static void Release(Handle handle) {
        auto *state = reinterpret_cast<PluginState *>(*handle);
        ReleaseRun(state);
        if (state->ownsParameters) {
            DisposeHandle(state->madeParameters);
        }
        DisposeHandle(handle);
    }
};

// Made on first use, so that it goes before what releasing a run needs.
States &GivenOutStates() {
    static GivenOut givenOut;
    return givenOut.states;
}

}  // namespace

Handle TakeState(intptr_t *data) {
    auto found = GivenOutStates().find(reinterpret_cast<Handle>(*data));
    if (found == GivenOutStates().end()) {
        const Handle handle = NewHandleClear(sizeof(PluginState));
        if (handle == nullptr) {
            return nullptr;
        }
        found = GivenOutStates().emplace(handle, false).first;
        *data = reinterpret_cast<intptr_t>(handle);
    }
    found->second = true;
    return found->first;
}

void ReturnState(Handle state) {
    GivenOutStates()[state] = false;
}

void DisposeState(intptr_t data) {
    auto *const handle = reinterpret_cast<Handle>(data);
    GivenOutStates().erase(handle);
    DisposeHandle(handle);
}
