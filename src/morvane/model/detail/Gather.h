#pragma once
// Walks shared by the Node- and list-hosted gathering operations (internal).

#include <morvane/model/Forward.h>

#include <string>
#include <string_view>

namespace morvane::detail {

struct GatherQuery {
    std::string_view key;
    std::string_view front;
    std::string_view back;
    // The list-hosted walk puts a Node's own value first, before its nested
    // pieces; the Node-hosted walk keeps iteration order.
    bool ownValueFirst;
};

void gatherNode(const Node& node, const GatherQuery& query, std::string& out);
// Elements joined by `back`, never doubled, never leading or trailing.
void gatherList(const List& list, const GatherQuery& query, std::string& out);

double sumNode(const Node& node, std::string_view key);
double sumList(const List& list, std::string_view key);

// The number a text begins with, read at single precision: leading ASCII
// white space skipped, then an optional sign, digits, an optional point with
// digits and an optional exponent. 0 when the text does not begin so.
float leadingFloat(std::string_view text);

} // namespace morvane::detail
