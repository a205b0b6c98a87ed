#pragma once
// The operations that morvane-tree can run: one table row per NodeTree
// operation, naming it in selector form and in C++, saying which host runs it,
// what its arguments are and what it changes in place.

#include <morvane/model/Value.h>

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace morvane::tree {

enum class Host { Node, List, None };

// What an operation changes in place, so the tool can print it afterwards.
enum class Changes { Nothing, Receiver, FirstArgument };

// The arguments of one call, already converted by the parameter letters:
// t text, b flag (true/false), l list (JSON), n Node (JSON), v any value
// (JSON, or else the argument taken as a text).
struct Call {
    Value receiver;
    std::vector<Value> args;
    std::vector<std::string> texts; // the arguments as given

    const std::string& text(std::size_t i) const { return texts[i]; }
    bool flag(std::size_t i) const { return args[i].boolean(); }
    const ListPtr& list(std::size_t i) const { return args[i].list(); }
    const NodePtr& node(std::size_t i) const { return args[i].node(); }
    const Value& value(std::size_t i) const { return args[i]; }
    const NodePtr& receiverNode() const { return receiver.node(); }
    const ListPtr& receiverList() const { return receiver.list(); }
};

struct Operation {
    std::string_view selector; // "searchDict:exact:"
    std::string_view cppName;  // "searchDict"
    Host host;
    std::string_view params; // one letter per argument, see Call
    Changes changes;
    std::function<Value(Call&)> run;
};

// Every operation, grouped by theme.
std::span<const Operation> operations();

// Converts one command-line argument by its parameter letter; false with a
// message when it does not fit.
bool convertArgument(char param, const std::string& text, Value& out, std::string& error);

} // namespace morvane::tree
