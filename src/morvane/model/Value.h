#pragma once
// One value of the NodeTree: absent, the JSON null, a number (remembering
// whether it came from a boolean), a text, a Node, a list, or an opaque object
// that a record carries along (a colour, an image, a callback).
//
// Nodes and lists are held by shared reference: copying a Value that holds a
// Node copies the reference, so everybody holding it sees the same Node.

#include <morvane/model/Forward.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <typeinfo>
#include <utility>

namespace morvane {

// Base of the opaque objects a Value can carry. Application code stores any
// copyable C++ value with Value::object(x) and reads it back with as<T>().
class Object {
  public:
    virtual ~Object() = default;
};

template <typename T> class Boxed final : public Object {
  public:
    explicit Boxed(T value) : value_(std::move(value)) {}
    const T& value() const { return value_; }
    T& value() { return value_; }

  private:
    T value_;
};

class Value {
  public:
    enum class Kind : std::uint8_t { Absent, Null, Number, Text, Node, List, Object };

    Value() noexcept { payload_.bits = 0; } // absent
    Value(double number) noexcept : tag_{Kind::Number} { payload_.number = number; }
    Value(int number) noexcept : Value(static_cast<double>(number)) {}
    Value(long number) noexcept : Value(static_cast<double>(number)) {}
    Value(long long number) noexcept : Value(static_cast<double>(number)) {}
    Value(unsigned number) noexcept : Value(static_cast<double>(number)) {}
    Value(unsigned long number) noexcept : Value(static_cast<double>(number)) {}
    Value(unsigned long long number) noexcept : Value(static_cast<double>(number)) {}
    Value(bool flag) noexcept : tag_{Kind::Number, kFromBool} { payload_.number = flag ? 1.0 : 0.0; }
    Value(std::string text) : tag_{Kind::Text} { payload_.text = new TextBlock(std::move(text)); }
    Value(std::string_view text) : Value(std::string(text)) {}
    Value(const char* text) : Value(std::string(text ? text : "")) {}
    Value(NodePtr node) noexcept;
    Value(ListPtr list) noexcept;
    Value(std::shared_ptr<Object> object);
    // A Value holding a raw pointer would silently become a flag; refuse it.
    Value(const void*) = delete;

    Value(const Value& other) noexcept : tag_(other.tag_) {
        payload_.bits = other.payload_.bits;
        retain();
    }
    Value(Value&& other) noexcept : tag_(other.tag_) {
        payload_.bits = other.payload_.bits;
        other.tag_.kind = Kind::Absent;
    }
    Value& operator=(const Value& other) noexcept {
        Value copy(other);
        swap(copy);
        return *this;
    }
    Value& operator=(Value&& other) noexcept {
        Value taken(std::move(other));
        swap(taken);
        return *this;
    }
    ~Value() {
        if (tag_.kind >= Kind::Text) release();
    }
    void swap(Value& other) noexcept {
        std::swap(payload_.bits, other.payload_.bits);
        std::swap(tag_, other.tag_);
    }
    friend void swap(Value& a, Value& b) noexcept { a.swap(b); }

    static Value null() noexcept {
        Value v;
        v.tag_.kind = Kind::Null;
        return v;
    }
    template <typename T> static Value object(T value) {
        return Value(std::shared_ptr<Object>(std::make_shared<Boxed<T>>(std::move(value))));
    }

    Kind kind() const noexcept { return tag_.kind; }
    bool isAbsent() const noexcept { return tag_.kind == Kind::Absent; }
    bool isNull() const noexcept { return tag_.kind == Kind::Null; }
    bool isNumber() const noexcept { return tag_.kind == Kind::Number; }
    bool isBool() const noexcept { return tag_.kind == Kind::Number && (tag_.flags & kFromBool); }
    bool isText() const noexcept { return tag_.kind == Kind::Text; }
    bool isNode() const noexcept { return tag_.kind == Kind::Node; }
    bool isList() const noexcept { return tag_.kind == Kind::List; }
    bool isObject() const noexcept { return tag_.kind == Kind::Object; }
    // True for everything but the absent value.
    explicit operator bool() const noexcept { return tag_.kind != Kind::Absent; }

