#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/model/Value.h>
#include <morvane/model/detail/Walk.h>

#include <charconv>
#include <utility>
#include <vector>

namespace morvane {

static_assert(sizeof(Value) == 16, "a Value is two words; see Value::Payload");

Value::Value(NodePtr node) noexcept {
    if (!node) return;
    std::construct_at(&payload_.node, std::move(node));
    tag_.kind = Kind::Node;
}

Value::Value(ListPtr list) noexcept {
    if (!list) return;
    std::construct_at(&payload_.list, std::move(list));
    tag_.kind = Kind::List;
}

Value::Value(std::shared_ptr<Object> object) {
    if (!object) return;
    payload_.object = new ObjectBlock(std::move(object));
    tag_.kind = Kind::Object;
}

std::string Value::toText() const {
    switch (kind()) {
    case Kind::Text:
        return *text();
    case Kind::Number: {
        if (tag_.flags & kFromBool) return payload_.number != 0.0 ? "1" : "0";
        char buffer[32];
        auto result = std::to_chars(buffer, buffer + sizeof buffer, payload_.number);
        return std::string(buffer, result.ptr);
    }
    default:
        return {};
    }
}

bool Value::operator==(const Value& other) const {
    return detail::equalValues(*this, other);
}

namespace detail {

namespace {
// Compares the values it is given at once where they hold no container, and
// keeps the pairs of entries or elements of two containers for later.
class Comparison {
  public:
    bool nodes(const Node& a, const Node& b) {
        if (&a == &b) return true;
        if (a.size() != b.size()) return false;
        for (const auto& [key, value] : a)
            pending_.emplace_back(&value, &b.get(key));
        return true;
    }

    bool lists(const List& a, const List& b) {
        if (&a == &b) return true;
        if (a.size() != b.size()) return false;
        for (std::size_t i = 0; i < a.size(); ++i)
            pending_.emplace_back(&a.at(i), &b.at(i));
        return true;
    }

    bool values(const Value& a, const Value& b) {
        if (a.kind() != b.kind()) return false;
        switch (a.kind()) {
        case Value::Kind::Absent:
        case Value::Kind::Null:
            return true;
        case Value::Kind::Number:
            return a.number() == b.number();
        case Value::Kind::Text:
            return *a.text() == *b.text();
        case Value::Kind::Node:
            return nodes(*a.node(), *b.node());
        case Value::Kind::List:
            return lists(*a.list(), *b.list());
        case Value::Kind::Object:
            return a.objectPtr() == b.objectPtr();
        }
        return false;
    }

    // True when every pair left agrees.
    bool rest() {
        while (!pending_.empty()) {
            const auto [a, b] = pending_.back();
            pending_.pop_back();
            if (!values(*a, *b)) return false;
        }
        return true;
    }

  private:
    std::vector<std::pair<const Value*, const Value*>> pending_;
};
} // namespace

bool equalNodes(const Node& a, const Node& b) {
    Comparison comparison;
    return comparison.nodes(a, b) && comparison.rest();
}

bool equalLists(const List& a, const List& b) {
    Comparison comparison;
    return comparison.lists(a, b) && comparison.rest();
}

bool equalValues(const Value& a, const Value& b) {
    Comparison comparison;
    return comparison.values(a, b) && comparison.rest();
}

} // namespace detail

} // namespace morvane
