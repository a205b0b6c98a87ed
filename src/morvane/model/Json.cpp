#include <morvane/model/Json.h>
#include <morvane/model/List.h>
#include <morvane/model/Node.h>

#include <rapidjson/error/en.h>
#include <rapidjson/reader.h>
#include <simdjson.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <unordered_set>
#include <vector>

namespace morvane::json {

// ---- Reading ---------------------------------------------------------------
//
// Two readers, chosen by measurement. simdjson reads valid strict text about
// twice as fast as RapidJSON (bench/json-parsers), so it goes first. It cannot
// say where an error is and has no lenient mode, so RapidJSON reads lenient
// text and any text that simdjson refuses: it either finds the error with its
// position or accepts what simdjson could not hold (integers beyond 64 bits).
// RapidJSON's SAX events feed a builder that keeps the values of the open
// containers on one flat stack; a container is built only when it closes, so
// its entries are allocated once at their exact size.

namespace {

class TreeBuilder {
  public:
    TreeBuilder(std::size_t maxDepth, bool readOnly) : maxDepth_(maxDepth), readOnly_(readOnly) {
        values_.reserve(64);
        keys_.reserve(64);
    }

    bool Null() { return add(Value::null()); }
    bool Bool(bool b) { return add(Value(b)); }
    bool Int(int i) { return add(Value(i)); }
    bool Uint(unsigned u) { return add(Value(u)); }
    bool Int64(std::int64_t i) { return add(Value(static_cast<long long>(i))); }
    bool Uint64(std::uint64_t u) { return add(Value(static_cast<unsigned long long>(u))); }
    bool Double(double d) { return add(Value(d)); }
    bool RawNumber(const char*, rapidjson::SizeType, bool) { return false; } // not requested
    bool String(const char* text, rapidjson::SizeType length, bool) {
        if (!validText(text, length)) return false;
        return add(Value(std::string(text, length)));
    }
    bool Key(const char* text, rapidjson::SizeType length, bool) {
        if (!validText(text, length)) return false;
        keys_.emplace_back(text, length);
        return true;
    }
    bool StartObject() { return open(); }
    bool StartArray() { return open(); }

    bool EndObject(rapidjson::SizeType count) {
        const std::size_t keyStart = keys_.size() - count;
        const std::size_t valueStart = values_.size() - count;
        NodePtr node = Node::make();
        node->reserve(count);
        for (std::size_t i = 0; i < count; ++i) {
            std::string& key = keys_[keyStart + i];
            Value& value = values_[valueStart + i];
            // Duplicate keys: the last value wins where the key first stood.
            if (node->has(key))
                node->set(key, std::move(value));
            else
                node->appendUnchecked(std::move(key), std::move(value));
        }
        node->setReadOnly(readOnly_);
        keys_.resize(keyStart);
        values_.resize(valueStart);
        --depth_;
        return add(Value(std::move(node)));
    }

    bool EndArray(rapidjson::SizeType count) {
        const std::size_t start = values_.size() - count;
        ListPtr list = List::withCapacity(count);
        for (std::size_t i = start; i < values_.size(); ++i)
            list->push(std::move(values_[i]));
        values_.resize(start);
        list->setReadOnly(readOnly_);
        --depth_;
        return add(Value(std::move(list)));
    }

    Value takeRoot() { return values_.empty() ? Value() : std::move(values_.back()); }
    // Why the builder stopped the reader, when it did.
    const std::string& stopReason() const { return stopReason_; }

  private:
    bool add(Value value) {
        values_.push_back(std::move(value));
        return true;
    }

    bool open() {
        if (++depth_ > maxDepth_) {
            stopReason_ = "Nesting deeper than " + std::to_string(maxDepth_) + " levels.";
            return false;
        }
        return true;
    }

    // The reader validates UTF-8 but lets a \u escape of a lone low surrogate
    // through as the three bytes ED B0..BF; such text is not valid UTF-8.
    bool validText(const char* text, std::size_t length) {
        const char* end = text + length;
        for (const char* p = text; (p = static_cast<const char*>(std::memchr(p, 0xED, end - p))) != nullptr;
             ++p) {
            if (p + 1 < end && static_cast<unsigned char>(p[1]) >= 0xA0) {
                stopReason_ = "Invalid surrogate in a \\u escape.";
                return false;
            }
        }
        return true;
    }

