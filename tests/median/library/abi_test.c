/* What programs in C rely on: that they compile, and the numbers and places of the binary interface. */
#include <hymedian.h>

#include <stdio.h>
#include <string.h>

#define EXPECT(condition) ((condition) ? (void)0 : fail(#condition))

static int failures;

static void fail(const char *condition) {
    fprintf(stderr, "not so: %s\n", condition);
    ++failures;
}

/* Sanitizers would end the program where memory is short. */
const char *__asan_default_options(void);
const char *__asan_default_options(void) {
    return "allocator_may_return_null=1";
}

static int go_on(void *user, double done) {
    EXPECT(done >= 0 && done <= 1);
    ++*(int *)user;
    return 0;
}

int main(void) {
    static const char pixels[] = "aaaaaaXaaaaaa";
    char filtered[sizeof pixels] = "";
    int calls = 0;
    hymedian_image input = {(void *)pixels, 13, 1, 1, HYMEDIAN_UINT8, 13, 1, 0};
    hymedian_image output = {filtered, 13, 1, 1, HYMEDIAN_UINT8, 13, 1, 0};
    hymedian_options options = {0};
    options.size = sizeof options;
    options.radius = 2;
    options.progress = go_on;
    options.user = &calls;

    EXPECT(sizeof(hymedian_image) == 56 && offsetof(hymedian_image, component_stride) == 48);
    EXPECT(sizeof(hymedian_options) == 64 && offsetof(hymedian_options, partial) == 56);
    EXPECT(HYMEDIAN_RANGE == 14);
    EXPECT(strcmp(hymedian_version(), EXPECTED_VERSION) == 0);
    for (int status = HYMEDIAN_OK; status <= HYMEDIAN_RANGE; ++status) {
        EXPECT(strcmp(hymedian_status_text(status), hymedian_status_text(-1)) != 0);
    }

    /* A single row is a line, which stays. */
    EXPECT(hymedian_filter(&input, &output, &options) == HYMEDIAN_OK);
    EXPECT(memcmp(filtered, pixels, 13) == 0);
    EXPECT(calls >= 2);

    /* A petabyte can be addressed but not be had. */
    input.width = input.height = output.width = output.height = (int64_t)1 << 25;
    input.row_stride = input.pixel_stride = 0;
    output.row_stride = (ptrdiff_t)1 << 25;
    output.pixels = (void *)((uintptr_t)1 << 60);
    EXPECT(hymedian_filter(&input, &output, &options) == HYMEDIAN_NO_MEMORY);
    return failures != 0;
}
