// Pulling: values looked up by exact key anywhere in a tree, and template
// Nodes filled from them, so a component can be handed a flat record built
// from a deep tree.

#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/model/detail/Text.h>
#include <morvane/model/detail/Walk.h>

#include <vector>

namespace morvane {

namespace {

// A Node's own entry under `key` before anything nested in it.
const Value* pullFrom(const Node* root, const List* rootList, std::string_view key) {
    std::vector<detail::Level> stack;
    auto enter = [&](const Node& node) -> const Value* {
        if (const Value& own = node.get(key); !own.isAbsent()) return &own;
        stack.push_back(detail::levelOf(node));
        return nullptr;
    };
    if (root) {
        if (const Value* found = enter(*root)) return found;
    } else {
        stack.push_back(detail::levelOf(*rootList));
    }
    while (!stack.empty()) {
        std::string_view entryKey;
        const Value* value = detail::stepToContainer(stack.back(), entryKey);
        if (!value) {
            stack.pop_back();
        } else if (const NodePtr& nested = value->node()) {
            if (const Value* found = enter(*nested)) return found;
        } else if (detail::isListOfContainers(*value)) {
            stack.push_back(detail::levelOf(*value->list()));
        }
    }
    return nullptr;
}

const Value* pullFromNode(const Node& node, std::string_view key) {
    return pullFrom(&node, nullptr, key);
}

// The pulled texts of `keys` joined by `gap`; values that are not texts
// count as not found. pullTxt puts the gap down only after a non-empty text
// so far; the template's key lists put it between every two found texts.
enum class Gap { AfterNonEmptyText, BetweenFoundTexts };

std::string joinPulled(const Node& source, const List& keys, std::string_view gap, Gap rule) {
    std::string out;
    bool foundBefore = false;
    for (const Value& key : keys) {
        const std::string* name = key.text();
        if (!name) continue;
        const Value* found = pullFromNode(source, *name);
        const std::string* text = found ? found->text() : nullptr;
        if (!text) continue;
        if (rule == Gap::AfterNonEmptyText ? !out.empty() : foundBefore) out += gap;
        out += *text;
        foundBefore = true;
    }
    return out;
}

} // namespace

Value Node::peek(const ListPtr& keys) const {
    if (!keys || keys->empty()) return Value(self());
    const Node* current = this;
    const Value* reached = nullptr;
    for (const Value& key : *keys) {
        if (!current) return {}; // stepped through something that is not a Node
        reached = &current->get(key.toText());
        if (reached->isAbsent()) return {};
        current = reached->node().get();
    }
    return *reached;
}

Value Node::pullDict(std::string_view k) const {
    const Value* found = pullFromNode(*this, k);
    return found ? *found : Value();
}

Value Node::pullArray(const ListPtr& list, std::string_view k) const {
    if (!list) return {};
    const Value* found = pullFrom(nullptr, list.get(), k);
    return found ? *found : Value();
}

std::string Node::pullTxt(const ListPtr& keys, std::string_view gap) const {
    return keys ? joinPulled(*this, *keys, gap, Gap::AfterNonEmptyText) : std::string();
}

void Node::pullIt(const NodePtr& templ, std::string_view gap) const {
    if (!templ) return;
    // A snapshot of the keys: the template changes while it is walked.
    for (const std::string& key : templ->keys()) {
        const Value wanted = templ->get(key);
        if (const std::string* name = wanted.text()) {
            if (name->find(':') == std::string::npos) {
                const Value* found = pullFromNode(*this, *name);
                if (!found || found->isNull())
                    templ->remove(key);
                else
                    templ->set(key, *found);
                continue;
            }
            // A path "hotel:address:city": each Node found becomes the scope
            // of the next part; a text found is stored; a miss removes the
            // entry and the next part is looked up in the same scope.
            const Node* scope = this;
            NodePtr scopeHolder; // keeps a scope alive if the template drops it
            for (std::string_view part : detail::splitText(*name, ":")) {
                const Value* found = pullFromNode(*scope, part);
                if (!found || found->isNull()) {
                    templ->remove(key);
                } else if (const NodePtr& nested = found->node()) {
                    scopeHolder = nested;
                    scope = scopeHolder.get();
                } else if (found->isText()) {
                    templ->set(key, *found);
                }
            }
        } else if (const ListPtr& keys = wanted.list()) {
            templ->set(key, Value(joinPulled(*this, *keys, gap, Gap::BetweenFoundTexts)));
        }
    }
}

} // namespace morvane
