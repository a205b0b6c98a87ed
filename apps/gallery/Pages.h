#pragma once
// The gallery's pages: an index.html that shows the tour's screenshots
// screen by screen, each screen with a short text, each screenshot with its
// title and a caption saying what it shows.

#include <filesystem>
#include <string>
#include <vector>

namespace gallery {

struct Screenshot {
    std::string file;    // the PNG's name, beside index.html
    std::string title;   // one line
    std::string caption; // a sentence or two
};

struct Section {
    std::string title; // the screen's name
    std::string text;  // what the screen is for
    std::vector<Screenshot> shots;
};

// Writes `folder`/index.html. False, with the reason, when it cannot be written.
bool writeIndex(const std::filesystem::path& folder, const std::string& heading, const std::string& intro,
                const std::vector<Section>& sections, std::string* error);

// The text with &, <, >, " and ' written as HTML references.
std::string escapeHtml(const std::string& text);

} // namespace gallery
