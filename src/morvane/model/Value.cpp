#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/model/Value.h>

#include <charconv>

namespace morvane {

static_assert(sizeof(Value) == 24, "a Value is three words; see Value::TextBox");

Value::Value(NodePtr node) {
    if (node) data_ = std::move(node);
}

Value::Value(ListPtr list) {
    if (list) data_ = std::move(list);
}

Value::Value(std::shared_ptr<Object> object) {
    if (object) data_ = std::move(object);
}

std::string Value::toText() const {
    switch (kind()) {
    case Kind::Text:
        return *text();
    case Kind::Number: {
        const auto& n = std::get<Number>(data_);
        if (n.fromBool) return n.value != 0.0 ? "1" : "0";
        char buffer[32];
        auto result = std::to_chars(buffer, buffer + sizeof buffer, n.value);
        return std::string(buffer, result.ptr);
    }
    default:
        return {};
    }
}

bool Value::operator==(const Value& other) const {
    if (kind() != other.kind()) return false;
    switch (kind()) {
    case Kind::Absent:
    case Kind::Null:
        return true;
    case Kind::Number:
        return number() == other.number();
    case Kind::Text:
        return *text() == *other.text();
    case Kind::Node:
        return node() == other.node() || node()->equals(*other.node());
    case Kind::List:
        return list() == other.list() || list()->equals(*other.list());
    case Kind::Object:
        return objectPtr() == other.objectPtr();
    }
    return false;
}

} // namespace morvane
