#pragma once
// The text of an edit field kept as UTF-8 with its caret and selection in
// UTF-16 units: conversions between the two, and the code point boundaries
// that backspace and the arrow keys step over.

#include <morvane/ui/core/Key.h>
#include <morvane/ui/text/TextRange.h>

#include <optional>
#include <string>
#include <string_view>

namespace morvane::ui::detail {

// UTF-16 units in a UTF-8 text (invalid bytes count one each).
std::size_t utf16Length(std::string_view text);
// The byte offset of a UTF-16 position; null past the end or inside a surrogate pair.
std::optional<std::size_t> byteOffset(std::string_view text, std::size_t utf16Index);
// The UTF-16 position of the code point before / after `index` (clamped to the text).
std::size_t previousBoundary(std::string_view text, std::size_t utf16Index);
std::size_t nextBoundary(std::string_view text, std::size_t utf16Index);
// The text with the range replaced; null when the range does not fit the text.
std::optional<std::string> replaced(std::string_view text, TextRange range, std::string_view replacement);
// What typing or a paste may put into an edited text: ill-formed UTF-8
// becomes U+FFFD, and control characters a keyboard never types are dropped.
// A one-line text also turns line ends and tabs into blanks; a multi-line
// text keeps them, with a CR LF pair as one line end.
std::string typedText(std::string_view text, bool oneLine);
// One bullet per code point, for secure entry.
std::string bullets(std::string_view text);

// ---- Editing, shared by the one-line field and the text view -----------------------
// A selection that lies inside the text.
bool fits(std::string_view text, TextRange range);
// What Backspace (backwards) or Delete (forwards) removes: the selection, or
// else the code point beside the caret; null at the text's edge or for other keys.
std::optional<TextRange> deletionRange(std::string_view text, TextRange selection, Key key);
// Carries out an edit that was agreed to: the range is replaced and the caret
// goes after the new text. False (nothing changed) when the range no longer
// fits, as when the delegate changed the text while it was asked.
bool applyEdit(std::string& text, TextRange& selection, TextRange range, std::string_view replacement);
// The log line for an edit whose range does not fit the text.
std::string editOutsideText(std::string_view text, TextRange range);
// The text before the caret at a UTF-16 position (all of it past the end or
// inside a surrogate pair), for measuring where the caret goes.
std::string textBefore(std::string_view text, std::size_t utf16Index);

} // namespace morvane::ui::detail