    std::vector<Value> values_;
    std::vector<std::string> keys_;
    std::size_t depth_ = 0;
    std::size_t maxDepth_;
    bool readOnly_;
    std::string stopReason_;
};

// Insitu: strings are decoded inside our own copy of the text, so the reader
// never copies them to a side buffer. Iterative: the reader's own call depth
// stays constant whatever the nesting.
constexpr unsigned kBaseFlags = rapidjson::kParseInsituFlag | rapidjson::kParseValidateEncodingFlag |
                                rapidjson::kParseFullPrecisionFlag | rapidjson::kParseIterativeFlag;

// The fast path converts recursively, so it only takes depths that are safe
// for that; deeper limits go to the iterative reader.
constexpr std::size_t kFastPathMaxDepth = 1024;
// A parser's buffers grow to about ten times the largest text it has read;
// one that grew beyond this is released after use instead of kept.
constexpr std::size_t kKeptParserCapacity = 64 * 1024;

class FastConverter {
  public:
    explicit FastConverter(bool readOnly) : readOnly_(readOnly) {}

    Value convert(simdjson::dom::element element) const {
        using simdjson::dom::element_type;
        switch (element.type()) {
        case element_type::OBJECT: {
            const auto object = element.get_object().value_unsafe();
            NodePtr node = Node::make();
            node->reserve(object.size());
            for (const auto field : object) {
                if (node->has(field.key)) // duplicate: last value, first position
                    node->set(field.key, convert(field.value));
                else
                    node->appendUnchecked(std::string(field.key), convert(field.value));
            }
            node->setReadOnly(readOnly_);
            return Value(std::move(node));
        }
        case element_type::ARRAY: {
            const auto array = element.get_array().value_unsafe();
            ListPtr list = List::withCapacity(array.size());
            for (const auto item : array)
                list->push(convert(item));
            list->setReadOnly(readOnly_);
            return Value(std::move(list));
        }
        case element_type::STRING:
            return Value(std::string(element.get_string().value_unsafe()));
        case element_type::INT64:
            return Value(static_cast<double>(element.get_int64().value_unsafe()));
        case element_type::UINT64:
            return Value(static_cast<double>(element.get_uint64().value_unsafe()));
        case element_type::DOUBLE:
            return Value(element.get_double().value_unsafe());
        case element_type::BOOL:
            return Value(element.get_bool().value_unsafe());
        case element_type::NULL_VALUE:
            break;
        }
        return Value::null();
    }

