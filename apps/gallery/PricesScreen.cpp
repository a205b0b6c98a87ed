#include "PricesScreen.h"

#include "Style.h"

#include <morvane/model/Json.h>
#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/sys/Log.h>
#include <morvane/sys/Queue.h>

#include <sstream>
#include <vector>

namespace gallery {

using namespace morvane;

namespace {

using Keys = std::vector<std::string>;

struct Entry {
    std::string name, price;
};

// The entries of a record's "list": "name:price" pieces between commas.
std::vector<Entry> entriesOf(const NodePtr& record) {
    std::vector<Entry> out;
    const std::string* list = record ? record->get("list").text() : nullptr;
    if (!list) return out;
    std::stringstream pieces(*list);
    for (std::string piece; std::getline(pieces, piece, ',');) {
        if (piece.empty()) continue;
        const auto colon = piece.find(':');
        out.push_back({piece.substr(0, colon), colon == std::string::npos ? "" : piece.substr(colon + 1)});
    }
    return out;
}

void setEntries(const NodePtr& record, const std::vector<Entry>& entries) {
    std::string list;
    for (const Entry& entry : entries)
        list += (list.empty() ? "" : ",") + entry.name + ":" + entry.price;
    record->set("list", Value(list));
}

} // namespace

PricesScreen::PricesScreen(const gfx::Rect& frame, const std::string& text)
    : TitledScreen(frame, "Menu prices", "Tap a dish to change it") {
    // One record a line, read leniently: the kitchen's records end their
    // members with a comma.
    records_ = List::make();
    std::stringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.find_first_not_of(" \t\r") == std::string::npos) continue;
        const NodePtr record = json::parseNode(line, {.syntax = json::Syntax::Lenient});
        if (record)
            records_->push(record);
        else
            sys::Log::platform("Menu prices: a record that does not read: " + line);
    }
    list_ = std::make_shared<UITbl>();
    list_->setBackgroundColor(style::kList);
    list_->cfg({.header = [](Keys& keys) { keys = {"name"}; },
                .body = [](Keys& keys) { keys = {"group"}; },
                .price = [](Keys& keys) { keys = {"price"}; },
                .sort = [](bool& sort) { sort = false; },
                .cellHeight = [](float& lines) { lines = 3; }});
    addSubview(list_);
    editor_ = NItemPrice::initWithData("Dish and price", "Dish", "Price (EUR)");
    editor_->setHidden(true);
    addSubview(editor_);
    showList();
}

std::shared_ptr<PricesScreen> PricesScreen::make(const gfx::Rect& frame, const std::string& records,
                                                 Back back) {
    auto screen = std::make_shared<PricesScreen>(frame, records);
    screen->wire(std::move(back));
    return screen;
}

void PricesScreen::wire(Back back) {
    watchBack(std::move(back));
    std::weak_ptr<PricesScreen> weak = std::static_pointer_cast<PricesScreen>(shared_from_this());
    list_->watchTbl("prices",
                    [weak](const Value& key, const NodePtr&) {
                        if (auto self = weak.lock()) self->edit(std::stoi(key.toText()));
                    },
                    {}, {});
    auto report = [weak](std::string what, bool remove, bool add) {
        return [weak, what, remove, add](int tag, const std::string& item, const std::string& price,
                                         const std::string&) {
            auto self = weak.lock();
            if (!self) return;
            self->store(add ? -1 - tag : tag, item, price, remove);
            self->status()->setText(what + " " + item + (remove ? "" : " at " + price));
        };
    };
    editor_->watchAction(0, report("Saved", false, false), report("Added", false, true),
                         report("Removed", true, false), [weak](bool) {
                             if (auto self = weak.lock()) self->status()->setText("Left as it was");
                         });
}

void PricesScreen::showList() {
    list_->clear();
    int index = 0;
    for (const Value& value : *records_) {
        const NodePtr& record = value.node();
        const std::string group = record->get("title").toText();
        for (const Entry& entry : entriesOf(record))
            list_->adData(Node::make({{"key", std::to_string(index++)},
                                      {"name", entry.name},
                                      {"group", group},
                                      {"price", entry.price + " EUR"}}));
    }
    list_->refresh();
}

void PricesScreen::edit(int index) {
    int at = 0;
    for (const Value& value : *records_)
        for (const Entry& entry : entriesOf(value.node())) {
            if (at++ != index) continue;
            editor_->setTag(index);
            editor_->setTop(entry.name);
            editor_->setBottom(entry.price);
            editor_->setSelection("yes");
            // Only names the dish does not have already are refused.
            editor_->addUsedList(records_->getAlreadyUsed("list"));
            editor_->setHidden(false);
            bringSubviewToFront(editor_.get());
            status()->setText("Editing " + entry.name);
            return;
        }
}

void PricesScreen::store(int index, const std::string& item, const std::string& price, bool remove) {
    // A negative index asks for a new entry after the one at -1 - index.
    const bool add = index < 0;
    const int wanted = add ? -1 - index : index;
    int at = 0;
    for (const Value& value : *records_) {
        std::vector<Entry> entries = entriesOf(value.node());
        for (std::size_t i = 0; i < entries.size(); ++i, ++at) {
            if (at != wanted) continue;
            if (add)
                entries.insert(entries.begin() + std::ptrdiff_t(i) + 1, {item, price});
            else if (remove)
                entries.erase(entries.begin() + std::ptrdiff_t(i));
            else
                entries[i] = {item, price};
            setEntries(value.node(), entries);
            showList();
            return;
        }
    }
}

std::string PricesScreen::priceOf(const std::string& dish) const {
    for (const Value& value : *records_)
        for (const Entry& entry : entriesOf(value.node()))
            if (entry.name == dish) return entry.price;
    return {};
}

void PricesScreen::layoutSubviews() {
    const gfx::Rect area = placeFrame();
    list_->setFrame(area);
    editor_->setFrame({20, area.y + 40, area.width - 40, 300});
}

} // namespace gallery
