// Scripting: how a host hands the parameters of a recorded action to a plug-in and gets them back.
#pragma once

#include <cstddef>

#include "platform/types.h"

struct PIReadDescriptorRecord;  // private to the host, like the next; a plug-in holds a token
struct PIWriteDescriptorRecord;
using PIReadDescriptor = PIReadDescriptorRecord *;
using PIWriteDescriptor = PIWriteDescriptorRecord *;

enum : int16_t {
    plugInDialogDontDisplay = 0,
    plugInDialogDisplay = 1,
    plugInDialogSilent = 2,
};

enum : int16_t {
    plugInDialogOptional = 0,
    plugInDialogRequired = 1,
    plugInDialogNone = 2,
};

constexpr OSType typeInteger = FourCharCode("long");
constexpr OSType typeFloat = FourCharCode("doub");
constexpr OSType typeUnitFloat = FourCharCode("UntF");
constexpr OSType typeBoolean = FourCharCode("bool");
constexpr OSType typeText = FourCharCode("TEXT");
constexpr OSType typeEnumerated = FourCharCode("enum");
constexpr OSType typeClass = FourCharCode("type");
constexpr OSType typeObject = FourCharCode("Objc");
constexpr OSType typeAlias = FourCharCode("alis");
constexpr OSType typeObjectReference = FourCharCode("obj ");

// Values are read in the order in which getKey returns them. `keys` lists the expected keys and ends with 0;
// the host may zero a key in it once that key has been read.
struct ReadDescriptorProcs {
    int16_t readDescriptorProcsVersion;
    int16_t numReadDescriptorProcs;
    PIReadDescriptor (*openReadDescriptorProc)(Handle descriptor, OSType *keys);
    OSErr (*closeReadDescriptorProc)(PIReadDescriptor token);
    Boolean (*getKeyProc)(PIReadDescriptor token, OSType *key, OSType *type, int32_t *flags);
    OSErr (*getIntegerProc)(PIReadDescriptor token, int32_t *value);
    OSErr (*getFloatProc)(PIReadDescriptor token, double *value);
    OSErr (*getUnitFloatProc)(PIReadDescriptor token, OSType *unit, double *value);
    OSErr (*getBooleanProc)(PIReadDescriptor token, Boolean *value);
    OSErr (*getTextProc)(PIReadDescriptor token, Handle *text);
    OSErr (*getAliasProc)(PIReadDescriptor token, Handle *alias);
    OSErr (*getEnumeratedProc)(PIReadDescriptor token, OSType *value);
    OSErr (*getClassProc)(PIReadDescriptor token, OSType *value);
    OSErr (*getSimpleReferenceProc)(PIReadDescriptor token, void *reference);
    OSErr (*getObjectProc)(PIReadDescriptor token, OSType *type, Handle *object);
    OSErr (*getCountProc)(PIReadDescriptor token, uint32_t *count);
    OSErr (*getStringProc)(PIReadDescriptor token, Str255 *text);
    OSErr (*getPinnedIntegerProc)(PIReadDescriptor token, int32_t min, int32_t max, int32_t *value);
    OSErr (*getPinnedFloatProc)(PIReadDescriptor token, const double *min, const double *max, double *value);
    OSErr (*getPinnedUnitFloatProc)(PIReadDescriptor token, const double *min, const double *max,
                                    OSType *unit, double *value);
};

constexpr int16_t kReadDescriptorProcsVersion = 0;
constexpr int16_t kReadDescriptorProcsCount = 18;

struct WriteDescriptorProcs {
    int16_t writeDescriptorProcsVersion;
    int16_t numWriteDescriptorProcs;
    PIWriteDescriptor (*openWriteDescriptorProc)();
    OSErr (*closeWriteDescriptorProc)(PIWriteDescriptor token, Handle *descriptor);
    OSErr (*putIntegerProc)(PIWriteDescriptor token, OSType key, int32_t value);
    OSErr (*putFloatProc)(PIWriteDescriptor token, OSType key, const double *value);
    OSErr (*putUnitFloatProc)(PIWriteDescriptor token, OSType key, OSType unit, const double *value);
    OSErr (*putBooleanProc)(PIWriteDescriptor token, OSType key, Boolean value);
    OSErr (*putTextProc)(PIWriteDescriptor token, OSType key, Handle text);
    OSErr (*putAliasProc)(PIWriteDescriptor token, OSType key, Handle alias);
    OSErr (*putEnumeratedProc)(PIWriteDescriptor token, OSType key, OSType type, OSType value);
    OSErr (*putClassProc)(PIWriteDescriptor token, OSType key, OSType value);
    OSErr (*putSimpleReferenceProc)(PIWriteDescriptor token, OSType key, const void *reference);
    OSErr (*putObjectProc)(PIWriteDescriptor token, OSType key, OSType type, Handle object);
    OSErr (*putCountProc)(PIWriteDescriptor token, OSType key, uint32_t count);
    OSErr (*putStringProc)(PIWriteDescriptor token, OSType key, const Str255 *text);
    OSErr (*putScopedClassProc)(PIWriteDescriptor token, OSType key, OSType value);
    OSErr (*putScopedObjectProc)(PIWriteDescriptor token, OSType key, OSType type, Handle object);
};

constexpr int16_t kWriteDescriptorProcsVersion = 0;
constexpr int16_t kWriteDescriptorProcsCount = 16;

struct PIDescriptorParameters {
    int16_t descriptorParametersVersion;
    int16_t playInfo;    // plugInDialogDontDisplay, plugInDialogDisplay or plugInDialogSilent
    int16_t recordInfo;  // plugInDialogOptional, plugInDialogRequired or plugInDialogNone
    Handle descriptor;   // in: the parameters to play back; out: the parameters recorded; null for none
    WriteDescriptorProcs *writeDescriptorProcs;
    ReadDescriptorProcs *readDescriptorProcs;
};

constexpr int16_t kDescriptorParametersVersion = 0;

static_assert(offsetof(ReadDescriptorProcs, openReadDescriptorProc) == 8);
static_assert(sizeof(ReadDescriptorProcs) == 8 + kReadDescriptorProcsCount * sizeof(void *));
static_assert(offsetof(WriteDescriptorProcs, openWriteDescriptorProc) == 8);
static_assert(sizeof(WriteDescriptorProcs) == 8 + kWriteDescriptorProcsCount * sizeof(void *));
static_assert(offsetof(PIDescriptorParameters, descriptor) == 8);
static_assert(offsetof(PIDescriptorParameters, readDescriptorProcs) == 24);