  private:
    bool readOnly_;
};

// The root value of valid strict text, or nothing when simdjson refuses it.
std::optional<Value> readFast(std::string_view text, const ReadOptions& options) {
    thread_local simdjson::dom::parser parser;
    // simdjson counts the document itself as one level.
    const std::size_t depth = options.maxDepth + 1;
    if (parser.max_depth() != depth && parser.allocate(text.size(), depth) != simdjson::SUCCESS) return {};
    const simdjson::padded_string padded(text);
    std::optional<Value> value;
    auto parsed = parser.parse(padded);
    if (!parsed.error())
        value = FastConverter(options.containers == Containers::ReadOnly).convert(parsed.value_unsafe());
    if (parser.capacity() > kKeptParserCapacity) parser = simdjson::dom::parser();
    return value;
}

ReadError makeError(std::string_view text, std::size_t offset, std::string message) {
    ReadError error;
    error.offset = std::min(offset, text.size());
    for (std::size_t i = 0; i < error.offset; ++i) {
        if (text[i] == '\n') {
            ++error.line;
            error.column = 1;
        } else {
            ++error.column;
        }
    }
    error.message = std::move(message);
    return error;
}

} // namespace

std::string ReadError::describe() const {
    return "line " + std::to_string(line) + ", column " + std::to_string(column) + " (offset " +
           std::to_string(offset) + "): " + message;
}

ReadResult read(std::string_view text, const ReadOptions& options) {
    if (options.syntax == Syntax::Strict && options.maxDepth < kFastPathMaxDepth) {
        if (auto value = readFast(text, options)) return ReadResult{std::move(*value), std::nullopt};
    }
    // A private, NUL-terminated copy that the reader may decode into.
    std::string buffer(text);
    rapidjson::InsituStringStream stream(buffer.data());
    TreeBuilder builder(options.maxDepth, options.containers == Containers::ReadOnly);
    rapidjson::Reader reader;
    const rapidjson::ParseResult parsed =
        options.syntax == Syntax::Lenient
            ? reader.Parse<kBaseFlags | rapidjson::kParseTrailingCommasFlag>(stream, builder)
            : reader.Parse<kBaseFlags>(stream, builder);

    ReadResult result;
    if (parsed.IsError()) {
        std::string message =
            parsed.Code() == rapidjson::kParseErrorTermination && !builder.stopReason().empty()
                ? builder.stopReason()
                : std::string(rapidjson::GetParseError_En(parsed.Code()));
        result.error = makeError(text, parsed.Offset(), std::move(message));
        return result;
    }
    // The reader stops at a NUL byte as if the text ended there.
    if (stream.Tell() != text.size()) {
        result.error = makeError(text, stream.Tell(), "Unexpected NUL byte.");
        return result;
    }
    result.value = builder.takeRoot();
    return result;
}

Value parse(std::string_view text, const ReadOptions& options) {
    return read(text, options).value;
}

NodePtr parseNode(std::string_view text, const ReadOptions& options) {
    return parse(text, options).node();
}

// ---- Writing ---------------------------------------------------------------

namespace {

constexpr char kReplacement[] = "\xEF\xBF\xBD";

// Length of the valid UTF-8 sequence starting at p, or 0 when it is not one.
std::size_t utf8SequenceLength(const unsigned char* p, const unsigned char* end) {
    const unsigned char lead = p[0];
    std::size_t length;
    unsigned char low = 0x80, high = 0xBF; // allowed range of the second byte
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        if (lead == 0xE0) low = 0xA0;  // overlong
        if (lead == 0xED) high = 0x9F; // surrogates
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        if (lead == 0xF0) low = 0x90;  // overlong
        if (lead == 0xF4) high = 0x8F; // beyond U+10FFFF
    } else {
        return 0;
    }
    if (static_cast<std::size_t>(end - p) < length) return 0;
    if (p[1] < low || p[1] > high) return 0;
    for (std::size_t i = 2; i < length; ++i)
        if ((p[i] & 0xC0) != 0x80) return 0;
    return length;
}

void writeText(std::string_view text, std::string& out) {
    static constexpr char kHex[] = "0123456789abcdef";
    out += '"';
    const auto* p = reinterpret_cast<const unsigned char*>(text.data());
    const auto* end = p + text.size();
    const auto* run = p; // start of bytes not yet copied
    auto flush = [&](const unsigned char* upTo) {
        out.append(reinterpret_cast<const char*>(run), upTo - run);
    };
    while (p < end) {
        const unsigned char c = *p;
        if (c >= 0x20 && c != '"' && c != '\\' && c < 0x80) {
            ++p;
            continue;
        }
        if (c >= 0x80) {
            const std::size_t length = utf8SequenceLength(p, end);
            if (length != 0) {
                p += length;
                continue;
            }
            flush(p);
            out += kReplacement;
            run = ++p;
            continue;
        }
        flush(p);
        switch (c) {
        case '"':
            out += "\\\"";
            break;
        case '\\':
            out += "\\\\";
            break;
        case '\n':
            out += "\\n";
            break;
        case '\r':
            out += "\\r";
            break;
        case '\t':
            out += "\\t";
            break;
        case '\b':
            out += "\\b";
            break;
        case '\f':
            out += "\\f";
            break;
        default:
            out += "\\u00";
            out += kHex[c >> 4];
            out += kHex[c & 0xF];
        }
        run = ++p;
    }
    flush(p);
    out += '"';
}

void writeNumber(const Value& value, std::string& out) {
    const double d = value.number();
    if (value.isBool()) {
        out += d != 0.0 ? "true" : "false";
        return;
    }
    if (!std::isfinite(d)) {
        out += "null";
        return;
    }
    char buffer[32];
    std::to_chars_result result;
    // Whole numbers that a double holds exactly print as integers ("3", not "3e0").
    if (d == std::trunc(d) && std::fabs(d) < 9007199254740992.0)
        result = std::to_chars(buffer, buffer + sizeof buffer, static_cast<long long>(d));
    else
        result = std::to_chars(buffer, buffer + sizeof buffer, d); // shortest form that reads back exactly
    out.append(buffer, result.ptr);
}

class Writer {
  public:
    Writer(std::string& out, Layout layout) : out_(out), pretty_(layout == Layout::Pretty) {}

