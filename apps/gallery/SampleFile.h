#pragma once
// The gallery's sample data files (venues.json, menus.json, bookings.json, ...).
// Picture addresses in them name the server as "{server}", so the same file
// works whatever port the picture server was given.

#include <morvane/model/Forward.h>

#include <filesystem>
#include <string>

namespace gallery {

// Reads the file into `text` with every "{server}" replaced by `serverBase`,
// and parses it. The top-level Node, or null with the reason in `error` (the
// file name first, the JSON reader's line and column included).
morvane::NodePtr readSampleFile(const std::filesystem::path& file, const std::string& serverBase,
                                std::string* text, std::string* error);

// Reads a file that is not one JSON document (the kitchen's records, one a
// line) into `text`; false with the reason in `error`.
bool readTextFile(const std::filesystem::path& file, std::string* text, std::string* error);

// A fresh tree of an already checked text: new Nodes on every call, so that
// a screen may change them freely.
morvane::NodePtr parseSample(const std::string& text);

} // namespace gallery
