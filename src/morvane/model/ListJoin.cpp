// Record lists scanned from the first record to the last: finding, removing
// by contained text, and joining chosen fields into the compact choice text
// ("label:value,label:value") that price lists use.

#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/model/detail/Records.h>
#include <morvane/model/detail/Text.h>

namespace morvane {

using detail::fieldOf;
using detail::holdsText;

namespace {

// A field's contribution to a joined entry: texts as they stand, numbers in
// decimal; absent fields, Nodes and lists contribute nothing.
bool joinPart(const Value& value, std::string& part) {
    if (value.isText() || value.isNumber()) {
        part = value.toText();
        return true;
    }
    return false;
}

// "%@:%@" over the listed fields of one record.
std::string recordEntry(const Value& record, const ListPtr& fields) {
    std::string entry;
    if (!fields) return entry;
    std::string part;
    for (const Value& field : *fields) {
        if (!joinPart(fieldOf(record, field.toText()), part)) continue;
        if (entry.empty()) {
            entry = part;
        } else {
            entry += ':';
            entry += part;
        }
    }
    return entry;
}

// "%@,%@": an empty result takes the entry as it is.
void joinEntry(std::string& result, const std::string& entry) {
    if (result.empty()) {
        result = entry;
    } else {
        result += ',';
        result += entry;
    }
}

} // namespace

bool List::dataExist(std::string_view f, std::string_view v) const {
    return findData(f, v) != nullptr;
}

NodePtr List::findData(std::string_view f, std::string_view v) const {
    for (const Value& element : items_)
        if (holdsText(element, f, v)) return element.node();
    return nullptr;
}

NodePtr List::find(const NodePtr& t, const ListPtr& fields) const {
    static const Node empty;
    const Node& target = t ? *t : empty;
    for (const Value& element : items_) {
        const NodePtr& record = element.node();
        if (!record) continue;
        bool agrees = true;
        if (fields)
            for (const Value& field : *fields) {
                const std::string name = field.toText();
                if (!(record->get(name) == target.get(name))) {
                    agrees = false;
                    break;
                }
            }
        if (agrees) return record;
    }
    return nullptr;
}

void List::removeFlds(std::string_view f, std::string_view text) {
    if (readOnly_) return;
    for (std::size_t i = items_.size(); i-- > 0;) {
        const std::string* value = fieldOf(items_[i], f).text();
        if (value && detail::containsText(*value, text))
            items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(i));
    }
}

std::string List::combineTextWith(const Value&, std::string_view f) const {
    std::string result;
    std::string part;
    for (const Value& element : items_) {
        if (!joinPart(fieldOf(element, f), part) || part.empty()) continue;
        joinEntry(result, part);
    }
    return result;
}

std::string List::combineTextWith(const Value&, const ListPtr& fields) const {
    std::string result;
    for (const Value& element : items_)
        joinEntry(result, recordEntry(element, fields));
    return result;
}

std::string List::combineTextWith(const Value&, std::string_view k, std::string_view w,
                                  const ListPtr& fields) const {
    std::string result;
    for (const Value& element : items_)
        if (holdsText(element, k, w)) joinEntry(result, recordEntry(element, fields));
    return result;
}

ListPtr List::getAlreadyUsed(std::string_view f) const {
    ListPtr labels = List::make();
    for (const Value& element : items_) {
        const std::string* text = fieldOf(element, f).text();
        if (!text) continue;
        for (std::string_view entry : detail::splitText(*text, ",")) {
            if (entry.empty()) continue;
            labels->push(Value(entry.substr(0, entry.find(':'))));
        }
    }
    return labels;
}

} // namespace morvane
