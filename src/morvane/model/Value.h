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
#include <variant>

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

    Value() = default; // absent
    Value(double number) : data_(Number{number, false}) {}
    Value(int number) : data_(Number{static_cast<double>(number), false}) {}
    Value(long number) : data_(Number{static_cast<double>(number), false}) {}
    Value(long long number) : data_(Number{static_cast<double>(number), false}) {}
    Value(unsigned number) : data_(Number{static_cast<double>(number), false}) {}
    Value(unsigned long number) : data_(Number{static_cast<double>(number), false}) {}
    Value(unsigned long long number) : data_(Number{static_cast<double>(number), false}) {}
    Value(bool flag) : data_(Number{flag ? 1.0 : 0.0, true}) {}
    Value(std::string text) : data_(TextBox(std::move(text))) {}
    Value(std::string_view text) : data_(TextBox(std::string(text))) {}
    Value(const char* text) : data_(TextBox(std::string(text ? text : ""))) {}
    Value(NodePtr node);
    Value(ListPtr list);
    Value(std::shared_ptr<Object> object);
    // A Value holding a raw pointer would silently become a flag; refuse it.
    Value(const void*) = delete;

    static Value null() {
        Value v;
        v.data_ = Null{};
        return v;
    }
    template <typename T> static Value object(T value) {
        return Value(std::shared_ptr<Object>(std::make_shared<Boxed<T>>(std::move(value))));
    }

    Kind kind() const { return static_cast<Kind>(data_.index()); }
    bool isAbsent() const { return kind() == Kind::Absent; }
    bool isNull() const { return kind() == Kind::Null; }
    bool isNumber() const { return kind() == Kind::Number; }
    bool isBool() const { return isNumber() && std::get<Number>(data_).fromBool; }
    bool isText() const { return kind() == Kind::Text; }
    bool isNode() const { return kind() == Kind::Node; }
    bool isList() const { return kind() == Kind::List; }
    bool isObject() const { return kind() == Kind::Object; }
    // True for everything but the absent value.
    explicit operator bool() const { return !isAbsent(); }

    // The number, or 0 when this is not a number.
    double number() const { return isNumber() ? std::get<Number>(data_).value : 0.0; }
    bool boolean() const { return number() != 0.0; }
    // The text, or nullptr when this is not a text.
    const std::string* text() const {
        const auto* box = std::get_if<TextBox>(&data_);
        return box ? &box->get() : nullptr;
    }
    // The text, or "" when this is not a text.
    const std::string& textOr() const {
        const auto* box = std::get_if<TextBox>(&data_);
        return box ? box->get() : kNoText;
    }
    // The Node or list, or nullptr. (Inline: the tree walks ask every value.)
    const NodePtr& node() const {
        const auto* n = std::get_if<NodePtr>(&data_);
        return n ? *n : kNoNode;
    }
    const ListPtr& list() const {
        const auto* l = std::get_if<ListPtr>(&data_);
        return l ? *l : kNoList;
    }
    const std::shared_ptr<Object>& objectPtr() const {
        const auto* o = std::get_if<std::shared_ptr<Object>>(&data_);
        return o ? *o : kNoObject;
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
    struct Null {
        bool operator==(const Null&) const = default;
    };
    struct Number {
        double value;
        bool fromBool;
    };
    // A text lives on the heap so that a Value stays three words long: most
    // values of a tree are numbers, Nodes and lists, and walks and memory
    // pay for every byte of every value.
    class TextBox {
      public:
        explicit TextBox(std::string text) : text_(new std::string(std::move(text))) {}
        TextBox(const TextBox& other) : text_(new std::string(other.get())) {}
        TextBox(TextBox&& other) noexcept : text_(std::exchange(other.text_, nullptr)) {}
        TextBox& operator=(const TextBox& other) {
            if (this != &other) *this = TextBox(other);
            return *this;
        }
        TextBox& operator=(TextBox&& other) noexcept {
            std::swap(text_, other.text_);
            return *this;
        }
        ~TextBox() { delete text_; }
        // A moved-from box reads as the empty text.
        const std::string& get() const { return text_ ? *text_ : kNoText; }

      private:
        std::string* text_;
    };

    static inline const std::string kNoText;
    static inline const NodePtr kNoNode;
    static inline const ListPtr kNoList;
    static inline const std::shared_ptr<Object> kNoObject;

    std::variant<std::monostate, Null, Number, TextBox, NodePtr, ListPtr, std::shared_ptr<Object>> data_;
};

} // namespace morvane
