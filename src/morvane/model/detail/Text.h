#pragma once
// Text matching shared by the NodeTree operations (internal; no promise of
// stability). Texts are UTF-8.
//
// Ordering: the kit compares texts ordinally by UTF-16 code unit. UTF-8 byte
// order is code point order, which agrees with UTF-16 order everywhere except
// between U+E000..U+FFFF and the supplementary planes (UTF-16 puts the
// surrogates, and so every supplementary character, before U+E000).
// compareText fixes exactly that case at the first differing byte, so the
// result is the UTF-16 order without converting either text.
//
// Lowercasing: full Unicode lowercasing (root locale, via ICU) with an ASCII
// fast path; invalid UTF-8 sequences become U+FFFD before lowercasing.

#include <string>
#include <string_view>
#include <vector>

namespace morvane::detail {

// <0, 0, >0 as a sorts before, equal to, or after b (UTF-16 code unit order).
int compareText(std::string_view a, std::string_view b);
inline bool textLess(std::string_view a, std::string_view b) {
    return compareText(a, b) < 0;
}

std::string lowercase(std::string_view text);

// Case-sensitive containment; an empty needle is contained in no text.
inline bool containsText(std::string_view text, std::string_view needle) {
    return !needle.empty() && text.find(needle) != std::string_view::npos;
}

// "like": text, lowercased, contains needle, lowercased. The needle is taken
// as already lowercased, so a walk lowercases it once.
bool likeLowered(std::string_view text, std::string_view loweredNeedle);
inline bool isLike(std::string_view text, std::string_view needle) {
    return likeLowered(text, lowercase(needle));
}

// Equal after both are lowercased; the second text already lowercased.
bool equalsCaseFreeLowered(std::string_view text, std::string_view loweredOther);

// Splits at every occurrence of a non-empty separator (empty pieces kept).
std::vector<std::string_view> splitText(std::string_view text, std::string_view separator);

} // namespace morvane::detail
