// The run log: an HTML page, index.html, in a folder beside the document, to which each run appends a block.
//
// The page is placed by the context's logBasePath. It is opened by the first entry of a run and stays open,
// one page at a time in the process, until it is closed. Lines end in carriage returns.
#pragma once

#include "toolkit/run_context.h"

// Makes sure that the page is open for appending; creates folder and page the first time. fnfErr without a
// base path. After any other failure the next entry tries again.
OSErr _OpenAndAppendIndexHTML(const RunContext *context);

// Entries. Texts and labels are escaped, which cuts them to 255 characters; labels and units are
// length-prefixed, and where one is absent nothing is written for it.
OSErr LogCString(const RunContext *context, const char *text);
OSErr LogLabelVal(const RunContext *context, ConstStringPtr label, int32_t value, ConstStringPtr units);
// Units stand on the value's own line here.
OSErr LogLabelReal(const RunContext *context, ConstStringPtr label, float value, ConstStringPtr units);

// `out` has room for 256 bytes.
void _FixHTMLCString(const char *text, char *out);

// Ends the run's block; noErr when no page is open.
OSErr _CloseIndexHTML();
// The open page's file reference, or 0.
int16_t _FetchHTMLlogfref();
