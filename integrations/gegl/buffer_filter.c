#include "buffer_filter.h"

#include <math.h>

#include "median/library/hymedian.h"

/* A rectangle is filtered in bands of so many rows, so that memory does not grow with it. */
enum { BAND_ROWS = 256 };

/* What pixels are made of, as the library sees them, and the alpha that it does not see. */
typedef struct {
    const Babl *format;
    gint components;
    gint sample; /* in bytes */
    gint pixel_bytes;
} PixelKind;

const Babl *hymedian_choose_format(const Babl *input) {
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

static const char *filter_band(GeglBuffer *input, GeglBuffer *output, const GeglRectangle *band, gint radius,
                               const GeglRectangle *picture, const PixelKind *kind, gint threads) {
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
        options.threads = threads;
        options.x = band->x - part.x;
        options.y = band->y - part.y;
        options.greatest = 1;
        status = hymedian_filter(&from, &to, &options);
    }
    if (status == HYMEDIAN_OK) {
        gegl_buffer_set(output, band, 0, kind->format, result, GEGL_AUTO_ROWSTRIDE);
    }
    g_free(source);
    g_free(result);
    return status == HYMEDIAN_OK ? NULL : hymedian_status_text(status);
}

GeglRectangle hymedian_required_part(const GeglRectangle *rectangle, gint radius, const Babl *format,
                                     const GeglRectangle *picture) {
    const GeglRectangle part = grown(rectangle, radius, picture);
    return kind_of(format).sample == HYMEDIAN_FLOAT32 ? whole_rows(&part, picture) : part;
}

const char *hymedian_filter_rectangle(GeglBuffer *input, GeglBuffer *output, const GeglRectangle *rectangle,
                                      gint radius, const Babl *format, const GeglRectangle *picture,
                                      gint threads, void (*progress)(gdouble done)) {
    const PixelKind kind = kind_of(format);
    const gint bottom = rectangle->y + rectangle->height;
    GeglRectangle band = *rectangle;
    for (; band.y < bottom; band.y += BAND_ROWS) {
        band.height = MIN(BAND_ROWS, bottom - band.y);
        const char *failure = filter_band(input, output, &band, radius, picture, &kind, threads);
        if (failure != NULL) {
            return failure;
        }
        if (progress != NULL) {
            progress((gdouble)(band.y + band.height - rectangle->y) / rectangle->height);
        }
    }
    return NULL;
}
