// A host that shares nothing with the plug-in it loads: record, handles and suites are its own, written down
// from the published interface.
//
// Usage: foreign_host MODULE [SWITCH=NUMBER]... [in=FILE] [out=FILE] [library=FILE]... [-- ...]
//
// Filters a picture, read from a file of packed samples or made from a seed, and one more for what stands
// behind each "--", as a host does that goes on. Each time it prints one line: the result
// code, a digest of the document's pixels ("=" if they are as before), the radius recorded, the size of
// `parameters` (-1: none), and what went wrong. The exit status is 1 if the plug-in touched what is not its.
#include <pthread.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

typedef void (*Proc)(void);
static char entry[64] = "main";

#ifndef _WIN32
#include <dlfcn.h>
#include <unistd.h>

static void *Load(const char *file, int forAll) {
    return dlopen(file, RTLD_NOW | (forAll ? RTLD_GLOBAL : RTLD_LOCAL));
}
#define Unload dlclose

static Proc Find(void *module, const char *name) {
    Proc found;
    *(void **)&found = dlsym(module, name);
    return found;
}

static void StandNowhere(void) {
    char name[] = "/tmp/nowhere-XXXXXX";
    if (mkdtemp(name) == NULL || chdir(name) != 0 || rmdir(name) != 0) {
        exit(2);
    }
}

static void *OpenWindow(void) { return NULL; }
static void TypeLater(int keys) { (void)keys; }
#else
#include <windows.h>

static const wchar_t *Wide(const char *text) {
    static wchar_t wide[1024];
    MultiByteToWideChar(CP_ACP, 0, text, -1, wide, 1024);
    return wide;
}

// A resource of the named type, whatever its number.
static BOOL CALLBACK TakeFirst(HMODULE file, const wchar_t *type, wchar_t *name, LONG_PTR found) {
    *(HRSRC *)found = FindResourceW(file, name, type);
    return FALSE;
}

// Tells what the property list says, read from the file without loading it, and takes the entry's name from
// it.
static int ReadProperties(const char *name) {
    const HMODULE file = LoadLibraryExW(Wide(name), NULL, LOAD_LIBRARY_AS_DATAFILE);
    HRSRC found = NULL;
    EnumResourceNamesW(file, L"PiPL", TakeFirst, (LONG_PTR)&found);
    const char *list = found == NULL ? NULL : LockResource(LoadResource(file, found));
    int32_t count;
    if (list == NULL || *(const int16_t *)list != 1 || memcmp(list + 2, "\0\0\0", 4) != 0) {
        return 0;
    }
    memcpy(&count, list + 6, sizeof count);
    for (list += 10; count-- > 0;) {
        int32_t length;
        memcpy(&length, list + 12, sizeof length);
        const char *data = list + 16;
        if (memcmp(list, "MIB8", 4) != 0) {
            return 0;
        }
        printf("%c%c%c%c", list[7], list[6], list[5], list[4]);
        if (memcmp(list + 4, "4668", 4) == 0) {
            snprintf(entry, sizeof entry, "%s", data);
        }
        if (memcmp(list + 4, "eman", 4) == 0 || memcmp(list + 4, "gtac", 4) == 0) {
            printf(" '%.*s'\n", data[0], data + 1);
        } else if (memcmp(list + 4, "4668", 4) == 0 || memcmp(list + 4, "lbne", 4) == 0) {
            printf(" '%s' %d\n", data, data[length - 1]);
        } else {
            for (int i = 0; i < length; ++i) {
                printf("%s%02x", i % 4 == 0 ? " " : "", (uint8_t)data[i]);
            }
            printf("\n");
        }
        list = data + (length + 3) / 4 * 4;
    }
    FreeLibrary(file);
    return 1;
}

static void *Load(const char *file, int forAll) {
    return !forAll && !ReadProperties(file) ? NULL : (void *)LoadLibraryW(Wide(file));
}

#define Find(module, name) ((Proc)GetProcAddress(module, name))
#define Unload(module) FreeLibrary(module)

static void StandNowhere(void) { SetCurrentDirectoryW(L"C:\\"); }

static HWND window;

static void *OpenWindow(void) {
    window = CreateWindowW(L"STATIC", L"A host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 50, 50, 400, 300, NULL,
                           NULL, NULL, NULL);
    return &window;
}

