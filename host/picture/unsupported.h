// Pictures of kinds that are not read, told by their first bytes and tags.
#pragma once

#include <string>

// Says what the file is and what to convert it to: "this is a Photoshop document (PSD); ...". Empty for files
// that may be readable, and for those of which nothing is known.
std::string WhyUnsupported(const std::string &file);
