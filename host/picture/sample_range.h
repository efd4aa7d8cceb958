// Which floats of a picture the filter is shown as black and as white.
#pragma once

#include <optional>
#include <string>

#include "host/document/document.h"
#include "host/report/failure.h"
#include "host/report/watcher.h"

// Parses "A,B", where A is less than B and both are finite; nothing for other texts.
std::optional<SampleRange> ParseRange(const std::string &text);

// Puts the range into a document of floats that was read from `file`; without a range, that of its finite
// colours, for which all of the file is read. Does nothing for other documents.
MaybeFailure ChooseRange(const std::optional<SampleRange> &range, const std::string &file,
                         const Watcher &watcher, Document *document);
