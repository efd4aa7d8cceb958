// The run log: an HTML page, index.html, in a folder beside the document, to which each run appends a block.
//
// The context's logBasePath says where. The first entry of a run opens the page, which stays open until it is
// closed; a process has one page open at a time. Lines end in carriage returns.
#pragma once

#include "toolkit/run_context.h"

// Makes sure the page is open for appending; creates folder and page the first time. Returns fnfErr without a
// base path. After any other failure the next entry tries again.
OSErr _OpenAndAppendIndexHTML(const RunContext *context);

// Entries. Texts and labels are escaped, which cuts them to 255 characters. Labels and units are
// length-prefixed; nothing is written for a null one.
OSErr LogCString(const RunContext *context, const char *text);
OSErr LogLabelVal(const RunContext *context, ConstStringPtr label, int32_t value, ConstStringPtr units);
// Here the units go on the same line as the value.
OSErr LogLabelReal(const RunContext *context, ConstStringPtr label, float value, ConstStringPtr units);

// Escapes `text` into `out`, which has room for 256 bytes.
void _FixHTMLCString(const char *text, char *out);

// Ends the run's block; noErr when no page is open.
OSErr _CloseIndexHTML();
// The open page's file reference, or 0.
int16_t _FetchHTMLlogfref();
