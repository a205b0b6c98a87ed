#pragma once
// The gallery's pages: an index.html that shows the tour's screenshots one
// under the other, each with its title and a caption saying what it shows.

#include <filesystem>
#include <string>
#include <vector>

namespace gallery {

struct Screenshot {
    std::string file;    // the PNG's name, beside index.html
    std::string title;   // one line
    std::string caption; // a sentence or two
};

// Writes `folder`/index.html. False, with the reason, when it cannot be written.
bool writeIndex(const std::filesystem::path& folder, const std::string& heading, const std::string& intro,
                const std::vector<Screenshot>& shots, std::string* error);

// The text with &, <, >, " and ' written as HTML references.
std::string escapeHtml(const std::string& text);

} // namespace gallery