// The user: types decimal digits of `keys`, two for each key, as soon as there is a dialog.
static void *Type(void *keys) {
    HWND dialog = NULL;
    for (int i = 0; i < 1000 && dialog == NULL; ++i) {
        Sleep(20);
        dialog = GetLastActivePopup(window);
        dialog = dialog == window || !IsWindowVisible(dialog) ? NULL : dialog;
    }
    printf("dialog %s, host %s\n", dialog ? "shown" : "not shown",
           IsWindowEnabled(window) ? "enabled" : "disabled");
    for (intptr_t left = (intptr_t)keys; dialog != NULL && left > 0; left /= 100) {
        PostMessageW(dialog, left % 100 < 32 ? WM_KEYDOWN : WM_CHAR, (WPARAM)(left % 100), 0);
        Sleep(200);
    }
    return NULL;
}

static void TypeLater(int keys) {
    pthread_t user;
    if (keys != 0 && pthread_create(&user, NULL, Type, (void *)(intptr_t)keys) == 0) {
        pthread_detach(user);
    }
}
#endif

static void CallElsewhere(void *(*call)(void *)) {
    pthread_t thread;
    if (pthread_create(&thread, NULL, call, NULL) == 0) {
        pthread_join(thread, NULL);
    }
}

// The switches and their defaults.
// clang-format off
#define SWITCHES(S)                                                                                        \
    S(mode, 3) S(planes, 3)    /* image modes 1 and 3 have 8 bits, 10 and 11 have 16 */                    \
    S(depth, -1)               /* as the record states it; -1: as it is */                                 \
    S(width, 40) S(height, 30)                                                                             \
    S(top, 0) S(left, 0) S(bottom, -1) S(right, -1)  /* what is filtered; -1: to the edge */               \
    S(seed, 1) S(pad, 0)       /* bytes after each row */                                                  \
    S(mask, 0)                 /* 1: of all values; others: every byte has this one */                     \
    S(guard, 16)               /* bytes behind blocks that are watched; 0 leaves that to a sanitizer */    \
    S(handles, 8) S(buffers, 1) S(progress, 1) S(abort, 1) S(advance, 1) S(info, 0) S(space, 0x7FFFFFFF)   \
    S(abortat, 0)              /* the question that is answered with yes, from 1 */                        \
    S(unload, 1)               /* the module, at the end */                                                \
    S(scripting, 1)            /* 2: a record with neither suite */                                        \
    S(version, 0) S(reads, 18) S(writes, 16) S(play, 0)                                                    \
    S(radius, 2)               /* in the descriptor; -1: there is none */                                  \
    S(parameters, -1)          /* the size of what an earlier session left; -1: nothing */                 \
    S(stale, 0)                /* an earlier session's data word: 1 a number, 2 an address, 3 a handle */  \
    S(ask, 0)                  /* how many runs begin with Parameters; the rest repeat the last filter */  \
    S(runs, 1) S(between, 0)   /* a second document is filtered in the middle of the first */              \
    S(nowhere, 0) S(thread, 0) /* in a removed folder; on a second thread */                               \
    S(window, 0)               /* the host has one, where it can have one */                               \
    S(keys, 0)                 /* what is typed into the dialog: two digits a key, the last key first */   \
    S(missing, 0) S(unmasked, 0)  /* bytes by which rows, or those of the mask, are too short */           \
    S(fewer, 0)                /* planes left out of rows */                                               \
    S(shift, 0) S(once, 0)     /* how far off rows are delivered; the only delivery that is */
// clang-format on
#define FIELD(name, value) int name;
#define VALUE(name, value) value,
#define ENTRY(name, value) {#name "=", &on.name},
static struct Switches { SWITCHES(FIELD) } on;
static const struct Switches usual = {SWITCHES(VALUE)};
static const struct {
    const char *name;
    int *value;
} switches[] = {SWITCHES(ENTRY)};
static const char *inFile, *outFile, *trouble;

// Handles are on a list, so that those of others and those freed before are noticed.
typedef char **Handle;
typedef struct Block {
    char *bytes;
    int32_t size;
    struct Block *next;
} Block;
static Block *blocks;

static void *Guarded(size_t size) {
    char *bytes = malloc(size + (size_t)on.guard);
    memset(bytes, on.mask, size);
    memset(bytes + size, 0xA5, (size_t)on.guard);
    return bytes;
}

static void CheckGuard(const void *bytes, size_t size) {
    for (int i = 0; i < on.guard; ++i) {
        if (((const uint8_t *)bytes)[size + (size_t)i] != 0xA5) {
            trouble = "written behind a block";
        }
    }
}

