// Owns the open page.
#include "log/html_log.h"

#include <cstring>
#include <iterator>

#include "imagestore/paths.h"
#include "imagestore/strings.h"
#include "log/html_entities.h"
#include "log/number_text.h"
#include "platform/files.h"
#include "platform/memory.h"

namespace {

constexpr char kDocumentType[] =
    "<!DOCTYPE HTML PUBLIC \"-//W3C//DTD HTML 4.01 Transitional//EN\" "
    "\"http://www.w3.org/TR/html4/loose.dtd\">";
constexpr const char *kHeaderLines[] = {kDocumentType, "<html>", "<head>", "</head>", "<body>"};
constexpr const char *kClosingLines[] = {"<hr>", "</body>", "</html>"};
// The last two closing lines, in bytes; the next run overwrites them.
constexpr int64_t kOverwrittenBytes = 16;

constexpr char kPageName[] = ":index.html";
constexpr char kFolderSuffix[] = "+HTML";
constexpr int32_t kPageSize = kTextSize + sizeof kFolderSuffix + sizeof kPageName;
constexpr OSType kTextType = FourCharCode("TEXT");

int16_t HTMLlogfref = 0;

struct PagePaths {
    char page[kPageSize];
    char folder[kTextSize + 1];  // created when the page cannot be opened
};

// If the document's name has an extension, the folder is the path without it. Otherwise the page's folder and
// the folder that gets created differ: the latter is the base path itself.
void PlacePage(const char *basePath, PagePaths *paths) {
    DuplicateCString(basePath, paths->page, kTextSize);
    DuplicateCString(basePath, paths->folder, kTextSize);
    const char *colon = std::strrchr(paths->page, ':');
    const char *name = colon == nullptr ? paths->page : colon + 1;
    const char *dot = std::strrchr(name, '.');
    if (dot != nullptr && dot != name) {
        const auto cut = dot - paths->page;
        paths->page[cut] = 0;
        paths->folder[cut] = ':';
        paths->folder[cut + 1] = 0;
    } else {
        ConcatCStrings(paths->page, kFolderSuffix, paths->page, kPageSize);
    }
    ConcatCStrings(paths->page, kPageName, paths->page, kPageSize);
}

template <size_t kCount>
OSErr WriteLines(int16_t page, const char *const (&lines)[kCount]) {
    OSErr err = noErr;
    for (size_t i = 0; err == noErr && i < kCount; ++i) {
        err = WriteCString(page, lines[i], false, true);
    }
    return err;
}

OSErr CreatePage(const PagePaths &paths, int16_t *page) {
    FSSpec folder;
    CStringToFSSpec(paths.folder, &folder);
    int32_t dirID;
    OSErr err = FSpDirCreate(&folder, smSystemScript, &dirID);
    if (err == noErr) {
        err = FSCreatePath(paths.page, 0, kTextType);
    }
    if (err == noErr) {
        err = FSOpenPath(paths.page, page);
    }
    if (err == noErr) {
        WriteLines(*page, kHeaderLines);
    }
    return err;
}

// At most 255 characters come in, and at most 255 go out; the rest is cut off, even in the middle of an
// entity.
void Escape(ConstStringPtr text, StringPtr out) {
    out[0] = 0;
    for (int i = 1; i <= text[0]; ++i) {
        const std::string_view entity = EntityFor(text[i]);
        Str255 piece = {1, text[i]};
        if (!entity.empty()) {
            piece[0] = static_cast<uint8_t>(entity.size());
            BlockMoveData(entity.data(), piece + 1, static_cast<int64_t>(entity.size()));
        }
        ConcatPStrings(out, piece, out);
    }
}

OSErr WriteEscaped(ConstStringPtr text, Boolean lineEnd) {
    if (text == nullptr) {
        return noErr;
    }
    Str255 escaped;
    Escape(text, escaped);
    return WriteStr(HTMLlogfref, escaped, false, lineEnd);
}

OSErr WriteBreak() {
    return WriteCString(HTMLlogfref, "<br>", false, true);
}

void ToPString(const char *text, Str255 out) {
    char buffer[kTextSize];
    DuplicateCString(text, buffer, kTextSize);
    ConvertCStringToPString(buffer);
    DuplicatePString(reinterpret_cast<ConstStringPtr>(buffer), out);
}

// Writes a label, a value in its own format, the units and a line break.
template <typename Value>
OSErr LogLabelled(const RunContext *context, ConstStringPtr label, Value value, ConstStringPtr units,
                  OSErr (*writeValue)(int16_t, Value, Boolean, Boolean), Boolean valueLineEnd) {
    OSErr err = _OpenAndAppendIndexHTML(context);
    if (err == noErr) {
        err = WriteEscaped(label, false);
    }
    if (err == noErr) {
        err = writeValue(HTMLlogfref, value, false, valueLineEnd);
    }
    if (err == noErr) {
        err = WriteEscaped(units, true);
    }
    return err == noErr ? WriteBreak() : err;
}

}  // namespace

OSErr _OpenAndAppendIndexHTML(const RunContext *context) {
    if (HTMLlogfref != 0) {
        return noErr;
    }
    if (context->logBasePath == nullptr) {
        return fnfErr;
    }
    PagePaths paths;
    PlacePage(context->logBasePath, &paths);
    int16_t page = 0;
    if (FSOpenPath(paths.page, &page) == noErr) {
        if (SetFPos(page, fsFromLEOF, -kOverwrittenBytes) != noErr) {
            SetFPos(page, fsFromStart, 0);
        }
    } else if (const OSErr err = CreatePage(paths, &page); err != noErr) {
        return err;
    }
    HTMLlogfref = page;
    return noErr;
}

OSErr LogCString(const RunContext *context, const char *text) {
    OSErr err = _OpenAndAppendIndexHTML(context);
    if (err == noErr) {
        Str255 line;
        ToPString(text, line);
        err = WriteEscaped(line, true);
    }
    return err == noErr ? WriteBreak() : err;
}

OSErr LogLabelVal(const RunContext *context, ConstStringPtr label, int32_t value, ConstStringPtr units) {
    return LogLabelled(context, label, value, units, WriteVal, true);
}

OSErr LogLabelReal(const RunContext *context, ConstStringPtr label, float value, ConstStringPtr units) {
    return LogLabelled(context, label, value, units, WriteReal, false);
}

void _FixHTMLCString(const char *text, char *out) {
    Str255 line;
    ToPString(text, line);
    Escape(line, reinterpret_cast<StringPtr>(out));
    ConvertPStringToCString(out);
}

OSErr _CloseIndexHTML() {
    if (HTMLlogfref == 0) {
        return noErr;
    }
    WriteLines(HTMLlogfref, kClosingLines);
    const OSErr err = FSClose(HTMLlogfref);
    HTMLlogfref = 0;
    return err;
}

int16_t _FetchHTMLlogfref() {
    return HTMLlogfref;
}
