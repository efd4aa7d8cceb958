/* The GEGL operation: the library's call over the rectangles that GEGL asks for. */
#include <glib/gi18n-lib.h>

#ifdef GEGL_PROPERTIES

property_int(radius, _("Radius"), 1) description(_("How far the filter looks, in pixels; begin with 1"))
    value_range(HYMEDIAN_MIN_RADIUS, HYMEDIAN_MAX_RADIUS) ui_meta("unit", "pixel-distance")

#else

#include "buffer_filter.h"
#include "median/library/hymedian.h"

#define GEGL_OP_AREA_FILTER
#define GEGL_OP_NAME hybrid_median
#define GEGL_OP_C_SOURCE hybrid_median.c
#include "gegl-op.h"

/* When the module is loaded, since the property is described before the class is initialised. */
__attribute__((constructor)) static void find_translations(void) {
    bindtextdomain(GETTEXT_PACKAGE, LOCALE_FOLDER);
    bind_textdomain_codeset(GETTEXT_PACKAGE, "UTF-8");
}

static void prepare(GeglOperation *operation) {
    GeglOperationAreaFilter *area = GEGL_OPERATION_AREA_FILTER(operation);
    const gint radius = GEGL_PROPERTIES(operation)->radius;
    const Babl *format = hymedian_choose_format(gegl_operation_get_source_format(operation, "input"));
    area->left = area->right = area->top = area->bottom = radius;
    gegl_operation_set_format(operation, "input", format);
    gegl_operation_set_format(operation, "output", format);
}

static GeglRectangle get_bounding_box(GeglOperation *operation) {
    const GeglRectangle *input = gegl_operation_source_get_bounding_box(operation, "input");
    return input != NULL ? *input : *GEGL_RECTANGLE(0, 0, 0, 0);
}

static GeglRectangle get_required_for_output(GeglOperation *operation, const gchar *pad,
                                             const GeglRectangle *roi) {
    const GeglRectangle picture = get_bounding_box(operation);
    return hymedian_required_part(roi, GEGL_PROPERTIES(operation)->radius,
                                  gegl_operation_get_format(operation, "output"), &picture);
}

/* What a rectangle of the input changes is as large as what it depends on. */
static GeglRectangle get_invalidated_by_change(GeglOperation *operation, const gchar *pad,
                                               const GeglRectangle *roi) {
    return get_required_for_output(operation, pad, roi);
}

static gboolean process(GeglOperation *operation, GeglBuffer *input, GeglBuffer *output,
                        const GeglRectangle *roi, gint level) {
    const GeglRectangle picture = get_bounding_box(operation);
    /* GEGL has threads of its own. */
    const char *failure =
        hymedian_filter_rectangle(input, output, roi, GEGL_PROPERTIES(operation)->radius,
                                  gegl_operation_get_format(operation, "output"), &picture, 1, NULL);
    if (failure != NULL) {
        g_warning("hymedian:hybrid-median: %s", failure);
    }
    return failure == NULL;
}

static void gegl_op_class_init(GeglOpClass *klass) {
    GeglOperationClass *operation_class = GEGL_OPERATION_CLASS(klass);
    GeglOperationFilterClass *filter_class = GEGL_OPERATION_FILTER_CLASS(klass);
    operation_class->prepare = prepare;
    operation_class->get_bounding_box = get_bounding_box;
    operation_class->get_required_for_output = get_required_for_output;
    operation_class->get_invalidated_by_change = get_invalidated_by_change;
    operation_class->threaded = TRUE;
    operation_class->opencl_support = FALSE;
    filter_class->process = process;
    gegl_operation_class_set_keys(operation_class, "name", "hymedian:hybrid-median", "title",
                                  _("Hybrid Median"), "categories", "enhance:noise-reduction", "description",
                                  _("Removes specks and dust, and keeps edges, corners and fine lines"),
                                  "gimp:menu-path", "<Image>/Filters/Enhance", "gimp:menu-label",
                                  _("Hybrid Median..."), NULL);
}

#endif
