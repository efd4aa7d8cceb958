#include "layer_filter.h"

#include <glib/gi18n-lib.h>

#include "integrations/gegl/buffer_filter.h"

const char *refusal_of(gint32 drawable) {
    if (!gimp_item_is_drawable(drawable)) {
        return _("Hybrid Median needs a layer, a mask or a channel.");
    }
    if (gimp_item_is_group(drawable)) {
        return _("Hybrid Median cannot filter a layer group. Choose one of its layers.");
    }
    if (gimp_drawable_is_indexed(drawable)) {
        return _("Hybrid Median cannot filter indexed colours. Convert the image to RGB or grey first.");
    }
    return NULL;
}

/* As many threads as GEGL is told to use. */
static gint threads(void) {
    gint count = 1;
    g_object_get(gegl_config(), "threads", &count, NULL);
    return count;
}

static void show_progress(gdouble done) {
    gimp_progress_update(done);
}

const char *filter_drawable(gint32 drawable, gint radius) {
    GeglRectangle selected;
    if (!gimp_drawable_mask_intersect(drawable, &selected.x, &selected.y, &selected.width,
                                      &selected.height)) {
        return NULL; /* nothing is selected here */
    }
    GeglBuffer *input = gimp_drawable_get_buffer(drawable);
    GeglBuffer *output = gimp_drawable_get_shadow_buffer(drawable);
    gimp_progress_init(_("Hybrid Median"));
    const char *failure = hymedian_filter_rectangle(
        input, output, &selected, radius, hymedian_choose_format(gimp_drawable_get_format(drawable)),
        &selected, threads(), show_progress);
    g_object_unref(input);
    g_object_unref(output);
    if (failure == NULL) {
        gimp_drawable_merge_shadow(drawable, TRUE);
        gimp_drawable_update(drawable, selected.x, selected.y, selected.width, selected.height);
    }
    return failure;
}

guchar *filter_for_preview(gint32 drawable, gint radius, const GeglRectangle *rectangle) {
    const gboolean gray = gimp_drawable_is_gray(drawable) || gimp_item_is_channel(drawable);
    const gboolean alpha = gimp_drawable_has_alpha(drawable);
    const Babl *shown =
        babl_format(gray ? (alpha ? "Y'A u8" : "Y' u8") : (alpha ? "R'G'B'A u8" : "R'G'B' u8"));
    guchar *pixels = g_try_malloc_n((gsize)rectangle->width * (gsize)rectangle->height,
                                    (gsize)babl_format_get_bytes_per_pixel(shown));
    GeglRectangle selected, part;
    if (pixels == NULL) {
        return NULL;
    }
    GeglBuffer *input = gimp_drawable_get_buffer(drawable);
    GeglBuffer *output = gegl_buffer_new(rectangle, gimp_drawable_get_format(drawable));
    gegl_buffer_copy(input, rectangle, GEGL_ABYSS_NONE, output, rectangle);
    if (gimp_drawable_mask_intersect(drawable, &selected.x, &selected.y, &selected.width, &selected.height) &&
        gegl_rectangle_intersect(&part, rectangle, &selected)) {
        hymedian_filter_rectangle(input, output, &part, radius,
                                  hymedian_choose_format(gimp_drawable_get_format(drawable)), &selected,
                                  threads(), NULL);
    }
    gegl_buffer_get(output, rectangle, 1.0, shown, pixels, GEGL_AUTO_ROWSTRIDE, GEGL_ABYSS_NONE);
    g_object_unref(input);
    g_object_unref(output);
    return pixels;
}
