// Owns the choice of back end.
#include "platform/dialog_backend.h"

namespace {

const DialogBackend *chosen;

}  // namespace

const DialogBackend &CurrentDialogBackend() {
    return chosen == nullptr ? SystemDialogBackend() : *chosen;
}

void SetDialogBackend(const DialogBackend *backend) {
    chosen = backend;
}
