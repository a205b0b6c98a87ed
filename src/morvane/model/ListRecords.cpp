// Record lists: finding, counting and removing records by a field's value
// (scanning from the last record to the first), the keyed Node of a list,
// and the time stamp used to name new records.

#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/model/detail/Records.h>
#include <morvane/model/detail/Text.h>

#include <cstdio>
#include <ctime>
#include <set>

namespace morvane {

using detail::fieldOf;
using detail::holdsText;

bool List::containsObj(std::string_view f, std::string_view v) const {
    return findIdx(f, v) >= 0;
}

NodePtr List::findObj(std::string_view f, std::string_view v) const {
    const long index = findIdx(f, v);
    return index < 0 ? nullptr : items_[static_cast<std::size_t>(index)].node();
}

NodePtr List::findObjContains(std::string_view f, std::string_view v) const {
    const std::string lowered = detail::lowercase(v);
    for (std::size_t i = items_.size(); i-- > 0;) {
        const std::string* text = fieldOf(items_[i], f).text();
        if (text && detail::likeLowered(*text, lowered)) return items_[i].node();
    }
    return nullptr;
}

long List::findIdx(std::string_view f, std::string_view v) const {
    for (std::size_t i = items_.size(); i-- > 0;)
        if (holdsText(items_[i], f, v)) return static_cast<long>(i);
    return -1;
}

void List::removeObj(std::string_view f, std::string_view v) {
    if (readOnly_) return;
    items_.eraseIf([&](const Value& element) { return holdsText(element, f, v); });
}

void List::removeObj(std::string_view f, std::string_view v, std::string_view k, std::string_view w) {
    if (readOnly_) return;
    items_.eraseIf(
        [&](const Value& element) { return holdsText(element, f, v) && !holdsText(element, k, w); });
}

long List::countItem(std::string_view f) const {
    // Texts and numbers are told apart by kind and text form; Nodes and lists
    // (rare here) by content, against the ones seen so far.
    std::set<std::pair<int, std::string>> scalars;
    std::vector<const Value*> containers;
    for (const Value& element : items_) {
        const Value& value = fieldOf(element, f);
        if (value.isAbsent()) continue;
        if (value.isNode() || value.isList()) {
            bool seen = false;
            for (const Value* earlier : containers)
                if (*earlier == value) seen = true;
            if (!seen) containers.push_back(&value);
        } else if (value.isObject()) {
            containers.push_back(&value); // objects are equal only to themselves
        } else {
            const int kind = value.isText() ? 0 : value.isNull() ? 1 : 2;
            // Numbers compare by value: the shortest decimal form is exact.
            scalars.emplace(kind, value.isNumber() ? Value(value.number()).toText() : value.toText());
        }
    }
    return static_cast<long>(scalars.size() + containers.size());
}

long List::countItem(std::string_view f, std::string_view v) const {
    return containsObj(f, v) ? 1 : 0;
}

void List::copyAll(const ListPtr& list) {
    if (!list || readOnly_) return;
    // Copy first: the list may be this list.
    // Room first: the list may be this list, whose elements then stay put.
    const Values& added = list->items_;
    const std::size_t count = added.size();
    items_.reserve(items_.size() + count);
    items_.append(added.begin(), added.begin() + count);
}

namespace {
void appendUtf8(std::string& out, unsigned long codePoint) {
    if (codePoint < 0x80) {
        out += static_cast<char>(codePoint);
    } else if (codePoint < 0x800) {
        out += static_cast<char>(0xC0 | (codePoint >> 6));
        out += static_cast<char>(0x80 | (codePoint & 0x3F));
    } else if (codePoint < 0x10000) {
        out += static_cast<char>(0xE0 | (codePoint >> 12));
        out += static_cast<char>(0x80 | ((codePoint >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (codePoint & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (codePoint >> 18));
        out += static_cast<char>(0x80 | ((codePoint >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((codePoint >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (codePoint & 0x3F));
    }
}
} // namespace

NodePtr List::toDictionary(std::string_view f) const {
    NodePtr result = Node::make();
    for (std::size_t i = 0; i < items_.size(); ++i) {
        const NodePtr& record = items_[i].node();
        if (!record || !record->has(f)) continue;
        std::string key;
        // The surrogate block cannot be written in UTF-8; a list that long
        // (55,000 records) steps over it.
        unsigned long codePoint = 65 + i;
        if (codePoint >= 0xD800) codePoint += 0x800;
        appendUtf8(key, codePoint);
        char digits[24];
        std::snprintf(digits, sizeof digits, "%02lu", static_cast<unsigned long>(i));
        key += digits;
        key += '-';
        key += splitString(record->get(f).toText(), "-");
        NodePtr copy = record->shallowCopy();
        copy->remove(f);
        result->set(key, Value(std::move(copy)));
    }
    return result;
}

std::string List::splitString(std::string_view text, std::string_view separator) const {
    const auto pieces = detail::splitText(text, separator);
    if (pieces.size() < 2) return std::string(text);
    std::string result;
    for (std::size_t i = 1; i < pieces.size(); ++i) {
        if (!result.empty()) {
            result += separator;
            result += pieces[i];
        } else {
            result = pieces[i];
        }
    }
    return result;
}

std::string List::getDate() const {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    char text[16];
    std::snprintf(text, sizeof text, "%02d%02d%03d", local.tm_hour, local.tm_min, local.tm_sec);
    return text;
}

} // namespace morvane
