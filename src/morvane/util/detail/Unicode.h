#pragma once
// Conversions between the kit's UTF-8 texts and ICU's UTF-16 strings. Every
// text operation goes through UTF-16 so that positions count UTF-16 code units
// and ill-formed UTF-8 arrives as U+FFFD instead of being passed on.

#include <unicode/unistr.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace morvane::detail {

inline icu::UnicodeString toUtf16(std::string_view text) {
    // ICU lengths are 32-bit; a longer text is cut (its torn last sequence is
    // replaced like any other ill-formed input).
    constexpr std::size_t kMax = 0x7fffffff;
    const auto length = static_cast<int32_t>(text.size() < kMax ? text.size() : kMax);
    return icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), length));
}

// Lone surrogates (left by a cut in the middle of a pair) become U+FFFD.
inline std::string toUtf8(const icu::UnicodeString& text) {
    std::string out;
    text.toUTF8String(out);
    return out;
}

} // namespace morvane::detail
