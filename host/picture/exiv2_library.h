// The few things for which metadata must be understood, not only copied. Exceptions of the metadata library
// end here.
#pragma once

#include <string>

// Takes the IPTC data out of Photoshop's resources. False for damaged ones, which stay as they are.
bool TakeIptcOutOf(std::string *photoshop, std::string *iptc);
// The resources with IPTC data among them.
std::string WithIptc(const std::string &photoshop, const std::string &iptc);

// One XMP packet of a JPEG's two. Empty when they are damaged.
std::string MergedXmp(const std::string &main, const std::string &extended);
