#include <morvane/model/detail/Text.h>

#include <unicode/locid.h>
#include <unicode/unistr.h>

#include <algorithm>

namespace morvane::detail {

namespace {
// Lead bytes of U+E000..U+FFFF move after the lead bytes of the supplementary
// planes (0xF0..0xF4), which is where UTF-16 puts them.
unsigned utf16Weight(unsigned char byte) {
    return byte == 0xEE || byte == 0xEF ? byte + 0x10u : byte;
}
} // namespace

int compareText(std::string_view a, std::string_view b) {
    const std::size_t common = std::min(a.size(), b.size());
    const auto [ia, ib] =
        std::mismatch(a.begin(), a.begin() + static_cast<std::ptrdiff_t>(common), b.begin());
    if (ia == a.begin() + static_cast<std::ptrdiff_t>(common)) {
        if (a.size() == b.size()) return 0;
        return a.size() < b.size() ? -1 : 1;
    }
    auto x = static_cast<unsigned char>(*ia);
    auto y = static_cast<unsigned char>(*ib);
    // Only lead bytes of 3- and 4-byte sequences need the fix; with an equal
    // prefix both bytes sit at the same place of a sequence.
    if (x >= 0xEE && y >= 0xEE) return utf16Weight(x) < utf16Weight(y) ? -1 : 1;
    return x < y ? -1 : 1;
}

namespace {
bool isAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}
char asciiLower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
} // namespace

// An ASCII text lowercases to ASCII, byte for byte, so the keys met by the
// walks (nearly always ASCII) are compared without building a lowered copy.
bool likeLowered(std::string_view text, std::string_view loweredNeedle) {
    if (loweredNeedle.empty()) return false;
    if (isAscii(text)) {
        const auto at = std::search(text.begin(), text.end(), loweredNeedle.begin(), loweredNeedle.end(),
                                    [](char a, char b) { return asciiLower(a) == b; });
        return at != text.end();
    }
    return lowercase(text).find(loweredNeedle) != std::string::npos;
}

bool equalsCaseFreeLowered(std::string_view text, std::string_view loweredOther) {
    if (isAscii(text))
        return text.size() == loweredOther.size() &&
               std::equal(text.begin(), text.end(), loweredOther.begin(),
                          [](char a, char b) { return asciiLower(a) == b; });
    return lowercase(text) == loweredOther;
}

std::string lowercase(std::string_view text) {
    if (isAscii(text)) {
        std::string out(text);
        for (char& c : out)
            c = asciiLower(c);
        return out;
    }
    icu::UnicodeString wide =
        icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
    wide.toLower(icu::Locale::getRoot());
    std::string out;
    wide.toUTF8String(out);
    return out;
}

std::vector<std::string_view> splitText(std::string_view text, std::string_view separator) {
    std::vector<std::string_view> pieces;
    if (separator.empty()) {
        pieces.push_back(text);
        return pieces;
    }
    std::size_t start = 0;
    for (;;) {
        const std::size_t at = text.find(separator, start);
        if (at == std::string_view::npos) break;
        pieces.push_back(text.substr(start, at - start));
        start = at + separator.size();
    }
    pieces.push_back(text.substr(start));
    return pieces;
}

} // namespace morvane::detail
