// The folder in which the filter keeps its settings and work files.
#pragma once

// Makes the folder that the Folder Manager finds (platform/files.h), open to its owner alone. Without one the
// filter still runs, from its defaults and in memory, so that a failure is nobody's business.
void MakePreferencesFolder();
