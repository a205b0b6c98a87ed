#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/model/Value.h>

#include <charconv>
#include <utility>

namespace morvane {

static_assert(sizeof(Value) == 16, "a Value is two words; see Value::Payload");

Value::Value(NodePtr node) noexcept {
    if (!node) return;
    std::construct_at(&payload_.node, std::move(node));
    tag_.kind = Kind::Node;
}

Value::Value(ListPtr list) noexcept {
    if (!list) return;
    // The epoch is read before the elements: a change made after this point
    // moves it past what is remembered here.
    const std::uint64_t epoch = detail::listShapeEpoch() & kEpochMask;
    if (std::as_const(*list).items_.vouch(list.use_count() == 1)) {
        tag_.flags |= kVouchedList;
        tag_.epochHigh = static_cast<std::uint16_t>(epoch >> 32);
        tag_.epochLow = static_cast<std::uint32_t>(epoch);
    }
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
