#pragma once
// A run of characters in an edited text. Positions and lengths count UTF-16
// code units, as the delegate answers of the phone platform do: a letter
// outside the basic plane (most emoji) counts two.

#include <cstddef>

namespace morvane::ui {

struct TextRange {
    std::size_t location = 0;
    std::size_t length = 0;

    constexpr std::size_t end() const { return location + length; }
    constexpr bool operator==(const TextRange&) const = default;
};

} // namespace morvane::ui