static Handle MakeHandle(int32_t size) {
    Block *block = malloc(sizeof *block);
    *block = (Block){Guarded((size_t)size), size, blocks};
    blocks = block;
    return &block->bytes;
}

static Block **PlaceOf(Handle handle) {
    for (Block **place = &blocks; *place != NULL; place = &(*place)->next) {
        if (&(*place)->bytes == handle) {
            CheckGuard((*place)->bytes, (size_t)(*place)->size);
            return place;
        }
    }
    fprintf(stderr, "not a handle of this host: %p\n", (void *)handle);
    exit(1);
}

static void DisposeOf(Handle handle) {
    Block **place = PlaceOf(handle);
    Block *gone = *place;
    *place = gone->next;
    free(gone->bytes);
    free(gone);
}

static int32_t SizeOf(Handle handle) { return (*PlaceOf(handle))->size; }

static int16_t Resize(Handle handle, int32_t size) {
    Block *block = *PlaceOf(handle);
    block->bytes = realloc(block->bytes, (size_t)(size + on.guard));
    block->size = size;
    memset(block->bytes + size, 0xA5, (size_t)on.guard);
    return 0;
}

static char *Lock(Handle handle, uint8_t high) { return high <= 1 ? (*PlaceOf(handle))->bytes : NULL; }

static void Unlock(Handle handle) { (void)PlaceOf(handle); }

typedef struct Suite {
    int16_t version, count;
    Proc procs[18];
} Suite;
static Suite handleProcs = {.version = 1,
                            .procs = {(Proc)MakeHandle, (Proc)DisposeOf, (Proc)SizeOf, (Proc)Resize,
                                      (Proc)Lock, (Proc)Unlock, NULL, (Proc)DisposeOf}};

// Scripting: a descriptor is a handle that holds the radius. What has no procedure here is not needed.
enum { kRadius = 'n' << 24 | 'R' << 16 | 'a' << 8 | 'd', kFloat = 'd' << 24 | 'o' << 16 | 'u' << 8 | 'b' };

static int keysLeft;

static Handle OpenRead(Handle descriptor, uint32_t *keys) {
    keysLeft = keys[0] == kRadius;
    return descriptor;
}

static int16_t CloseRead(Handle token) { return SizeOf(token) == sizeof(double) ? 0 : -50; }

static uint8_t NextKey(Handle token, uint32_t *key, uint32_t *type, int32_t *flags) {
    *key = kRadius;
    *type = kFloat;
    *flags = SizeOf(token) * 0;
    return keysLeft-- > 0;
}

static int16_t ReadFloat(Handle token, double *value) {
    memcpy(value, *token, sizeof *value);
    return 0;
}

static Handle OpenWrite(void) { return MakeHandle(sizeof(double)); }

static int16_t WriteFloat(Handle token, uint32_t key, const double *value) {
    memcpy(*token, value, sizeof *value);
    return key == kRadius ? 0 : -50;
}

static int16_t CloseWrite(Handle token, Handle *descriptor) {
    *descriptor = token;
    return 0;
}

static Suite readProcs = {.procs = {(Proc)OpenRead, (Proc)CloseRead, (Proc)NextKey, NULL, (Proc)ReadFloat}};
static Suite writeProcs = {.procs = {(Proc)OpenWrite, (Proc)CloseWrite, NULL, (Proc)WriteFloat}};
static Suite bufferProcs = {2, 5, {NULL}};

typedef struct Scripting {
    int16_t version, play, record;
    Handle descriptor;
    Suite *write, *read;
} Scripting;

typedef struct Rect {
    int16_t top, left, bottom, right;
} Rect;

