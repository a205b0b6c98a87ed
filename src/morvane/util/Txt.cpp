#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/sys/Log.h>
#include <morvane/sys/Settings.h>
#include <morvane/util/Dates.h>
#include <morvane/util/Txt.h>
#include <morvane/util/detail/Unicode.h>

#include <unicode/locid.h>
#include <unicode/regex.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <memory>

namespace morvane {

namespace {

using detail::toUtf16;
using detail::toUtf8;
using icu::UnicodeString;

constexpr const char* kRealtimeBaseKey = "realtimeDatabaseURL";

// The pieces of a text between non-overlapping separators, scanning from the
// start (so "aaa" split by "aa" is "", "a"). An empty separator leaves one piece.
std::vector<UnicodeString> pieces(const UnicodeString& text, const UnicodeString& separator) {
    std::vector<UnicodeString> out;
    if (separator.isEmpty()) {
        out.push_back(text);
        return out;
    }
    int32_t start = 0;
    for (;;) {
        const int32_t found = text.indexOf(separator, start);
        if (found < 0) break;
        out.emplace_back(text, start, found - start);
        start = found + separator.length();
    }
    out.emplace_back(text, start);
    return out;
}

// The file name of a source path: its last piece after "/".
std::string lastPathPiece(std::string_view path) {
    return Txt::splitBy(path, "/");
}

UnicodeString lower(UnicodeString text) {
    // The root locale: a storage path must not depend on the user's language
    // (a Turkish locale would turn "I" into a dotless "ı").
    text.toLower(icu::Locale::getRoot());
    return text;
}

UnicodeString upper(UnicodeString text) {
    text.toUpper(icu::Locale::getRoot());
    return text;
}

bool isPriceCharacter(UChar c) {
    return (c >= u'0' && c <= u'9') || c == u'.';
}

// White space and line breaks: the space separators, the line and paragraph
// separators, and the control characters tab to carriage return and NEL.
bool isWhiteOrBreak(UChar32 c) {
    if ((c >= 0x09 && c <= 0x0D) || c == 0x85) return true;
    const auto type = u_charType(c);
    return type == U_SPACE_SEPARATOR || type == U_LINE_SEPARATOR || type == U_PARAGRAPH_SEPARATOR;
}

UnicodeString trimmed(const UnicodeString& text) {
    int32_t start = 0, end = text.length();
    while (start < end) {
        const UChar32 c = text.char32At(start);
        if (!isWhiteOrBreak(c)) break;
        start += U16_LENGTH(c);
    }
    while (end > start) {
        const UChar32 c = text.char32At(end - 1);
        if (!isWhiteOrBreak(c)) break;
        end -= U16_LENGTH(c);
    }
    return UnicodeString(text, start, end - start);
}

UnicodeString withoutParen(const UnicodeString& text) {
    // Built once; a compiled pattern may be shared by threads, each call makes
    // its own matcher.
    static const auto pattern = []() -> std::pair<std::unique_ptr<icu::RegexPattern>, std::string> {
        UErrorCode status = U_ZERO_ERROR;
        UParseError where{};
        std::unique_ptr<icu::RegexPattern> p(
            icu::RegexPattern::compile(UnicodeString(u"\\([^)]+\\)"), where, status));
        if (U_FAILURE(status)) return {nullptr, u_errorName(status)};
        return {std::move(p), std::string()};
    }();
    if (!pattern.first) {
        sys::Log::platform("Error creating regular expression: " + pattern.second);
        return text;
    }
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::RegexMatcher> matcher(pattern.first->matcher(text, status));
    if (U_FAILURE(status)) return text;
    UnicodeString out = matcher->replaceAll(UnicodeString(), status);
    return U_FAILURE(status) ? text : out;
}

// The last piece of a label after "-": "2-Tokyo (Haneda)" gives "Tokyo (Haneda)".
UnicodeString label(const UnicodeString& text) {
    return pieces(text, UnicodeString(u"-")).back();
}

// The storage-path finish: blanks become "_", then everything is lower case.
std::string pathFinish(UnicodeString path) {
    path.findAndReplace(UnicodeString(u" "), UnicodeString(u"_"));
    return toUtf8(lower(std::move(path)));
}

// The code units of s at positions min to max inclusive, clipped to the text.
UnicodeString unitsBetween(const UnicodeString& s, std::int64_t min, std::int64_t max) {
    const std::int64_t first = std::max<std::int64_t>(min, 0);
    const std::int64_t last = std::min<std::int64_t>(max, s.length() - 1);
    if (first > last) return {};
    return UnicodeString(s, static_cast<int32_t>(first), static_cast<int32_t>(last - first + 1));
}

UnicodeString priceCharacters(const UnicodeString& s) {
    UnicodeString out;
    for (int32_t i = 0; i < s.length(); ++i)
        if (isPriceCharacter(s.charAt(i))) out.append(s.charAt(i));
    return out;
}

} // namespace

// ---- Debug lines ---------------------------------------------------------------

void Txt::println(std::string_view text, std::optional<std::string_view> tag,
                  std::optional<std::string_view> fname, std::int64_t line) {
    std::string out(tag ? *tag : "-zd");
    out += ' ';
    if (fname) out += lastPathPiece(*fname);
    out += '@';
    out += std::to_string(line);
    out += ": ";
    out += toUtf8(toUtf16(text));
    out += '\n';
    sys::Log::standardError(out);
}

void Txt::printIt(std::string_view text, std::string_view fname, std::int32_t lineNo) {
    sys::Log::platform("zed " + lastPathPiece(fname) + ":" + std::to_string(lineNo) + ">" +
                       toUtf8(toUtf16(text)));
}

// ---- Paths and prices ----------------------------------------------------------

std::string Txt::attachURL(std::string_view text) {
    return realtimeBase() + "/" + toUtf8(toUtf16(text));
}

void Txt::setRealtimeBase(std::string_view url) {
    while (!url.empty() && url.back() == '/')
        url.remove_suffix(1);
    sys::Settings::standard()->setText(kRealtimeBaseKey, toUtf8(toUtf16(url)));
}

std::string Txt::realtimeBase() {
    return sys::Settings::standard()->text(kRealtimeBaseKey).value_or("");
}

std::string Txt::toPrice(std::string_view text) {
    return toUtf8(priceCharacters(toUtf16(text)));
}

std::string Txt::getName(std::string_view text) {
    return toUtf8(toUtf16(text)) + Dates::stamp();
}

// ---- Splitting -----------------------------------------------------------------

std::string Txt::splitBy(std::string_view text, std::string_view separator) {
    return toUtf8(pieces(toUtf16(text), toUtf16(separator)).back());
}

std::string Txt::splitLastBy(std::string_view text, std::string_view separator) {
    return splitBy(text, separator);
}

std::string Txt::DELsplitBy(std::string_view text, std::string_view separator) {
    // The NodeTree's split, on well-formed texts (a byte search in valid UTF-8
    // only matches whole characters, as the UTF-16 search does).
    static const Node splitter;
    auto s = toUtf8(toUtf16(text));
    const auto found = splitter.splitBy(s, toUtf8(toUtf16(separator)));
    return found.isText() ? *found.text() : s;
}

std::string Txt::prefix(std::string_view text, std::string_view separator) {
    return toUtf8(pieces(toUtf16(text), toUtf16(separator)).front());
}

// ---- Clean-up and case ---------------------------------------------------------

std::string Txt::removeParen(std::string_view text) {
    return toUtf8(withoutParen(toUtf16(text)));
}

std::string Txt::trim(std::string_view text) {
    return toUtf8(trimmed(toUtf16(text)));
}

std::string Txt::cap(std::string_view text, std::string_view separator) {
    const auto d = toUtf16(separator);
    UnicodeString out;
    for (auto& piece : pieces(toUtf16(text), d)) {
        // Word boundaries come from ICU's word break rules; the root locale keeps
        // the result independent of the user's language.
        piece.toTitle(nullptr, icu::Locale::getRoot());
        if (out.isEmpty()) {
            out = piece;
        } else {
            out.append(d).append(piece);
        }
    }
    return toUtf8(out);
}

std::string Txt::attach(std::string_view text, std::string_view other) {
    UnicodeString path = label(toUtf16(text));
    path.append(u'/').append(label(toUtf16(other)));
    return pathFinish(withoutParen(path));
}

std::string Txt::attachArray(std::string_view text, const std::vector<std::string>& labels) {
    UnicodeString path = label(toUtf16(text));
    for (const auto& each : labels) {
        const auto piece = toUtf16(each);
        if (piece.indexOf(u'.') < 0) path.append(u'/');
        path.append(label(piece));
    }
    return pathFinish(trimmed(withoutParen(path)));
}

std::string Txt::attachArray(std::string_view text, const ListPtr& labels) {
    std::vector<std::string> texts;
    if (labels) {
        for (const auto& value : *labels)
            if (const auto* t = value.text()) texts.push_back(*t);
    }
    return attachArray(text, texts);
}

// ---- Typing formats ------------------------------------------------------------

std::string Txt::flightFormat(std::string_view text) {
    UnicodeString s = toUtf16(text);
    s.findAndReplace(UnicodeString(u" "), UnicodeString());
    UnicodeString airline = s, number;
    if (s.length() >= 3) {
        airline = UnicodeString(s, 0, 2);
        number = UnicodeString(s, 2);
    }
    UnicodeString out = upper(airline);
    if (!number.isEmpty()) out.append(u' ').append(upper(number));
    return toUtf8(out);
}

std::string Txt::phoneFormat(std::string_view text) {
    const auto d = priceCharacters(toUtf16(text));
    UnicodeString out = unitsBetween(d, 0, 2);
    const auto b = unitsBetween(d, 3, 5);
    const auto c = unitsBetween(d, 6, 9);
    if (!b.isEmpty()) out.append(u' ').append(b);
    if (!c.isEmpty()) out.append(u'-').append(c);
    return toUtf8(out);
}

std::string Txt::acceptChr(std::string_view s, std::int64_t min, std::int64_t max) {
    return toUtf8(unitsBetween(toUtf16(s), min, max));
}

std::string Txt::acceptOnly(std::string_view s) {
    return toPrice(s);
}

bool Txt::charOK(std::string_view character) {
    const auto c = toUtf16(character);
    return c.length() == 1 && isPriceCharacter(c.charAt(0));
}

} // namespace morvane
