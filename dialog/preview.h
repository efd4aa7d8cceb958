// The live preview: the visible part of the image, filtered.
#pragma once

#include "platform/quickdraw.h"
#include "toolkit/run_context.h"

struct Preview {
    NamedImage *source;
    NamedImage *work;   // the visible part and six pixels all around it, as 8-bit RGB; or null
    OSErr workStatus;   // the result of making it
    GWorldPtr picture;  // what the user sees; null when memory is short
    const RunContext *context;
    int32_t width;  // of the source
    int32_t height;
    Rect visible;  // in the image's coordinates
};

// `frame` sets the size of the picture. Failures leave fields null. The caller disposes of `picture` and
// tosses `work`, which may exist even if making it failed.
Preview MakePreview(NamedImage *source, const RunContext *context, const Rect &frame);

// Moves the visible part to another place in the image.
void MoveVisible(Preview *preview, int16_t left, int16_t top);
// Reads the visible part, filters it if wanted, and writes it to the picture.
void BuildPreview(const Preview &preview, bool filtered, float radius);
