// What each filter of the family supplies. The run driver calls these without knowing which filter it runs.
#pragma once

#include "imagestore/named_images.h"
#include "platform/types.h"

struct RunContext;
struct SPBlock;

// The block behind the handle that GetParameters makes.
#pragma pack(push, 2)
struct FilterParameters {
    float radius;
    int16_t enabled;  // always 1
};
#pragma pack(pop)
static_assert(sizeof(FilterParameters) == 6);

// Declares the filter's settings in `settings`, with the values remembered in the context's preferences.
OSErr GetDefaultSettings(RunContext *context, SPBlock *settings);

// Whether an earlier run has left its settings in the context's preferences.
bool RemembersSettings(const RunContext *context);

// Makes the filter's parameter block from the settings; the caller disposes of the handle.
OSErr GetParameters(NamedImage *image, RunContext *context, Handle *parameters, SPBlock *settings);

// Asks the user. Returns userCanceledErr on Cancel, and when there is no dialog to open; other failures leave
// the parameters usable.
OSErr InteractiveDialog(NamedImage *image, RunContext *context, Handle parameters);

// Filter the working image in place; samples are 8 or 16 bits. Shows the dialog first unless `skipDialog` is
// set.
OSErr ProcessImage(NamedImage *image, RunContext *context, Handle parameters, SPBlock *settings,
                   Boolean skipDialog);
OSErr ProcessImage16_48(NamedImage *image, RunContext *context, Handle parameters, SPBlock *settings,
                        Boolean skipDialog);
