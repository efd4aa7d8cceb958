// The states that were given out to hosts. A host may bring back a data word of an earlier session, which
// means nothing now, so words are looked up here and never simply followed.
#pragma once

#include <cstdint>

#include "platform/types.h"

// The state of a data word, for the length of one call; a word of none gets a new state. Null when memory is
// short; the word is as before then.
Handle TakeState(intptr_t *data);
void ReturnState(Handle state);

// Disposes of the state of a data word, but not of what a run holds. States that are left go when the module
// is unloaded.
void DisposeState(intptr_t data);