#pragma pack(push, 4)
typedef struct Record {
    int32_t serialNumber;
    uint8_t (*abort)(void);
    void (*progress)(int32_t, int32_t);
    Handle parameters;
    int16_t imageHeight, imageWidth, planes;
    Rect filterRect;
    uint16_t colors[6];
    int32_t maxSpace, bufferSpace;
    Rect inRect;
    int16_t inLoPlane, inHiPlane;
    Rect outRect;
    int16_t outLoPlane, outHiPlane;
    void *inData;
    int32_t inRowBytes;
    void *outData;
    int32_t outRowBytes;
    uint8_t isFloating, haveMask, autoMask;
    Rect maskRect;
    void *maskData;
    int32_t maskRowBytes;
    uint8_t gap136[20];
    int16_t imageMode;
    uint8_t gap158[58];
    void *platformData, *bufferProcs, *gap232[3], *handleProcs;
    uint8_t gap264[4];
    int16_t filterCase;
    uint8_t gap270[10];
    int16_t (*advanceState)(void);
    uint8_t gap288[144];
    Scripting *scripting;
    void *gap440[2], *documentInfo, *gap464[2];
    int32_t depth;
    uint8_t gap484[272];
} Record;
#pragma pack(pop)
_Static_assert(offsetof(Record, inData) == 88 && offsetof(Record, maskRect) == 116, "");
_Static_assert(offsetof(Record, imageMode) == 156 && offsetof(Record, bufferProcs) == 224, "");
_Static_assert(offsetof(Record, advanceState) == 280 && offsetof(Record, depth) == 480, "");

typedef struct Rows {
    Rect rect;
    int planes;
    size_t rowBytes, size;
    uint8_t *bytes;
} Rows;

typedef struct Run {
    Record record;
    Scripting scripting;
    intptr_t data;
    Rows in, out, mask;
    uint8_t *source, *result;  // packed
    int questions, requests;
} Run;
static Run first, second, *run = &first;
static void (*plugIn)(int16_t, void *, intptr_t *, int16_t *);

static size_t SampleBytes(void) { return on.mode >= 10 ? 2 : 1; }

static size_t PixelBytes(void) { return (size_t)on.planes * SampleBytes(); }
static size_t PictureBytes(void) { return PixelBytes() * (size_t)(on.width * on.height); }

static uint8_t *MakePicture(void) {
    uint8_t *picture = malloc(PictureBytes());
    FILE *file = inFile == NULL ? NULL : fopen(inFile, "rb");
    if (file != NULL) {
        trouble = fread(picture, 1, PictureBytes(), file) == PictureBytes() ? NULL : "a short picture";
        fclose(file);
        return picture;
    }
    uint32_t noise = (uint32_t)on.seed;
    for (size_t i = 0; i < PictureBytes(); ++i) {
        noise = noise * 1664525 + 1013904223;
        picture[i] = (uint8_t)(noise >> (SampleBytes() == 2 && i % 2 == 1 ? 25 : 24));
    }
    return picture;
}

static int IsEmpty(Rect rect) { return rect.bottom <= rect.top || rect.right <= rect.left; }

// Copies what lies in the picture, as far as rows are laid out like those of the picture.
static void Copy(const Rows *rows, uint8_t *picture, int toPicture) {
    const size_t count = (size_t)(rows->rect.right - rows->rect.left) * PixelBytes();
    for (int y = rows->rect.top; rows->bytes != NULL && y < rows->rect.bottom; ++y) {
        if (y >= 0 && y < on.height && rows->planes == on.planes && count <= rows->rowBytes &&
            rows->rect.right <= on.width) {
            uint8_t *row = rows->bytes + (size_t)(y - rows->rect.top) * rows->rowBytes;
            uint8_t *place = picture + (size_t)(y * on.width + rows->rect.left) * PixelBytes();
            memcpy(toPicture ? place : row, toPicture ? row : place, count);
        }
    }
}

static void *Deliver(Rows *rows, Rect rect, int planes, size_t pixel, int missing, int32_t *rowBytes) {
    if (rows->bytes != NULL) {
        CheckGuard(rows->bytes, rows->size);
        free(rows->bytes);
    }
    *rows = (Rows){rect, planes, 0, 0, NULL};
    if (!IsEmpty(rect)) {
        rows->rowBytes = (size_t)((rect.right - rect.left) * (int)pixel + on.pad - missing);
        rows->size = rows->rowBytes * (size_t)(rect.bottom - rect.top);
        rows->bytes = Guarded(rows->size);
    }
    *rowBytes = (int32_t)rows->rowBytes;
    return rows->bytes;
}

