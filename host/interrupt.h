// Ctrl-C and its relatives.
#pragma once

// From now on SIGINT, SIGTERM and SIGHUP no longer end the process but are remembered.
void WatchForInterrupts();
bool Interrupted();