    void run(const Value& root) {
        writeValue(root);
        while (!stack_.empty()) {
            Frame& frame = stack_.back();
            if (frame.node) {
                const auto& entries = frame.node->entries();
                while (frame.index < entries.size() && entries[frame.index].second.isAbsent())
                    ++frame.index;
                if (frame.index == entries.size()) {
                    close('}');
                    continue;
                }
                const auto& [key, value] = entries[frame.index++];
                separate(frame);
                writeText(key, out_);
                out_ += pretty_ ? ": " : ":";
                writeValue(value); // may push, invalidating frame
            } else {
                const List& items = *frame.list;
                if (frame.index == items.size()) {
                    close(']');
                    continue;
                }
                const Value& value = items[frame.index++];
                separate(frame);
                writeValue(value);
            }
        }
    }

  private:
    struct Frame {
        const Node* node;
        const List* list;
        std::size_t index;
        bool empty;
    };

    void separate(Frame& frame) {
        if (!frame.empty) out_ += ',';
        frame.empty = false;
        if (pretty_) newline(stack_.size());
    }

    void newline(std::size_t depth) {
        out_ += '\n';
        out_.append(depth * 2, ' ');
    }

    void close(char bracket) {
        const Frame frame = stack_.back();
        stack_.pop_back();
        if (stack_.size() >= kScanDepth)
            deepPath_.erase(frame.node ? static_cast<const void*>(frame.node) : frame.list);
        const bool empty = frame.empty;
        if (pretty_ && !empty) newline(stack_.size());
        out_ += bracket;
    }

    // Containers on the current path: the first few are scanned, deeper ones
    // are also kept in a set, so cycle checks stay cheap at any depth.
    bool onPath(const void* container) const {
        const std::size_t scanned = std::min(stack_.size(), kScanDepth);
        for (std::size_t i = 0; i < scanned; ++i)
            if (stack_[i].node == container || stack_[i].list == container) return true;
        return deepPath_.count(container) != 0;
    }

    void push(Frame frame) {
        if (stack_.size() >= kScanDepth)
            deepPath_.insert(frame.node ? static_cast<const void*>(frame.node) : frame.list);
        stack_.push_back(frame);
    }

    void writeValue(const Value& value) {
        switch (value.kind()) {
        case Value::Kind::Number:
            writeNumber(value, out_);
            return;
        case Value::Kind::Text:
            writeText(*value.text(), out_);
            return;
        case Value::Kind::Node: {
            const Node* node = value.node().get();
            if (onPath(node)) break; // a cycle: null where it recurs
            out_ += '{';
            push({node, nullptr, 0, true});
            return;
        }
        case Value::Kind::List: {
            const List* list = value.list().get();
            if (onPath(list)) break;
            out_ += '[';
            push({nullptr, list, 0, true});
            return;
        }
        case Value::Kind::Absent:
        case Value::Kind::Null:
        case Value::Kind::Object:
            break;
        }
        out_ += "null";
    }

    static constexpr std::size_t kScanDepth = 32;

    std::string& out_;
    bool pretty_;
    std::vector<Frame> stack_;
    std::unordered_set<const void*> deepPath_;
};

} // namespace

void writeTo(const Value& value, std::string& out, Layout layout) {
    Writer(out, layout).run(value);
}

std::string write(const Value& value, Layout layout) {
    std::string out;
    writeTo(value, out, layout);
    return out;
}

} // namespace morvane::json