    // The number, or 0 when this is not a number.
    double number() const noexcept { return tag_.kind == Kind::Number ? payload_.number : 0.0; }
    bool boolean() const noexcept { return number() != 0.0; }
    // The text, or nullptr when this is not a text.
    const std::string* text() const noexcept {
        return tag_.kind == Kind::Text ? &payload_.text->value : nullptr;
    }
    // The text, or "" when this is not a text.
    const std::string& textOr() const noexcept {
        return tag_.kind == Kind::Text ? payload_.text->value : kNoText;
    }
    // The Node or list, or nullptr. (Inline: the tree walks ask every value.)
    const NodePtr& node() const noexcept { return tag_.kind == Kind::Node ? payload_.node : kNoNode; }
    const ListPtr& list() const noexcept { return tag_.kind == Kind::List ? payload_.list : kNoList; }
    const std::shared_ptr<Object>& objectPtr() const noexcept {
        return tag_.kind == Kind::Object ? payload_.object->value : kNoObject;
    }
    // The carried object if it is a T, or nullptr.
    template <typename T> const T* as() const {
        auto* boxed = dynamic_cast<const Boxed<T>*>(objectPtr().get());
        return boxed ? &boxed->value() : nullptr;
    }

    // The text form used by sorts and comparisons: a text as it stands, a
    // number in its shortest decimal form ("3", "2.5", "1e+21"), a boolean as
    // "1" or "0", everything else "".
    std::string toText() const;

    // Value equality: texts character for character, numbers by value, Nodes
    // and lists by content (deeply), objects by identity. Absent equals absent.
    bool operator==(const Value& other) const;

  private:
    // Texts and opaque objects live in counted blocks: a text never changes
    // once made, so copies of a Value (and deep copies of a tree, which only
    // build new containers) share the block instead of copying the characters.
    template <typename T> struct Block : RefCounted {
        explicit Block(T made) : value(std::move(made)) { adoptRef(); }
        T value;
    };
    using TextBlock = Block<std::string>;
    using ObjectBlock = Block<std::shared_ptr<Object>>;

    // Two words: the payload and the kind. Most values of a tree are numbers,
    // Nodes and lists, and walks and memory pay for every byte of every value.
    // `bits` copies whichever member is live: every member is one word that
    // can be moved as it stands.
    union Payload {
        Payload() noexcept : bits(0) {}
        ~Payload() {}
        std::uint64_t bits;
        double number;
        TextBlock* text;
        NodePtr node;
        ListPtr list;
        ObjectBlock* object;
    };

    void retain() const noexcept;
    void release() noexcept;

    static inline const std::string kNoText;
    static inline const NodePtr kNoNode;
    static inline const ListPtr kNoList;
    static inline const std::shared_ptr<Object> kNoObject;

    static constexpr std::uint8_t kFromBool = 1;

    // The second word: the kind and the flags. Copied and swapped whole.
    struct Tag {
        Kind kind = Kind::Absent;
        std::uint8_t flags = 0;
    };

    Payload payload_;
    Tag tag_;
};

inline void Value::retain() const noexcept {
    switch (tag_.kind) {
    case Kind::Text:
        payload_.text->retainRef();
        break;
    case Kind::Node:
        refRetain(payload_.node.get());
        break;
    case Kind::List:
        refRetain(payload_.list.get());
        break;
    case Kind::Object:
        payload_.object->retainRef();
        break;
    default:
        break;
    }
}

inline void Value::release() noexcept {
    switch (tag_.kind) {
    case Kind::Text:
        if (payload_.text->releaseRef()) delete payload_.text;
        break;
    case Kind::Node:
        std::destroy_at(&payload_.node);
        break;
    case Kind::List:
        std::destroy_at(&payload_.list);
        break;
    case Kind::Object:
        if (payload_.object->releaseRef()) delete payload_.object;
        break;
    default:
        break;
    }
}

} // namespace morvane
