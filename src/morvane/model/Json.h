#pragma once
// The JSON bridge: reads UTF-8 JSON text into a NodeTree and writes a NodeTree
// back as JSON text. Reading never throws: bad text gives an absent value and
// a ReadError that says what went wrong and where.
//
//   auto result = json::read(text);
//   if (!result) log(result.error->describe());
//   NodePtr root = result.value.node();
//   std::string compact = json::write(result.value);
//
// Decisions that JSON itself leaves open:
// - Duplicate keys in one object: the last value wins, and the key keeps the
//   position of its first occurrence.
// - Numbers are doubles. true and false become numbers 1 and 0 that remember
//   their boolean origin, so they are written back as true and false.
// - A number too large for a double (1e400) is an error, not infinity.
// - Texts must be valid UTF-8; a \u escape of a lone surrogate is an error.
// - Nesting deeper than ReadOptions::maxDepth (512 by default) is an error, so
//   that nothing the reader accepts can make a recursive walk overflow.

#include <morvane/model/Value.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace morvane::json {

enum class Syntax : std::uint8_t {
    Strict,  // RFC 8259 JSON
    Lenient, // also accepts a comma after the last member or element
};

enum class Containers : std::uint8_t {
    Mutable,  // plain Nodes and lists
    ReadOnly, // every Node and list carries the read-only flag
};

struct ReadOptions {
    Syntax syntax = Syntax::Strict;
    Containers containers = Containers::Mutable;
    // Containers may nest this deep (the root container is level 1).
    std::size_t maxDepth = 512;
};

struct ReadError {
    std::size_t offset = 0; // byte offset into the text
    std::size_t line = 1;   // 1-based
    std::size_t column = 1; // 1-based, in bytes
    std::string message;
    // One line: "line 3, column 7 (offset 42): Missing a comma ...".
    std::string describe() const;
};

struct ReadResult {
    Value value; // absent when the text could not be read
    std::optional<ReadError> error;
    explicit operator bool() const { return !error.has_value(); }
};

// Reads a complete JSON text (any value may be the root; white space around it
// is allowed, anything else after it is an error).
ReadResult read(std::string_view text, const ReadOptions& options = {});
// The root value, or the absent value when the text cannot be read.
Value parse(std::string_view text, const ReadOptions& options = {});
// The root when it is an object, else nullptr.
NodePtr parseNode(std::string_view text, const ReadOptions& options = {});

enum class Layout : std::uint8_t {
    Compact, // no white space at all
    Pretty,  // one member or element per line, indented by two blanks
};

// Writes a value as JSON. Absent values are skipped inside Nodes and written
// as null elsewhere; opaque objects and non-finite numbers are written as null;
// a Node or list that contains itself is written as null where it recurs.
// Invalid UTF-8 in texts is replaced by U+FFFD so the output is always valid.
std::string write(const Value& value, Layout layout = Layout::Compact);
// Appends to out instead of returning a new text.
void writeTo(const Value& value, std::string& out, Layout layout = Layout::Compact);

} // namespace morvane::json
