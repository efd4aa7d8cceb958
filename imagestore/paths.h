// Files identified by zero-terminated colon paths in Mac Roman, shorter than 256 characters. A null path
// means the root directory of volume -1, with an empty name. Every OSErr is the File Manager's.
//
// A text cut to fit ends in character 201, an ellipsis, followed by a zero.
#pragma once

#include "platform/files.h"

void CStringToFSSpec(const char *path, FSSpec *spec);
OSErr FSOpenPath(const char *path, int16_t *refNum);
OSErr FSCreatePath(const char *path, OSType creator, OSType fileType);
OSErr FSDeletePath(const char *path);
// Opens the file for reading and writing, with the mark at the end. `lineCount` receives the number of
// carriage returns in the file.
OSErr FSOpenAndAppendPath(const char *path, int16_t *refNum, int32_t *lineCount);
// Has no lasting effect.
void SetDefaultPath(const char *path);

// The full path, in at most `size` bytes; a longer one is cut to size - 2 characters and an ellipsis. If the
// folder cannot be found, the name alone.
void FSSpecToCString(const FSSpec *spec, char *path, int32_t size);
// The folder's full path, each component followed by a colon, with as many components as fit `size`. On error
// the text is empty; the error is the catalogue's, or fnfErr for more than 64 nested folders.
OSErr PathFromDirID(int32_t dirID, int16_t vRefNum, char *path, int32_t size);

// Split a path at its last colon, which both results include. Both may write size + 1 bytes; callers pass one
// less than their buffer's size.
void FileNameFromPath(const char *path, char *name, int32_t size);
void StripFileNameOffPath(const char *path, char *folder, int32_t size);