// Takes what was written, then delivers what is asked for next.
static int16_t Serve(void) {
    Record *record = &run->record;
    Copy(&run->out, run->result, 1);
    if (++run->requests > 2 * on.height + 3) {
        trouble = "a run without end";
        return -36;
    }
    if (!IsEmpty(record->inRect)) {
        const int off = on.once == 0 || on.once == run->requests ? on.shift : 0;
        record->inRect.top = record->outRect.top = (int16_t)(record->inRect.top + off);
        record->inRect.bottom = record->outRect.bottom = (int16_t)(record->inRect.bottom + off);
    }
    record->inHiPlane = record->outHiPlane = (int16_t)(record->inHiPlane - on.fewer);
    const int planes = record->inHiPlane - record->inLoPlane + 1;
    const size_t pixel = (size_t)planes * SampleBytes();
    record->inData = Deliver(&run->in, record->inRect, planes, pixel, on.missing, &record->inRowBytes);
    record->outData = Deliver(&run->out, record->outRect, planes, pixel, on.missing, &record->outRowBytes);
    const Rect masked = on.mask ? record->maskRect : (Rect){0, 0, 0, 0};
    record->maskData = Deliver(&run->mask, masked, 1, 1, on.unmasked, &record->maskRowBytes);
    Copy(&run->in, run->source, 0);
    Copy(&run->out, run->result, 0);
    for (size_t i = 0; on.mask == 1 && i < run->mask.size; ++i) {
        run->mask.bytes[i] = (uint8_t)((size_t)masked.top * 31 + i * 7);
    }
    return 0;
}

static uint8_t IsAborted(void) { return ++run->questions >= on.abortat && on.abortat > 0; }

static void ShowProgress(int32_t done, int32_t total) {
    trouble = done < 0 || done > total ? "progress beyond its end" : trouble;
}

static int16_t Call(int16_t selector) {
    int16_t result = 0;
    plugIn(selector, &run->record, &run->data, &result);
    return result;
}

static void FillRecord(void) {
    static int32_t noDocument[64];  // of version 0
    const Rect rect = {(int16_t)on.top, (int16_t)on.left, (int16_t)(on.bottom < 0 ? on.height : on.bottom),
                       (int16_t)(on.right < 0 ? on.width : on.right)};
    run->record = (Record){.abort = on.abort ? IsAborted : NULL,
                           .progress = on.progress ? ShowProgress : NULL,
                           .parameters = run->record.parameters,
                           .imageHeight = (int16_t)on.height,
                           .imageWidth = (int16_t)on.width,
                           .planes = (int16_t)on.planes,
                           .filterRect = rect,
                           .maxSpace = on.space,
                           .bufferSpace = on.space,
                           .haveMask = on.mask != 0,
                           .imageMode = (int16_t)on.mode,
                           .platformData = on.window ? OpenWindow() : NULL,
                           .bufferProcs = on.buffers ? &bufferProcs : NULL,
                           .handleProcs = on.handles > 0 ? &handleProcs : NULL,
                           .filterCase = on.mask ? 2 : 1,
                           .advanceState = on.advance ? Serve : NULL,
                           .scripting = on.scripting ? &run->scripting : NULL,
                           .documentInfo = on.info ? noDocument : NULL,
                           .depth = on.depth < 0 ? (int32_t)SampleBytes() * 8 : on.depth};
    const double radius = on.radius;
    run->scripting = (Scripting){(int16_t)on.version,
                                 (int16_t)on.play,
                                 0,
                                 run->scripting.descriptor,
                                 on.scripting == 1 ? &writeProcs : NULL,
                                 on.scripting == 1 ? &readProcs : NULL};
    if (on.radius >= 0 && run->scripting.descriptor == NULL) {
        run->scripting.descriptor = MakeHandle(sizeof radius);
        memcpy(*run->scripting.descriptor, &radius, sizeof radius);
    }
}

static int16_t RunOnce(int asks) {
    FillRecord();
    memcpy(run->result, run->source, PictureBytes());
    run->requests = 0;
    TypeLater(on.keys);
    int16_t result = asks ? Call(1) : 0;
    for (int16_t selector = 2; result == 0 && selector <= 3; ++selector) {
        result = Call(selector);
    }
    const int started = result == 0;
    while (result == 0 && !(IsEmpty(run->record.inRect) && IsEmpty(run->record.outRect))) {
        if (on.between && run == &first && run->requests == on.height / 2) {
            run = &second;
            const int16_t other = RunOnce(0);
            run = &first;
            trouble = other != 0 ? "the second document failed" : trouble;
        }
        result = Serve();
        result = result == 0 ? Call(4) : result;
    }
    Copy(&run->out, run->result, 1);
    if (started) {
        Call(5);
    }
    if (result != 0) {
        memcpy(run->result, run->source, PictureBytes());
    }
    int32_t rowBytes;
    for (int i = 0; i < 3; ++i) {
        Deliver((Rows *[]){&run->in, &run->out, &run->mask}[i], (Rect){0, 0, 0, 0}, 0, 0, 0, &rowBytes);
    }
    return result;
}

