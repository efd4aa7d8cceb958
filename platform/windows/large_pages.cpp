#include "platform/internal/large_pages.h"

// Windows gives them only to users with a privilege of their own.
void TakeLargePages(void *, size_t) {}
