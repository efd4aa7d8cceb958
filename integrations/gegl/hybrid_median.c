/* The GEGL operation: the library's call over the rectangles that GEGL asks for. */
#include <glib/gi18n-lib.h>

#ifdef GEGL_PROPERTIES

property_int(radius, _("Radius"), 1)
    description(_("How far the filter looks, in pixels; begin with 1"))
    value_range(HYMEDIAN_MIN_RADIUS, HYMEDIAN_MAX_RADIUS)
    ui_meta("unit", "pixel-distance")

#else

#include "median/library/hymedian.h"

#define GEGL_OP_AREA_FILTER
#define GEGL_OP_NAME hybrid_median
#define GEGL_OP_C_SOURCE hybrid_median.c
#include "gegl-op.h"

/* A rectangle is filtered in bands of so many rows, so that memory does not grow with it. */
enum { BAND_ROWS = 256 };

/* What pixels are made of, as the library sees them, and the alpha that it does not see. */
typedef struct {
    const Babl *format;
    gint components;
    gint sample; /* in bytes */
    gint pixel_bytes;
} PixelKind;

/* Grey or RGB in the input's own space, encoded as it is, with 8 or 16 bits or floats if these are its samples.
 * Everything else becomes floats, and what is no grey or RGB becomes R'G'B'. */
static const Babl *choose_format(const Babl *input) {
    static const struct {
        BablModelFlag gray, encoding;
        const char *name, *with_alpha;
    } models[] = {
        {BABL_MODEL_FLAG_GRAY, BABL_MODEL_FLAG_NONLINEAR, "Y'", "Y'A"},
        {BABL_MODEL_FLAG_GRAY, BABL_MODEL_FLAG_PERCEPTUAL, "Y~", "Y~A"},
        {BABL_MODEL_FLAG_GRAY, BABL_MODEL_FLAG_LINEAR, "Y", "YA"},
        {BABL_MODEL_FLAG_RGB, BABL_MODEL_FLAG_NONLINEAR, "R'G'B'", "R'G'B'A"},
        {BABL_MODEL_FLAG_RGB, BABL_MODEL_FLAG_PERCEPTUAL, "R~G~B~", "R~G~B~A"},
        {BABL_MODEL_FLAG_RGB, BABL_MODEL_FLAG_LINEAR, "RGB", "RGBA"},
    };
    if (input == NULL) {
        return babl_format("R'G'B'A float");
    }
    const BablModelFlag flags = babl_get_model_flags(input);
    const Babl *type = babl_format_get_type(input, 0);
    const char *sample = type == babl_type("u8") ? "u8" : type == babl_type("u16") ? "u16" : "float";
    const gboolean alpha = babl_format_has_alpha(input);
    const char *model = alpha ? "R'G'B'A" : "R'G'B'";
    for (gsize i = 0; i < G_N_ELEMENTS(models); ++i) {
        if ((flags & models[i].gray) && (flags & models[i].encoding)) {
            model = alpha ? models[i].with_alpha : models[i].name;
        }
    }
    char name[32];
    g_snprintf(name, sizeof name, "%s %s", model, sample);
    return babl_format_with_space(name, babl_format_get_space(input));
}

static PixelKind kind_of(const Babl *format) {
    PixelKind kind;
    kind.format = format;
    kind.components = babl_format_get_n_components(format) - (babl_format_has_alpha(format) ? 1 : 0);
    kind.pixel_bytes = babl_format_get_bytes_per_pixel(format);
    kind.sample = kind.pixel_bytes / babl_format_get_n_components(format);
    return kind;
}

static void prepare(GeglOperation *operation) {
    GeglOperationAreaFilter *area = GEGL_OPERATION_AREA_FILTER(operation);
    const gint radius = GEGL_PROPERTIES(operation)->radius;
    const Babl *format = choose_format(gegl_operation_get_source_format(operation, "input"));
    area->left = area->right = area->top = area->bottom = radius;
    gegl_operation_set_format(operation, "input", format);
    gegl_operation_set_format(operation, "output", format);
}

static GeglRectangle get_bounding_box(GeglOperation *operation) {
    const GeglRectangle *input = gegl_operation_source_get_bounding_box(operation, "input");
    return input != NULL ? *input : *GEGL_RECTANGLE(0, 0, 0, 0);
}

/* The part of the picture that a rectangle's result depends on. */
static GeglRectangle grown(const GeglRectangle *rectangle, gint radius, const GeglRectangle *picture) {
    const GeglRectangle wanted = {rectangle->x - radius, rectangle->y - radius, rectangle->width + 2 * radius,
                                  rectangle->height + 2 * radius};
    GeglRectangle part;
    gegl_rectangle_intersect(&part, &wanted, picture);
    return part;
}

/* A pixel that is not finite takes part as the nearest one in its row that is: rows are then needed whole. */
static GeglRectangle whole_rows(const GeglRectangle *part, const GeglRectangle *picture) {
    GeglRectangle rows = *part;
    if (!gegl_rectangle_is_infinite_plane(picture)) {
        rows.x = picture->x;
        rows.width = picture->width;
    }
    return rows;
}

static GeglRectangle get_required_for_output(GeglOperation *operation, const gchar *pad,
                                             const GeglRectangle *roi) {
    const GeglRectangle picture = get_bounding_box(operation);
    const GeglRectangle part = grown(roi, GEGL_PROPERTIES(operation)->radius, &picture);
    const PixelKind kind = kind_of(gegl_operation_get_format(operation, "output"));
    return kind.sample == HYMEDIAN_FLOAT32 ? whole_rows(&part, &picture) : part;
}

