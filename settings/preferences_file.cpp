#include "settings/preferences_file.h"

#include "imagestore/preferences_folder.h"
#include "imagestore/strings.h"
#include "platform/files.h"
#include "platform/locks.h"

namespace {

constexpr uint8_t kFileName[] = "\010WEMBpref";
constexpr OSType kCreator = FourCharCode("CREA");
constexpr OSType kFileType = FourCharCode("TYPE");
constexpr int64_t kSlotSize = 1024;
static_assert(kPreferenceHeaderSize == kSlotSize);

bool ReadSlot(int16_t refNum, int32_t slot, uint8_t *buffer) {
    int64_t count = kSlotSize;
    return SetFPos(refNum, fsFromStart, kSlotSize * (slot + 1)) == noErr &&
           FSRead(refNum, &count, buffer) == noErr && buffer[0] != 0;
}

void ReadStrings(RunContext *context, int16_t refNum) {
    for (int32_t slot = 0; slot < kPreferenceStringCount; ++slot) {
        uint8_t buffer[kSlotSize] = {};
        if (!ReadSlot(refNum, slot, buffer)) {
            continue;
        }
        char *&text = context->preferenceStrings[slot];
        DisposeCString(text);
        text = AllocateCString(kTextSize);
        DuplicateCString(reinterpret_cast<const char *>(buffer), text, kTextSize);
    }
}

int16_t OpenNewFile() {
    const Folder folder = WritablePreferencesFolder();
    HDelete(folder.vRefNum, folder.dirID, kFileName);
    HCreate(folder.vRefNum, folder.dirID, kFileName, kCreator, kFileType);
    int16_t refNum;
    return HOpenDF(folder.vRefNum, folder.dirID, kFileName, fsRdWrPerm, &refNum) == noErr ? refNum
                                                                                          : int16_t{0};
}

void WriteBlock(int16_t refNum, int64_t count, const void *bytes) {
    FSWrite(refNum, &count, bytes);
}

void WriteHeader(const RunContext *context, int16_t refNum, const uint8_t *zeros) {
    SetFPos(refNum, fsFromStart, 0);
    int64_t written = kPreferenceHeaderSize;
    FSWrite(refNum, &written, context->preferencesHeader);
    WriteBlock(refNum, kPreferenceHeaderSize - written, zeros);
}

// The buffer is not cleared between slots: after a short text come the remains of an earlier, longer one.
void PutSlotText(const char *text, uint8_t *buffer) {
    buffer[0] = 0;
    if (text != nullptr) {
        DuplicateCString(text, reinterpret_cast<char *>(buffer), kTextSize);
    }
    buffer[kTextSize - 1] = 0;
}

void WriteContents(const RunContext *context, int16_t refNum) {
    uint8_t buffer[kSlotSize] = {};
    WriteHeader(context, refNum, buffer);
    for (const char *text : context->preferenceStrings) {
        PutSlotText(text, buffer);
        WriteBlock(refNum, kSlotSize, buffer);
    }
    WriteBlock(refNum, kPreferenceTailSize, context->preferencesTail);
}

void DisposeStrings(RunContext *context) {
    for (char *&text : context->preferenceStrings) {
        DisposeCString(text);
        text = nullptr;
    }
}

}  // namespace

int16_t ReadPreferences(RunContext *context) {
    const Folder folder = PreferencesFolder();
    int16_t refNum;
    if (HOpenDF(folder.vRefNum, folder.dirID, kFileName, fsRdWrPerm, &refNum) != noErr) {
        return 0;
    }
    if (LockFile(refNum) != noErr) {
        FSClose(refNum);
        return kPreferencesLocked;
    }
    int64_t count = kPreferenceHeaderSize;
    if (FSRead(refNum, &count, context->preferencesHeader) == noErr) {
        ReadStrings(context, refNum);
    }
    // From wherever the mark is: directly after the header if the header was too short for strings to follow.
    count = kPreferenceTailSize;
    FSRead(refNum, &count, context->preferencesTail);
    UnlockFile(refNum);
    return refNum;
}

void WritePreferences(RunContext *context, int16_t refNum) {
    if (refNum == 0) {
        refNum = OpenNewFile();
    }
    if (LockFile(refNum) == noErr) {
        WriteContents(context, refNum);
    }
    FSClose(refNum);
    DisposeStrings(context);
}
