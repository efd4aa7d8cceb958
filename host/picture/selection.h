// Which part of a picture to filter: a rectangle, a mask, or both.
#pragma once

#include <optional>
#include <string>

#include "host/document/document.h"
#include "host/report/failure.h"
#include "host/report/watcher.h"

struct Selection {
    std::optional<VRect> rect;
    std::string maskFile;  // empty for none
};

// Parses "X,Y,W,H"; nothing for other texts, and for rectangles that no picture could hold.
std::optional<VRect> ParseRect(const std::string &text);

// Puts the selection into the document of `file`. Refuses a rectangle that does not lie inside it, and a mask
// that is not a grey picture of the same size. The mask's block is mapped for `sharing`.
MaybeFailure Select(const Selection &selection, const std::string &file, Sharing sharing,
                    const Watcher &watcher, Document *document);

// In these rows, where the mask selects partially, blends source and result in the destination.
void BlendByMask(int32_t top, int32_t bottom, Document *document);
