#include <morvane/ui/text/detail/TextBuffer.h>

namespace morvane::ui::detail {

namespace {

// Bytes of the UTF-8 sequence starting with `lead` (1 for stray bytes).
std::size_t sequenceLength(unsigned char lead) {
    if (lead < 0x80) return 1;
    if ((lead & 0xE0) == 0xC0) return 2;
    if ((lead & 0xF0) == 0xE0) return 3;
    if ((lead & 0xF8) == 0xF0) return 4;
    return 1;
}

template <class Visit> void walk(std::string_view text, Visit visit) {
    std::size_t byte = 0;
    std::size_t unit = 0;
    while (byte < text.size()) {
        std::size_t n = sequenceLength(static_cast<unsigned char>(text[byte]));
        if (byte + n > text.size()) n = 1;
        std::size_t units = n == 4 ? 2 : 1;
        if (!visit(byte, unit, n, units)) return;
        byte += n;
        unit += units;
    }
    visit(byte, unit, 0, 0);
}

} // namespace

std::string typedText(std::string_view text, bool oneLine) {
    static constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
    std::string out;
    out.reserve(text.size());
    std::size_t i = 0;
    while (i < text.size()) {
        const auto lead = static_cast<unsigned char>(text[i]);
        if (lead < 0x80) {
            if (lead == '\r' && i + 1 < text.size() && text[i + 1] == '\n') {
                ++i; // CR LF: one line end
                continue;
            }
            if (lead == '\n' || lead == '\r' || lead == '\t')
                out += oneLine ? ' ' : (lead == '\r' ? '\n' : char(lead));
            else if (lead >= 0x20 && lead != 0x7F)
                out += char(lead);
            ++i;
            continue;
        }
        // A well-formed sequence: the right number of continuation bytes, no
        // overlong form, no surrogate, nothing past U+10FFFF.
        std::size_t n = sequenceLength(lead);
        char32_t code = n == 2 ? lead & 0x1F : n == 3 ? lead & 0x0F : lead & 0x07;
        bool ok = n > 1 && i + n <= text.size();
        for (std::size_t k = 1; ok && k < n; ++k) {
            const auto next = static_cast<unsigned char>(text[i + k]);
            ok = (next & 0xC0) == 0x80;
            code = (code << 6) | (next & 0x3F);
        }
        if (ok) {
            const char32_t least = n == 2 ? 0x80 : n == 3 ? 0x800 : 0x10000;
            ok = code >= least && code <= 0x10FFFF && !(code >= 0xD800 && code <= 0xDFFF);
        }
        if (!ok) {
            out += kReplacement;
            ++i;
            continue;
        }
        // C1 controls (U+0080..U+009F) are dropped like the C0 ones.
        if (!(code >= 0x80 && code <= 0x9F)) out.append(text.substr(i, n));
        i += n;
    }
    return out;
}

std::size_t utf16Length(std::string_view text) {
    std::size_t length = 0;
    walk(text, [&](std::size_t, std::size_t unit, std::size_t, std::size_t) {
        length = unit;
        return true;
    });
    return length;
}

std::optional<std::size_t> byteOffset(std::string_view text, std::size_t utf16Index) {
    std::optional<std::size_t> found;
    walk(text, [&](std::size_t byte, std::size_t unit, std::size_t, std::size_t) {
        if (unit == utf16Index) found = byte;
        return unit < utf16Index;
    });
    return found;
}

std::size_t previousBoundary(std::string_view text, std::size_t utf16Index) {
    std::size_t previous = 0;
    walk(text, [&](std::size_t, std::size_t unit, std::size_t, std::size_t) {
        if (unit >= utf16Index) return false;
        previous = unit;
        return true;
    });
    return previous;
}

std::size_t nextBoundary(std::string_view text, std::size_t utf16Index) {
    std::size_t next = 0;
    walk(text, [&](std::size_t, std::size_t unit, std::size_t, std::size_t) {
        next = unit;
        return unit <= utf16Index;
    });
    return next;
}

std::optional<std::string> replaced(std::string_view text, TextRange range, std::string_view replacement) {
    auto start = byteOffset(text, range.location);
    auto end = byteOffset(text, range.location + range.length);
    if (!start || !end || range.location + range.length < range.location) return std::nullopt;
    std::string out;
    out.reserve(text.size() - (*end - *start) + replacement.size());
    out.append(text.substr(0, *start));
    out.append(replacement);
    out.append(text.substr(*end));
    return out;
}

std::string bullets(std::string_view text) {
    std::string out;
    walk(text, [&](std::size_t, std::size_t, std::size_t n, std::size_t) {
        if (n) out += "\u2022";
        return true;
    });
    return out;
}

bool fits(std::string_view text, TextRange range) {
    return range.end() >= range.location && range.end() <= utf16Length(text);
}

std::optional<TextRange> deletionRange(std::string_view text, TextRange selection, Key key) {
    if (key != Key::Backspace && key != Key::Delete) return std::nullopt;
    if (selection.length > 0) return selection;
    if (key == Key::Backspace) {
        if (selection.location == 0) return std::nullopt;
        std::size_t from = previousBoundary(text, selection.location);
        return TextRange{from, selection.location - from};
    }
    if (selection.location >= utf16Length(text)) return std::nullopt;
    std::size_t to = nextBoundary(text, selection.location);
    return TextRange{selection.location, to - selection.location};
}

bool applyEdit(std::string& text, TextRange& selection, TextRange range, std::string_view replacement) {
    auto changed = replaced(text, range, replacement);
    if (!changed) return false;
    text = std::move(*changed);
    selection = {range.location + utf16Length(replacement), 0};
    return true;
}

std::string editOutsideText(std::string_view text, TextRange range) {
    return "an edit of " + std::to_string(range.location) + "+" + std::to_string(range.length) +
           " lies outside the text of " + std::to_string(utf16Length(text)) + " units; ignored";
}

std::string textBefore(std::string_view text, std::size_t utf16Index) {
    return std::string(text.substr(0, byteOffset(text, utf16Index).value_or(text.size())));
}

} // namespace morvane::ui::detail
