#include "Pages.h"

#include <fstream>

namespace gallery {

std::string escapeHtml(const std::string& text) {
    std::string out;
    out.reserve(text.size());
    for (char c : text) {
        switch (c) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '"':
            out += "&quot;";
            break;
        case '\'':
            out += "&#39;";
            break;
        default:
            out += c;
        }
    }
    return out;
}

bool writeIndex(const std::filesystem::path& folder, const std::string& heading, const std::string& intro,
                const std::vector<Section>& sections, std::string* error) {
    std::string page = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<title>)" + escapeHtml(heading) +
                       R"(</title>
<style>
  body { font-family: sans-serif; background: #f4f1ea; color: #1d3557; margin: 2em auto; max-width: 60em; }
  h1 { margin-bottom: 0.2em; }
  h2 { margin: 1.6em 0 0.2em; border-bottom: 2px solid #1d3557; }
  .shots { display: flex; flex-wrap: wrap; gap: 2em; }
  figure { margin: 0; width: 390px; }
  figure img { width: 390px; border-radius: 18px; box-shadow: 0 4px 18px rgba(0, 0, 0, 0.25); }
  figcaption { margin-top: 0.6em; line-height: 1.4; }
  figcaption b { display: block; }
</style>
</head>
<body>
<h1>)" + escapeHtml(heading) +
                       "</h1>\n<p>" + escapeHtml(intro) + "</p>\n";
    for (const Section& section : sections) {
        page += "<section>\n<h2>" + escapeHtml(section.title) + "</h2>\n<p>" + escapeHtml(section.text) +
                "</p>\n<div class=\"shots\">\n";
        for (const Screenshot& shot : section.shots)
            page += "<figure>\n  <img src=\"" + escapeHtml(shot.file) + "\" alt=\"" + escapeHtml(shot.title) +
                    "\">\n  <figcaption><b>" + escapeHtml(shot.title) + "</b>" + escapeHtml(shot.caption) +
                    "</figcaption>\n</figure>\n";
        page += "</div>\n</section>\n";
    }
    page += "</body>\n</html>\n";

    const auto path = folder / "index.html";
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << page;
    out.close();
    if (!out) {
        if (error) *error = "cannot write " + path.string();
        return false;
    }
    return true;
}

} // namespace gallery
