// The folder in which the filter keeps its settings and work files.
#pragma once

// Makes the folder that the Folder Manager finds (platform/files.h), accessible only to its owner. Failures
// are ignored: without the folder the filter still runs, from its defaults and in memory.
void MakePreferencesFolder();
