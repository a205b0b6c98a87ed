// Search by content: Nodes whose field is like a text (searchContent) or
// equals it (searchNodeFld); and the listing of keys like a text
// (txtLikeList, txtLikeKey).

#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/model/detail/Text.h>
#include <morvane/model/detail/Walk.h>

#include <vector>

namespace morvane {

namespace {

// ---- Content search ----------------------------------------------------------

struct ContentQuery {
    std::string_view field;
    std::string lowered;

    // The field is read as a text: a Node, list or number there is no hit.
    bool holds(const Node& node) const {
        const std::string* text = node.get(field).text();
        return text && detail::likeLowered(*text, lowered);
    }
};

// The walk shared by both searches: every nested Node, depth first, is
// tested as it is reached and then entered. `hit` tests a Node reached under
// a key ("" in a list).
template <typename Hit> NodePtr firstNested(detail::Level root, Hit hit) {
    std::vector<detail::Level> stack{root};
    while (!stack.empty()) {
        std::string_view key;
        const Value* value = detail::stepToContainer(stack.back(), key);
        if (!value) {
            stack.pop_back();
        } else if (const NodePtr& nested = value->node()) {
            if (hit(stack.back().node != nullptr, key, *nested)) return nested;
            stack.push_back(detail::levelOf(*nested));
        } else if (detail::isListOfContainers(*value)) {
            stack.push_back(detail::levelOf(*value->list()));
        }
    }
    return nullptr;
}

NodePtr contentIn(detail::Level root, const ContentQuery& query) {
    return firstNested(root, [&](bool, std::string_view, const Node& nested) { return query.holds(nested); });
}

// ---- Field search ------------------------------------------------------------

struct FieldQuery {
    std::string_view field;
    std::string_view value;

    bool holds(const Node& node) const {
        const std::string* text = node.get(field).text();
        return text && *text == value;
    }
};

NodePtr fieldIn(detail::Level root, const FieldQuery& query) {
    return firstNested(root, [&](bool underKey, std::string_view key, const Node& nested) {
        // A Node hanging under the field's name is a hit, whatever it holds.
        return (underKey && key == query.field) || query.holds(nested);
    });
}

// ---- Key listing -------------------------------------------------------------

// Text entries in entry order, nested Nodes entered where they stand.
void listLikeKeys(const Node& root, std::string_view lowered, std::vector<Value>& hits) {
    std::vector<detail::Level> stack{detail::levelOf(root)};
    while (!stack.empty()) {
        std::string_view key;
        const Value* value = detail::stepToContainer(stack.back(), key);
        if (!value) {
            stack.pop_back();
        } else if (value->isText()) {
            if (detail::likeLowered(key, lowered))
                hits.emplace_back(Node::make({{"key", Value(key)}, {"val", *value}}));
        } else if (const NodePtr& nested = value->node()) {
            stack.push_back(detail::levelOf(*nested));
        }
    }
}

std::string hitKey(const Value& hit) {
    const NodePtr& node = hit.node();
    return node ? node->get("key").toText() : std::string();
}

} // namespace

NodePtr Node::searchContent(std::string_view field, std::string_view c) const {
    const ContentQuery query{field, detail::lowercase(c)};
    if (query.holds(*this)) return self();
    return contentIn(detail::levelOf(*this), query);
}

NodePtr Node::searchArrayContent(const ListPtr& list, std::string_view field, std::string_view c) const {
    if (!list) return nullptr;
    return contentIn(detail::levelOf(*list), ContentQuery{field, detail::lowercase(c)});
}

NodePtr Node::searchNodeFld(std::string_view field, std::string_view v) const {
    const FieldQuery query{field, v};
    if (query.holds(*this)) return self();
    return fieldIn(detail::levelOf(*this), query);
}

NodePtr Node::searchNodeFldArray(const ListPtr& list, std::string_view field, std::string_view v) const {
    if (!list) return nullptr;
    return fieldIn(detail::levelOf(*list), FieldQuery{field, v});
}

ListPtr Node::txtLikeList(std::string_view t) const {
    std::vector<Value> hits;
    listLikeKeys(*this, detail::lowercase(t), hits);
    return List::make(std::move(hits));
}

ListPtr Node::sortArray(const ListPtr& hits) const {
    if (!hits || hits->size() < 2 || hits->isReadOnly()) return hits;
    auto& items = detail::TreeAccess::items(*hits);
    for (std::size_t i = 0; i + 1 < items.size(); ++i) {
        for (std::size_t j = i + 1; j < items.size(); ++j)
            if (detail::compareText(hitKey(items[j]), hitKey(items[i])) < 0) std::swap(items[i], items[j]);
    }
    return hits;
}

std::string Node::txtLikeKey(std::string_view t, const ListPtr& except) const {
    std::vector<std::string> excluded;
    if (except)
        for (const Value& text : *except)
            if (text.isText()) excluded.push_back(detail::lowercase(*text.text()));
    ListPtr hits = sortArray(txtLikeList(t));
    std::string out;
    for (const Value& hit : *hits) {
        const std::string key = hitKey(hit);
        const std::string loweredKey = detail::lowercase(key);
        bool skip = false;
        for (const std::string& word : excluded)
            if (detail::containsText(loweredKey, word)) skip = true;
        if (skip) continue;
        // Keys are "prefix-label"; a key without "-" is listed whole.
        const Value label = splitBy(key, "-");
        out += label ? *label.text() : key;
        out += ": ";
        out += hit.node()->get("val").toText();
        out += '\n';
    }
    return out;
}

Value Node::splitBy(std::string_view s, std::string_view d) const {
    const auto pieces = detail::splitText(s, d);
    if (pieces.size() < 2) return {};
    std::string result;
    for (std::size_t i = 1; i < pieces.size(); ++i) {
        if (!result.empty()) {
            result += d;
            result += pieces[i];
        } else {
            result = pieces[i];
        }
    }
    return Value(std::move(result));
}

} // namespace morvane
