/* Filters drawables: layers, masks and channels. */
#ifndef HYMEDIAN_LAYER_FILTER_H
#define HYMEDIAN_LAYER_FILTER_H

#include <libgimp/gimp.h>

/* Null, or a sentence that says why this drawable cannot be filtered; never freed. */
const char *refusal_of(gint32 drawable);

/* Filters the selected part of the drawable as if there were no pixels around it, as one step to undo.
 * Returns null, or what went wrong. */
const char *filter_drawable(gint32 drawable, gint radius);

/* The filtered pixels of a rectangle of the drawable, as R'G'B' or grey of 8 bits with the drawable's alpha,
 * for a preview. The caller frees them; null when memory is short. */
guchar *filter_for_preview(gint32 drawable, gint radius, const GeglRectangle *rectangle);

#endif
