/* libhymedian: the hybrid vector median filter as one call.
 *
 * Every pixel is replaced by one of the pixels up to `radius` rows and columns away, such that specks vanish
 * and edges, corners and fine lines stay. Beyond the image its outermost pixels repeat.
 *
 * The library keeps no state, opens no file and writes no message; any number of threads may call it at once.
 * The environment variable HYMEDIAN_KERNEL, where it is set, names the instruction set to use.
 *
 * Binary interface: the numbers and records below stay as they are as long as the library is called
 * libhymedian.so.1. Later versions may append members to the options, and still take those without.
 */
#ifndef HYMEDIAN_H
#define HYMEDIAN_H

#include <stddef.h>
#include <stdint.h>

#if defined(__GNUC__)
#define HYMEDIAN_API __attribute__((visibility("default")))
#else
#define HYMEDIAN_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

enum { HYMEDIAN_MIN_RADIUS = 1, HYMEDIAN_MAX_RADIUS = 6 };

/* Samples in the machine's byte order, at any address. */
enum hymedian_sample {
    HYMEDIAN_UINT8 = 1,  /* 0 to 255, compared as they are */
    HYMEDIAN_UINT16 = 2, /* 0 to 65535, compared in 32769 steps */
    HYMEDIAN_FLOAT32 = 4 /* compared in 32769 steps between the ends of a range */
};

/* Pixels that belong to the caller. The sample of component c in column x of row y is at
 * pixels + y * row_stride + x * pixel_stride + c * component_stride bytes, so rows may be turned upside down,
 * components apart from each other, and other channels in between.
 */
typedef struct hymedian_image {
    void *pixels; /* the first sample of the first row */
    int64_t width;
    int64_t height;
    int32_t components;         /* 1 or 3 */
    int32_t sample;             /* one of enum hymedian_sample */
    ptrdiff_t row_stride;       /* in bytes, like the other two; they may be negative, */
    ptrdiff_t pixel_stride;     /* and 0 in an input, whose rows, pixels or components are then the same */
    ptrdiff_t component_stride; /* of no meaning for 1 component */
} hymedian_image;

/* Zero is a good value for every member but `size` and `radius`. */
typedef struct hymedian_options {
    size_t size;     /* sizeof(hymedian_options) */
    int32_t radius;  /* HYMEDIAN_MIN_RADIUS to HYMEDIAN_MAX_RADIUS */
    int32_t threads; /* how many may work at once, the calling one included; 0 for one per processor */
    /* Where the output's first pixel is in the input; the output may be a part of it. */
    int64_t x;
    int64_t y;
    /* Floats are compared between these two, and those beyond as these. If they are equal, between the least
     * and the greatest finite sample of the input. */
    float least;
    float greatest;
    /* Called now and then on the calling thread, with the part that is done, 0 to 1. Anything but 0 cancels.
     */
    int (*progress)(void *user, double done);
    void *user;
    /* If not 0, a cancelled call may leave part of the output filtered. Otherwise the output is either whole
     * or untouched, for which a call with `progress` takes memory for one more output. */
    int32_t partial;
} hymedian_options;

enum hymedian_status {
    HYMEDIAN_OK = 0,
    HYMEDIAN_CANCELLED = 1,
    HYMEDIAN_NO_MEMORY = 2,
    /* The call is wrong, and nothing was done: */
    HYMEDIAN_NULL = 3,       /* a null pointer */
    HYMEDIAN_OPTIONS = 4,    /* options of an unknown size */
    HYMEDIAN_RADIUS = 5,     /* radius */
    HYMEDIAN_THREADS = 6,    /* threads */
    HYMEDIAN_COMPONENTS = 7, /* number of components */
    HYMEDIAN_SAMPLE = 8,     /* kind of samples */
    HYMEDIAN_SIZE = 9,       /* an empty image, or sides beyond counting */
    HYMEDIAN_STRIDE = 10,    /* strides beyond memory, or an output whose pixels share bytes */
    HYMEDIAN_MISMATCH = 11,  /* output of other components or samples than the input */
    HYMEDIAN_REGION = 12,    /* output beyond the input */
    HYMEDIAN_OVERLAP = 13,   /* input and output, first to last byte, overlap */
    HYMEDIAN_RANGE = 14      /* ends of the floats' range */
};

/* Filters the input, or a part of it as large as the output, into the output. Each output pixel is one of the
 * input's, bit for bit, and the number of threads changes nothing. Parts equal the whole if their input has
 * `radius` more rows and columns around them, where there are any; parts of floats also need the same range,
 * and whole rows if not all samples are finite.
 *
 * A pixel with a sample that is not finite stays as it is, and is chosen nowhere else; to its neighbours it
 * counts as the nearest pixel of its row that is finite. `input->pixels` is only read.
 *
 * Returns one of enum hymedian_status.
 */
HYMEDIAN_API int hymedian_filter(const hymedian_image *input, const hymedian_image *output,
                                 const hymedian_options *options);

/* A sentence without a full stop, in English; never null, and never to be freed. */
HYMEDIAN_API const char *hymedian_status_text(int status);

/* The library's version, as "1.1.0". */
HYMEDIAN_API const char *hymedian_version(void);

#ifdef __cplusplus
}
#endif

#endif
