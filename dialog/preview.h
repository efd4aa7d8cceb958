// The live preview: the visible piece of the image, filtered.
#pragma once

#include "platform/quickdraw.h"
#include "toolkit/run_context.h"

struct Preview {
    NamedImage *source;
    NamedImage *work;   // the visible piece and six pixels around it, as 8-bit RGB; or null
    OSErr workStatus;   // of making it
    GWorldPtr picture;  // what the user sees; null when there is no memory for it
    const RunContext *context;
    int32_t width;  // of the source
    int32_t height;
    Rect visible;  // in the image's coordinates
};

// `frame` gives the picture its size. Failures show as fields that are null. The caller disposes of `picture`
// and tosses `work`, which may be there although making it failed.
Preview MakePreview(NamedImage *source, const RunContext *context, const Rect &frame);

// Puts the visible piece at another place of the image.
void MoveVisible(Preview *preview, int16_t left, int16_t top);
// Reads the visible piece, filters it if wanted, and writes it into the picture.
void BuildPreview(const Preview &preview, bool filtered, float radius);
