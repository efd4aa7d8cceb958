#include "plugin/plugin_state.h"

#include "platform/memory.h"

void TossImages(PluginState *state) {
    // The same image may be in two fields.
    if (state->selectionImage != nullptr && state->selectionImage != state->alphaImage) {
        TossSelectionImage(state->selectionImage);
    }
    if (state->alphaImage != nullptr) {
        TossAlphaImage(state->alphaImage);
    }
    TossImage(state->image);
    state->selectionImage = nullptr;
    state->alphaImage = nullptr;
    state->image = nullptr;
}

void ReleaseRun(PluginState *state) {
    TossImages(state);
    DisposePtr(state->rowBuffer);
    state->rowBuffer = nullptr;
    DisposeHandle(state->parameters);
    state->parameters = nullptr;
}
