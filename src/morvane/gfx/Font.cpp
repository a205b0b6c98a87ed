#include <morvane/gfx/Font.h>
#include <morvane/gfx/detail/TextEngine.h>

#include <atomic>
#include <cctype>
#include <cmath>
#include <cstring>

namespace morvane::gfx {

namespace {

std::atomic<double> systemSize{17.0};

double sanitizedSize(double size) {
    return size > 0 && std::isfinite(size) ? size : 0.0;
}

std::string squeezedLowercase(std::string_view text) {
    std::string out;
    for (char c : text) {
        if (c == ' ' || c == '-' || c == '_') continue;
        out += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return out;
}

bool contains(const std::string& text, const char* part) {
    return text.find(part) != std::string::npos;
}

// Families of the platform we stand in for that the system family replaces.
bool isSystemAlias(const std::string& family) {
    static const char* const aliases[] = {
        "helvetica", "helveticaneue", "arial", "system", "systemfont", "sfui",  "sfuitext",    "sfuidisplay",
        "sfprotext", "sfprodisplay",  ".sfui", "avenir", "avenirnext", "inter", "sanfrancisco"};
    for (const char* alias : aliases)
        if (family == alias) return true;
    return false;
}

} // namespace

Font::Font() : Font(kSystemFamily, systemFontSize()) {}

Font::Font(std::string family, double pointSize, FontWeight weight, FontSlant slant, FontWidth width)
    : family_(family.empty() ? kSystemFamily : std::move(family)), pointSize_(sanitizedSize(pointSize)),
      weight_(weight), slant_(slant), width_(width) {
    makeKey();
}

void Font::makeKey() {
    key_ = family_;
    key_ += '|';
    key_ += std::to_string(pointSize_);
    key_ += weight_ == FontWeight::Bold ? "|b" : "|r";
    key_ += slant_ == FontSlant::Italic ? "i" : "u";
    key_ += width_ == FontWidth::Condensed ? "c" : "n";
}

double Font::systemFontSize() {
    return systemSize.load(std::memory_order_relaxed);
}

void Font::setSystemFontSize(double pointSize) {
    if (pointSize > 0 && std::isfinite(pointSize)) systemSize.store(pointSize, std::memory_order_relaxed);
}

Font Font::systemFont(double pointSize) {
    return Font(kSystemFamily, pointSize);
}
Font Font::boldSystemFont(double pointSize) {
    return Font(kSystemFamily, pointSize, FontWeight::Bold);
}
Font Font::italicSystemFont(double pointSize) {
    return Font(kSystemFamily, pointSize, FontWeight::Regular, FontSlant::Italic);
}

Font Font::fontWithName(std::string_view name, double pointSize) {
    // "Family-Style": the style part names weight, slant and width.
    std::string_view familyPart = name, stylePart;
    if (auto dash = name.rfind('-'); dash != std::string_view::npos) {
        familyPart = name.substr(0, dash);
        stylePart = name.substr(dash + 1);
    }
    std::string style = squeezedLowercase(stylePart);
    // Weight and width words may also sit in the family part ("Arial Bold").
    std::string whole = squeezedLowercase(name);
    FontWeight weight = contains(whole, "bold") || contains(whole, "heavy") || contains(whole, "black")
                            ? FontWeight::Bold
                            : FontWeight::Regular;
    FontSlant slant =
        contains(style, "italic") || contains(style, "oblique") ? FontSlant::Italic : FontSlant::Upright;
    FontWidth width =
        contains(whole, "condensed") || contains(whole, "narrow") || contains(whole, "compressed")
            ? FontWidth::Condensed
            : FontWidth::Normal;

    std::string family(familyPart);
    std::string familyKey = squeezedLowercase(familyPart);
    for (const char* word : {"condensed", "narrow", "bold"}) {
        if (auto at = familyKey.find(word); at != std::string::npos && at > 0) familyKey.erase(at);
    }
    if (isSystemAlias(familyKey) || family.empty()) {
        family = kSystemFamily;
    } else if (!detail::TextEngine::current().hasFamily(family)) {
        family = kSystemFamily;
    }
    // The system family has no condensed width: a condensed face of another
    // sans-serif family stands in.
    if (width == FontWidth::Condensed && family == kSystemFamily) family = kCondensedFamily;
    return Font(family, pointSize, weight, slant, width);
}

Font Font::withSize(double pointSize) const {
    return Font(family_, pointSize, weight_, slant_, width_);
}

double Font::ascender() const {
    return detail::TextEngine::current().metrics(*this).ascender;
}
double Font::descender() const {
    return detail::TextEngine::current().metrics(*this).descender;
}
double Font::lineHeight() const {
    return detail::TextEngine::current().metrics(*this).lineHeight;
}

} // namespace morvane::gfx
