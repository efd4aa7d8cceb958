// Samples as the picture library delivers them, on their way into a document.
#pragma once

#include "host/document/document.h"

// Takes one row.
void TakeSamples(const void *row, const Document &document, uint8_t *samples);
