#pragma once
// The validation callback of the text entries: called with the field's
// caption and its text on every change, it answers nothing (absent or null)
// when the text is acceptable, or a two-element list [message text, colour]
// that the field shows in its error line and toaster.
//
//   field->watchAction(0, [](const std::string& caption, const std::string& text) -> Value {
//       if (text.size() < 3) return List::make({Value("Too short"), Value::object(gfx::Color::redColor())});
//       return {};
//   }, {});
//
// An answer of another shape (a list of the wrong length, a message that is
// no text, a colour that is no colour) counts as acceptable, with one log
// line naming the field, so that a faulty callback never blocks typing.

#include <morvane/gfx/Color.h>
#include <morvane/model/Value.h>

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace morvane {

using ValidationCB = std::function<Value(const std::string& caption, const std::string& text)>;

struct ValidationFailure {
    std::string message;
    gfx::Color colour;
};

// The failure the answer reports; nothing when the text is acceptable.
std::optional<ValidationFailure> readValidation(const Value& answer, std::string_view field);

} // namespace morvane
