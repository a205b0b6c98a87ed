#pragma once
// The keys that reach the focused view as keys rather than as typed text.
// Printable characters arrive as text (View::insertText); these are the
// editing and navigation keys a text field reacts to.

namespace morvane::ui {

enum class Key {
    Return,
    Backspace, // deletes backwards
    Delete,    // deletes forwards
    Tab,
    Escape,
    Left,
    Right,
    Up,
    Down,
    Home,
    End,
};

} // namespace morvane::ui
