#include <morvane/gfx/AttributedText.h>

#include <cstring>

namespace morvane::gfx {

AttributedText& AttributedText::append(std::string text, Font font, Color color) {
    if (!text.empty()) runs_.push_back(Run{std::move(text), std::move(font), color});
    return *this;
}

std::string AttributedText::string() const {
    std::string out;
    for (const Run& run : runs_)
        out += run.text;
    return out;
}

std::string AttributedText::key() const {
    std::string key;
    for (const Run& run : runs_) {
        key += run.text;
        key += '\x1f';
        key += run.font.key();
        key += '\x1f';
        double components[] = {run.color.red, run.color.green, run.color.blue, run.color.alpha};
        key.append(reinterpret_cast<const char*>(components), sizeof components);
        key += '\x1d';
    }
    return key;
}

} // namespace morvane::gfx
