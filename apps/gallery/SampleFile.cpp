#include "SampleFile.h"

#include <morvane/model/Json.h>
#include <morvane/model/Node.h>

#include <fstream>
#include <sstream>

namespace gallery {

bool readTextFile(const std::filesystem::path& file, std::string* text, std::string* error) {
    std::ifstream in(file, std::ios::binary);
    if (!in) {
        if (error) *error = file.string() + ": cannot be read";
        return false;
    }
    std::ostringstream read;
    read << in.rdbuf();
    *text = read.str();
    return true;
}

morvane::NodePtr readSampleFile(const std::filesystem::path& file, const std::string& serverBase,
                                std::string* text, std::string* error) {
    auto fail = [&](const std::string& why) -> morvane::NodePtr {
        if (error) *error = file.string() + ": " + why;
        return nullptr;
    };
    if (!readTextFile(file, text, error)) return nullptr;
    const std::string_view marker = "{server}";
    for (std::size_t at = text->find(marker); at != std::string::npos;
         at = text->find(marker, at + serverBase.size()))
        text->replace(at, marker.size(), serverBase);

    auto result = morvane::json::read(*text);
    if (!result) return fail(result.error->describe());
    if (!result.value.node()) return fail("the top level is not an object");
    return result.value.node();
}

morvane::NodePtr parseSample(const std::string& text) {
    return morvane::json::parseNode(text);
}

} // namespace gallery
