// morvane-tree: the kit's NodeTree operations from the shell, the way
// applications prepare the trees they hand to components.
//
//   morvane-tree check [--lenient] FILE
//   morvane-tree [--read-only] [--lenient] [--pretty] OPERATION ARG... < FILE
//
// The tree on standard input is the receiver: a JSON object for the Node
// operations, an array for the list operations. The result is printed as one
// JSON text (null for nothing); an operation that changes a tree in place
// prints that tree on a second line.

#include "Operations.h"

#include <morvane/model/Json.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

using namespace morvane;
using morvane::tree::Changes;
using morvane::tree::Host;
using morvane::tree::Operation;

namespace {

constexpr int kInvalid = 1; // invalid JSON, on input or in a check
constexpr int kUsage = 2;   // the command line itself is wrong

std::string paramNames(std::string_view params) {
    std::string out;
    for (char param : params) {
        out += ' ';
        switch (param) {
        case 't':
            out += "TEXT";
            break;
        case 'b':
            out += "FLAG";
            break;
        case 'l':
            out += "LIST";
            break;
        case 'n':
            out += "NODE";
            break;
        default:
            out += "VALUE";
        }
    }
    return out;
}

void printHelp() {
    std::printf("usage: morvane-tree check [--lenient] FILE\n"
                "       morvane-tree [--read-only] [--lenient] [--pretty] OPERATION ARG... < FILE\n"
                "\n"
                "check      exit 0 when FILE is valid JSON (--lenient: a comma may follow the last\n"
                "           member or element), else 1 with a one-line error.\n"
                "OPERATION  run on the tree read from standard input; print the result as JSON\n"
                "           (null for nothing) and, for an operation that changes a tree in place,\n"
                "           the changed tree on a second line. Name it in selector form\n"
                "           (searchDict:exact:) or by its C++ name (searchDict).\n"
                "ARG        TEXT as it stands; FLAG true or false; LIST and NODE as JSON;\n"
                "           VALUE as JSON when it reads as JSON, else as a text.\n"
                "--read-only  read the input into read-only Nodes and lists\n"
                "--lenient    accept a comma after the last member or element of the input\n"
                "--pretty     print indented JSON\n");
    const struct {
        Host host;
        const char* title;
    } groups[] = {{Host::Node, "Node operations (a JSON object on standard input)"},
                  {Host::List, "List operations (a JSON array on standard input)"},
                  {Host::None, "Booking samples (standard input not read)"}};
    for (const auto& group : groups) {
        std::printf("\n%s:\n", group.title);
        for (const Operation& op : tree::operations()) {
            if (op.host != group.host) continue;
            const std::string line = std::string(op.selector) + paramNames(op.params);
            std::printf("  %-52s %.*s%s\n", line.c_str(), static_cast<int>(op.cppName.size()),
                        op.cppName.data(), op.changes == Changes::Nothing ? "" : "  (changes in place)");
        }
    }
}

bool readAll(std::istream& in, std::string& out) {
    std::ostringstream buffer;
    buffer << in.rdbuf();
    out = buffer.str();
    return !in.bad();
}

int check(const std::vector<std::string>& args) {
    json::ReadOptions options;
    std::string path;
    for (const std::string& arg : args) {
        if (arg == "--lenient")
            options.syntax = json::Syntax::Lenient;
        else if (path.empty())
            path = arg;
        else {
            std::fprintf(stderr, "morvane-tree: check takes one FILE\n");
            return kUsage;
        }
    }
    if (path.empty()) {
        std::fprintf(stderr, "usage: morvane-tree check [--lenient] FILE\n");
        return kUsage;
    }
    std::ifstream file(path, std::ios::binary);
    std::string text;
    if (!file || !readAll(file, text)) {
        std::printf("%s: cannot be read\n", path.c_str());
        return kInvalid;
    }
    auto result = json::read(text, options);
    if (!result) {
        std::printf("%s: %s\n", path.c_str(), result.error->describe().c_str());
        return kInvalid;
    }
    return 0;
}

int countStructured(std::string_view params) {
    return static_cast<int>(
        std::count_if(params.begin(), params.end(), [](char p) { return p == 'l' || p == 'n'; }));
}

} // namespace

