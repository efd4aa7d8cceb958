// What of a picture is to be filtered: a rectangle, a mask, or both.
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

// "X,Y,W,H"; nothing for other texts, and for what no picture could hold.
std::optional<VRect> ParseRect(const std::string &text);

// Takes the selection into the document of `file`: refuses a rectangle that does not lie inside it, and a
// mask that is not a grey picture of its size.
MaybeFailure Select(const Selection &selection, const std::string &file, const Watcher &watcher,
                    Document *document);

// Where the mask selects in part, the destination becomes a mixture of source and result.
void BlendByMask(Document *document);
