// Makers' notes in EXIF data, in formats of the makers' own.
#pragma once

#include <cstdint>
#include <string>

// Many notes are directories whose offsets count from the start of the whole file or EXIF block. When a note
// moves, these must move along; notes of other kinds stay as they are.
void MoveMakerNote(std::string *note, uint64_t from, uint64_t to);
