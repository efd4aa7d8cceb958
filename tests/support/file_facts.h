// What only the system tells about a file.
#pragma once

#include <filesystem>
#include <string>

// As the Mac's eight characters; empty where the file system keeps none.
std::string TypeAndCreator(const std::filesystem::path &file);