static GeglRectangle get_invalidated_by_change(GeglOperation *operation, const gchar *pad,
                                               const GeglRectangle *roi) {
    const GeglRectangle picture = get_bounding_box(operation);
    const GeglRectangle part = grown(roi, GEGL_PROPERTIES(operation)->radius, &picture);
    const PixelKind kind = kind_of(gegl_operation_get_format(operation, "output"));
    return kind.sample == HYMEDIAN_FLOAT32 ? whole_rows(&part, &picture) : part;
}

static gboolean all_finite(const guchar *pixels, const GeglRectangle *part, const PixelKind *kind) {
    const gsize count = (gsize)part->width * (gsize)part->height * (gsize)(kind->pixel_bytes / kind->sample);
    const gfloat *samples = (const gfloat *)pixels;
    for (gsize i = 0; i < count; ++i) {
        if (!isfinite(samples[i])) {
            return FALSE;
        }
    }
    return TRUE;
}

/* The caller frees it; null when memory is short. */
static guchar *read_part(GeglBuffer *input, const GeglRectangle *part, const PixelKind *kind) {
    guchar *pixels = g_try_malloc_n((gsize)part->width * (gsize)part->height, (gsize)kind->pixel_bytes);
    if (pixels != NULL) {
        gegl_buffer_get(input, part, 1.0, kind->format, pixels, GEGL_AUTO_ROWSTRIDE, GEGL_ABYSS_CLAMP);
    }
    return pixels;
}

static hymedian_image image_of(guchar *pixels, gint width, gint height, const PixelKind *kind) {
    const hymedian_image image = {pixels,
                                  width,
                                  height,
                                  kind->components,
                                  kind->sample,
                                  (ptrdiff_t)width * kind->pixel_bytes,
                                  kind->pixel_bytes,
                                  kind->sample};
    return image;
}

static gboolean filter_band(GeglBuffer *input, GeglBuffer *output, const GeglRectangle *band, gint radius,
                            const GeglRectangle *picture, const PixelKind *kind) {
    GeglRectangle part = grown(band, radius, picture);
    guchar *source = read_part(input, &part, kind);
    if (source != NULL && kind->sample == HYMEDIAN_FLOAT32 && !all_finite(source, &part, kind)) {
        g_free(source);
        part = whole_rows(&part, picture);
        source = read_part(input, &part, kind);
    }
    /* Alpha is in the result already. */
    guchar *result = read_part(input, band, kind);
    int status = HYMEDIAN_NO_MEMORY;
    if (source != NULL && result != NULL) {
        const hymedian_image from = image_of(source, part.width, part.height, kind);
        const hymedian_image to = image_of(result, band->width, band->height, kind);
        hymedian_options options = {0};
        options.size = sizeof options;
        options.radius = radius;
        options.threads = 1; /* GEGL has its own */
        options.x = band->x - part.x;
        options.y = band->y - part.y;
        options.greatest = 1;
        status = hymedian_filter(&from, &to, &options);
    }
    if (status == HYMEDIAN_OK) {
        gegl_buffer_set(output, band, 0, kind->format, result, GEGL_AUTO_ROWSTRIDE);
    } else {
        g_warning("hymedian:hybrid-median: %s", hymedian_status_text(status));
    }
    g_free(source);
    g_free(result);
    return status == HYMEDIAN_OK;
}

static gboolean process(GeglOperation *operation, GeglBuffer *input, GeglBuffer *output,
                        const GeglRectangle *roi, gint level) {
    const gint radius = GEGL_PROPERTIES(operation)->radius;
    const GeglRectangle picture = get_bounding_box(operation);
    const PixelKind kind = kind_of(gegl_operation_get_format(operation, "output"));
    GeglRectangle band = *roi;
    for (gint y = roi->y; y < roi->y + roi->height; y += BAND_ROWS) {
        band.y = y;
        band.height = MIN(BAND_ROWS, roi->y + roi->height - y);
        if (!filter_band(input, output, &band, radius, &picture, &kind)) {
            return FALSE;
        }
    }
    return TRUE;
}

static void gegl_op_class_init(GeglOpClass *klass) {
    GeglOperationClass *operation_class = GEGL_OPERATION_CLASS(klass);
    GeglOperationFilterClass *filter_class = GEGL_OPERATION_FILTER_CLASS(klass);
    bindtextdomain(GETTEXT_PACKAGE, LOCALE_FOLDER);
    operation_class->prepare = prepare;
    operation_class->get_bounding_box = get_bounding_box;
    operation_class->get_required_for_output = get_required_for_output;
    operation_class->get_invalidated_by_change = get_invalidated_by_change;
    operation_class->threaded = TRUE;
    operation_class->opencl_support = FALSE;
    filter_class->process = process;
    gegl_operation_class_set_keys(
        operation_class, "name", "hymedian:hybrid-median", "title", _("Hybrid Median"), "categories",
        "enhance:noise-reduction", "description",
        _("Removes specks and dust, and keeps edges, corners and fine lines"), "gimp:menu-path",
        "<Image>/Filters/Enhance", "gimp:menu-label", _("Hybrid Median..."), NULL);
}

#endif