static void Report(int16_t result) {
    // Hosts measure, copy and free `parameters` themselves. Without a suite they know of none but their own.
    const Handle parameters = on.handles > 0 || on.parameters >= 0 ? run->record.parameters : NULL;
    double radius = -1;
    if (run->scripting.descriptor != NULL && SizeOf(run->scripting.descriptor) == sizeof radius) {
        memcpy(&radius, *run->scripting.descriptor, sizeof radius);
    }
    uint64_t digest = 14695981039346656037u;
    for (size_t i = 0; i < PictureBytes(); ++i) {
        digest = (digest ^ run->result[i]) * 1099511628211u;
    }
    if (on.between && memcmp(first.result, second.result, PictureBytes()) != 0) {
        trouble = "the second document came out otherwise";
    }
    printf("result %d pixels %s%016llx radius %g parameters %d%s%s\n", result,
           memcmp(run->source, run->result, PictureBytes()) == 0 ? "=" : "", (unsigned long long)digest,
           radius, parameters == NULL ? -1 : SizeOf(parameters), trouble ? " trouble: " : "",
           trouble ? trouble : "");
    FILE *file = outFile == NULL ? NULL : fopen(outFile, "wb");
    if (file != NULL) {
        fwrite(run->result, 1, PictureBytes(), file);
        fclose(file);
    }
}

static void *RunAll(void *unused) {
    static char notAState[64];
    const intptr_t stale[] = {0, 0x1234567, (intptr_t)notAState, (intptr_t)MakeHandle(200)};
    run->data = stale[on.stale & 3];
    if (on.parameters >= 0) {
        run->record.parameters = MakeHandle(on.parameters);
    }
    // An about record is short and has none of the other record's fields.
    int16_t result = 0;
    void *about = malloc(24);
    plugIn(0, about, &run->data, &result);
    free(about);
    for (int i = 0; i < on.runs && result == 0; ++i) {
        result = RunOnce(i < on.ask);
    }
    Report(result);
    return unused;
}

static int Set(const char *word) {
    for (size_t i = 0; i < sizeof switches / sizeof *switches; ++i) {
        const size_t length = strlen(switches[i].name);
        if (strncmp(word, switches[i].name, length) == 0) {
            *switches[i].value = atoi(word + length);
            return 1;
        }
    }
    inFile = strncmp(word, "in=", 3) == 0 ? word + 3 : inFile;
    outFile = strncmp(word, "out=", 4) == 0 ? word + 4 : outFile;
    return word + 3 == inFile || word + 4 == outFile ||
           (strncmp(word, "library=", 8) == 0 && Load(word + 8, 1));
}

// What is to be exited with.
static int FilterOne(void *module) {
    plugIn = (void (*)(int16_t, void *, intptr_t *, int16_t *))Find(module, entry);
    if (on.nowhere) {
        StandNowhere();
    }
    handleProcs.count = (int16_t)on.handles;
    readProcs.count = (int16_t)on.reads;
    writeProcs.count = (int16_t)on.writes;
    first = second = (Run){.source = MakePicture()};
    if (plugIn == NULL) {
        return 2;
    }
    first.result = malloc(PictureBytes());
    second.result = malloc(PictureBytes());
    if (on.thread) {
        CallElsewhere(RunAll);
    } else {
        RunAll(NULL);
    }
    while (blocks != NULL) {
        DisposeOf(&blocks->bytes);
    }
    free(first.source);
    free(first.result);
    free(second.result);
    return trouble != NULL;
}

int main(int count, char **words) {
    void *module = NULL;
    int status = 0;
    int i = 2;
    do {
        int understood = count > 1;
        on = usual;
        inFile = outFile = trouble = NULL;
        for (; i < count && strcmp(words[i], "--") != 0; ++i) {
            understood &= Set(words[i]);
        }
        module = module == NULL && understood ? Load(words[1], 0) : module;
        const int one = understood && module != NULL ? FilterOne(module) : 2;
        status = one > status ? one : status;
    } while (status < 2 && ++i < count);
    if (status == 2) {
        fprintf(stderr, "foreign_host: no such module or switch\n");
    } else if (on.unload) {
        Unload(module);
    }
    return status;
}