int main(int argc, char** argv) {
    std::vector<std::string> args(argv + 1, argv + argc);
    if (args.empty()) {
        printHelp();
        return kUsage;
    }
    if (args[0] == "--help" || args[0] == "-h") {
        printHelp();
        return 0;
    }
    if (args[0] == "check") return check({args.begin() + 1, args.end()});

    // Options come before the operation: a text argument may well begin with "--".
    json::ReadOptions inputOptions;
    json::Layout layout = json::Layout::Compact;
    std::size_t next = 0;
    for (; next < args.size() && args[next].rfind("--", 0) == 0; ++next) {
        if (args[next] == "--read-only")
            inputOptions.containers = json::Containers::ReadOnly;
        else if (args[next] == "--lenient")
            inputOptions.syntax = json::Syntax::Lenient;
        else if (args[next] == "--pretty")
            layout = json::Layout::Pretty;
        else {
            std::fprintf(stderr, "morvane-tree: unknown option %s (see --help)\n", args[next].c_str());
            return kUsage;
        }
    }
    if (next == args.size()) {
        std::fprintf(stderr, "morvane-tree: no operation given (see --help)\n");
        return kUsage;
    }
    const std::string name = args[next];
    const std::vector<std::string> opArgs(args.begin() + static_cast<std::ptrdiff_t>(next) + 1, args.end());

    std::vector<const Operation*> named;
    for (const Operation& op : tree::operations())
        if (op.selector == name || op.cppName == name) named.push_back(&op);
    if (named.empty()) {
        std::fprintf(stderr, "morvane-tree: unknown operation %s (see --help)\n", name.c_str());
        return kUsage;
    }

    // The receiver decides between the Node and the list operation of one name.
    Value receiver;
    const bool needsInput =
        std::any_of(named.begin(), named.end(), [](auto* op) { return op->host != Host::None; });
    if (needsInput) {
        std::string text;
        readAll(std::cin, text);
        auto result = json::read(text, inputOptions);
        if (!result) {
            std::fprintf(stderr, "morvane-tree: input: %s\n", result.error->describe().c_str());
            return kInvalid;
        }
        receiver = std::move(result.value);
    }
    const Host host = receiver.isNode() ? Host::Node : receiver.isList() ? Host::List : Host::None;
    std::vector<const Operation*> candidates;
    for (const Operation* op : named)
        if (op->host == Host::None || op->host == host) candidates.push_back(op);
    if (candidates.empty()) {
        std::fprintf(stderr, "morvane-tree: %s runs on a %s; the input is %s\n", name.c_str(),
                     named.front()->host == Host::Node ? "JSON object" : "JSON array",
                     host == Host::Node   ? "an object"
                     : host == Host::List ? "an array"
                                          : "neither");
        return kInvalid;
    }
    // One C++ name can stand for several operations: take the first whose
    // arguments fit, trying those with JSON arguments first.
    std::stable_sort(candidates.begin(), candidates.end(), [](auto* a, auto* b) {
        return countStructured(a->params) > countStructured(b->params);
    });
    std::string error;
    for (const Operation* op : candidates) {
        if (op->params.size() != opArgs.size()) {
            error = std::string(op->selector) + " takes" + (op->params.empty() ? " no arguments" : ":") +
                    paramNames(op->params);
            continue;
        }
        tree::Call call{receiver, {}, opArgs};
        call.args.resize(opArgs.size());
        bool fits = true;
        for (std::size_t i = 0; fits && i < opArgs.size(); ++i)
            fits = tree::convertArgument(op->params[i], opArgs[i], call.args[i], error);
        if (!fits) continue;

        const Value result = op->run(call);
        std::printf("%s\n", json::write(result, layout).c_str());
        if (op->changes == Changes::Receiver)
            std::printf("%s\n", json::write(receiver, layout).c_str());
        else if (op->changes == Changes::FirstArgument)
            std::printf("%s\n", json::write(call.args[0], layout).c_str());
        return 0;
    }
    std::fprintf(stderr, "morvane-tree: %s: %s\n", name.c_str(), error.c_str());
    return kUsage;
}
