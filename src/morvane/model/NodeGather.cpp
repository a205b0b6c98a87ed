// Gathering: every value stored under one key name in a tree, as one text or
// as a sum. Shared by the Node-hosted operations here and the list-hosted
// ones in ListGather.cpp.

#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/model/detail/Gather.h>
#include <morvane/model/detail/Walk.h>

#include <charconv>
#include <cmath>
#include <limits>
#include <vector>

namespace morvane {

namespace detail {

namespace {

// Pieces are gathered straight into `out`. Between the elements of a list a
// separator is put down before an element that may give a piece, and taken
// back when the element gave none; a list level keeps the sizes for that.
struct GatherLevel : Level {
    std::size_t start = 0;      // size of `out` when the list was entered
    std::size_t before = 0;     // before the current element's separator
    std::size_t pieceStart = 0; // after it
};

void gather(const Node* root, const List* rootList, const GatherQuery& query, std::string& out) {
    std::vector<GatherLevel> stack;
    stack.reserve(kUsualDepth);
    auto takeText = [&](std::string_view key, const Value& value) {
        if (query.ownValueFirst || key != query.key) return;
        if (const std::string* text = value.text()) {
            out += query.front;
            out += *text;
        }
    };
    // Most Nodes hold nothing to go into: their entries are read here, and a
    // level is pushed only at the first container, to go on from there. True
    // when the Node was read to its end.
    auto enterNode = [&](const Node& node) {
        if (query.ownValueFirst) {
            if (const std::string* own = node.get(query.key).text()) {
                out += query.front;
                out += *own;
            }
        }
        const auto& entries = node.entries();
        for (std::size_t i = 0; i < entries.size(); ++i) {
            const Value& value = entries[i].second;
            if (value.isNode() || detail::isListOfContainers(value)) {
                stack.push_back({Level{&node, nullptr, i}});
                return false;
            }
            takeText(entries[i].first, value);
        }
        return true;
    };
    auto enterList = [&](const List& list) { stack.push_back({levelOf(list), out.size()}); };
    // An element of a list that gave no piece takes its separator back.
    auto endElement = [&](GatherLevel& level) {
        if (out.size() == level.pieceStart) out.resize(level.before);
    };
    if (root) {
        if (enterNode(*root)) return;
    } else {
        enterList(*rootList);
    }
    while (!stack.empty()) {
        GatherLevel& level = stack.back();
        std::string_view key;
        const Value* value = stepToContainer(level, key);
        if (!value) {
            stack.pop_back();
            if (!stack.empty() && stack.back().list) endElement(stack.back());
            continue;
        }
        if (level.list) {
            // Only Nodes and lists that hold containers can give a piece.
            if (!value->isNode() && !detail::isListOfContainers(*value)) continue;
            level.before = out.size();
            if (level.before > level.start) out += query.back;
            level.pieceStart = out.size();
            if (value->isNode()) {
                if (enterNode(*value->node())) endElement(level);
            } else {
                enterList(*value->list());
            }
        } else if (const NodePtr& nested = value->node()) {
            enterNode(*nested);
        } else if (detail::isListOfContainers(*value)) {
            enterList(*value->list());
        } else {
            takeText(key, *value);
        }
    }
}

// Each level sums its own part, and adds it to its parent's total when it
// is done: the same additions in the same order as a sum per call.
double sum(Level root, std::string_view key) {
    struct SumLevel : Level {
        double total = 0;
    };
    std::vector<SumLevel> stack;
    stack.reserve(kUsualDepth);
    stack.push_back({root});
    for (;;) {
        SumLevel& level = stack.back();
        std::string_view entryKey;
        const Value* value = stepToContainer(level, entryKey);
        if (!value) {
            const double total = level.total;
            stack.pop_back();
            if (stack.empty()) return total;
            stack.back().total += total;
        } else if (const NodePtr& nested = value->node()) {
            stack.push_back({levelOf(*nested)});
        } else if (detail::isListOfContainers(*value)) {
            stack.push_back({levelOf(*value->list())});
        } else if (const std::string* text = value->text(); text && level.node && entryKey == key) {
            level.total += static_cast<double>(leadingFloat(*text));
        }
    }
}

} // namespace

void gatherNode(const Node& node, const GatherQuery& query, std::string& out) {
    gather(&node, nullptr, query, out);
}

void gatherList(const List& list, const GatherQuery& query, std::string& out) {
    gather(nullptr, &list, query, out);
}

double sumNode(const Node& node, std::string_view key) {
    return sum(levelOf(node), key);
}

double sumList(const List& list, std::string_view key) {
    return sum(levelOf(list), key);
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
