/* The library's call over rectangles of GEGL's buffers, for whatever has its pixels in them. */
#ifndef HYMEDIAN_BUFFER_FILTER_H
#define HYMEDIAN_BUFFER_FILTER_H

#include <gegl.h>

/* Grey or RGB in the space of `format`, encoded as it is, with 8 or 16 bits or floats if these are its
 * samples. Other samples become floats, and what is neither grey nor RGB becomes R'G'B'. Null counts as
 * R'G'B'A. */
const Babl *hymedian_choose_format(const Babl *format);

/* The part of `picture` that the result of a rectangle depends on; `format` is a chosen one. */
GeglRectangle hymedian_required_part(const GeglRectangle *rectangle, gint radius, const Babl *format,
                                     const GeglRectangle *picture);

/* Filters a rectangle of `picture`, beyond which its outermost pixels repeat, from the input to the output;
 * alpha is copied. Floats are compared between 0 and 1. Works in bands, so that memory does not grow with the
 * rectangle, and calls `progress`, if there is one, after each with the part that is done.
 *
 * Returns null, or what went wrong, which is never freed. */
const char *hymedian_filter_rectangle(GeglBuffer *input, GeglBuffer *output, const GeglRectangle *rectangle,
                                      gint radius, const Babl *format, const GeglRectangle *picture,
                                      gint threads, void (*progress)(gdouble done));

#endif
