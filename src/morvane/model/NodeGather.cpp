// Gathering: every value stored under one key name in a tree, as one text or
// as a sum. Shared by the Node-hosted operations here and the list-hosted
// ones in ListGather.cpp.

#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/model/detail/Gather.h>

#include <charconv>
#include <cmath>
#include <limits>

namespace morvane {

namespace detail {

void gatherNode(const Node& node, const GatherQuery& query, std::string& out) {
    if (query.ownValueFirst) {
        if (const std::string* own = node.get(query.key).text()) {
            out += query.front;
            out += *own;
        }
    }
    for (const auto& [key, value] : node) {
        if (const NodePtr& nested = value.node()) {
            gatherNode(*nested, query, out);
        } else if (const ListPtr& list = value.list(); value.listMayHoldContainers()) {
            gatherList(*list, query, out);
        } else if (const std::string* text = value.text()) {
            if (!query.ownValueFirst && key == query.key) {
                out += query.front;
                out += *text;
            }
        }
    }
}

void gatherList(const List& list, const GatherQuery& query, std::string& out) {
    // Pieces are gathered straight into `out`; a separator put down before an
    // element that turns out empty is taken back.
    const std::size_t start = out.size();
    for (const Value& element : list) {
        // Only Nodes and lists that hold containers can give a piece.
        if (!element.isNode() && !element.listMayHoldContainers()) continue;
        const std::size_t before = out.size();
        const bool separate = before > start;
        if (separate) out += query.back;
        const std::size_t pieceStart = out.size();
        if (element.isNode())
            gatherNode(*element.node(), query, out);
        else
            gatherList(*element.list(), query, out);
        if (out.size() == pieceStart) out.resize(before);
    }
}

double sumNode(const Node& node, std::string_view key) {
    double total = 0;
    for (const auto& [entryKey, value] : node) {
        if (const NodePtr& nested = value.node())
            total += sumNode(*nested, key);
        else if (const ListPtr& list = value.list(); value.listMayHoldContainers())
            total += sumList(*list, key);
        else if (const std::string* text = value.text(); text && entryKey == key)
            total += static_cast<double>(leadingFloat(*text));
    }
    return total;
}

double sumList(const List& list, std::string_view key) {
    double total = 0;
    for (const Value& element : list) {
        if (const NodePtr& nested = element.node())
            total += sumNode(*nested, key);
        else if (const ListPtr& inner = element.list(); element.listMayHoldContainers())
            total += sumList(*inner, key);
    }
    return total;
}

float leadingFloat(std::string_view text) {
    std::size_t i = 0;
    auto isSpace = [](char c) {
        return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
    };
    auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    while (i < text.size() && isSpace(text[i]))
        ++i;
    bool negative = false;
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) negative = text[i++] == '-';
    const std::size_t numberStart = i;
    std::size_t digits = 0;
    while (i < text.size() && isDigit(text[i]))
        ++i, ++digits;
    if (i < text.size() && text[i] == '.') {
        ++i;
        while (i < text.size() && isDigit(text[i]))
            ++i, ++digits;
    }
    if (digits == 0) return 0.0f;
    bool negativeExponent = false;
    if (i < text.size() && (text[i] == 'e' || text[i] == 'E')) {
        // The exponent counts only when digits follow it.
        std::size_t j = i + 1;
        bool expNegative = false;
        if (j < text.size() && (text[j] == '+' || text[j] == '-')) expNegative = text[j++] == '-';
        if (j < text.size() && isDigit(text[j])) {
            while (j < text.size() && isDigit(text[j]))
                ++j;
            i = j;
            negativeExponent = expNegative;
        }
    }
    // from_chars takes no '+' in the exponent; copy without it.
    std::string number;
    number.reserve(i - numberStart);
    for (std::size_t k = numberStart; k < i; ++k)
        if (!(text[k] == '+' && k > numberStart)) number += text[k];
    float value = 0.0f;
    const auto result = std::from_chars(number.data(), number.data() + number.size(), value);
    if (result.ec == std::errc::result_out_of_range) {
        // Too large for a float becomes infinity, too small becomes zero.
        double wide = 0.0;
        const auto wideResult = std::from_chars(number.data(), number.data() + number.size(), wide);
        const bool huge = wideResult.ec == std::errc() ? std::fabs(wide) >= 1.0 : !negativeExponent;
        value = huge ? std::numeric_limits<float>::infinity() : 0.0f;
    } else if (result.ec != std::errc()) {
        value = 0.0f;
    }
    return negative ? -value : value;
}

} // namespace detail

std::string Node::gatherTxt(std::string_view k, std::string_view front, std::string_view back) const {
    std::string out;
    detail::gatherNode(*this, {k, front, back, false}, out);
    return out;
}

std::string Node::gatherArrayTxt(const ListPtr& list, std::string_view k, std::string_view front,
                                 std::string_view back) const {
    std::string out;
    if (list) detail::gatherList(*list, {k, front, back, false}, out);
    return out;
}

double Node::gatherFloat(std::string_view k) const {
    return detail::sumNode(*this, k);
}

double Node::gatherArrayFloat(const ListPtr& list, std::string_view k) const {
    return list ? detail::sumList(*list, k) : 0.0;
}

} // namespace morvane
