#pragma once
// ListConfig: the configuration of a list, a grid or a composite as one
// struct with a member per callback, beside the kit's twelve-callback cfg
// operation. Members follow the order of that operation's arguments (and
// designated initializers must follow it too); the component calls them in
// its own fixed order, which its header states:
//
//   list->cfg({.header = [](auto& keys) { keys = {"name"}; },
//              .body = [](auto& keys) { keys = {"phone", "time"}; },
//              .sortBy = [](auto& keys) { keys = {"name"}; }});
//
// A member left empty is skipped: its key list or flag keeps its default.

#include <functional>
#include <string>
#include <vector>

namespace morvane {

struct ListConfig {
    // Configuration callbacks edit the key list, flag cell or text they are handed.
    using KeysCB = std::function<void(std::vector<std::string>& keys)>;
    using FlagCB = std::function<void(bool& flag)>;
    using SizeCB = std::function<void(float& value)>;
    using SelectionCB = std::function<void(std::string& selection)>;

    KeysCB image{};       // the picture's candidate keys (the kit's `cfg:` argument)
    KeysCB header{};      // the header line's candidate keys
    KeysCB body{};        // the keys whose values become body lines
    KeysCB price{};       // the price's candidate keys
    FlagCB sort{};        // sort on refresh
    KeysCB sortBy{};      // candidate sort keys
    FlagCB ascending{};   // sort direction
    SizeCB cellHeight{};  // row height in text lines
    SizeCB numOfCol{};    // columns (grids only; a list never calls it)
    FlagCB checkBox{};    // check-mark selection
    SelectionCB select{}; // the current selection
    FlagCB incKey{};      // prefix body lines with their key
};

} // namespace morvane
