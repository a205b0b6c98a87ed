#include "ListsFixture.h"

#include <morvane/sys/Queue.h>
#include <morvane/ui/core/Window.h>

#include <algorithm>
#include <cmath>

namespace morvane::test {

void configure(UITbl& list, const ListConfig& c) {
    list.cfg(c.image, c.header, c.body, c.price, c.sort, c.sortBy, c.ascending, c.cellHeight, c.numOfCol,
             c.checkBox, c.select, c.incKey);
}

int linesWith(const sys::Log::Capture& log, std::string_view text) {
    const auto lines = log.texts();
    return int(std::count_if(lines.begin(), lines.end(), [text](const std::string& line) {
        return line.find(text) != std::string::npos;
    }));
}

void ListsFixture::SetUp() {
    enterSandbox("lists");
    host = std::make_unique<ui::HeadlessHost>();
    list = std::make_shared<UITbl>(gfx::Rect(0, 0, 390, 844));
    host->root()->addSubview(list);
    host->runUntilIdle();
}

void ListsFixture::TearDown() {
    list.reset();
    sys::Queue::waitIdle();
    host.reset();
    leaveSandbox();
}

std::vector<std::string> keysOf(const List& rows) {
    std::vector<std::string> out;
    for (const Value& row : rows) {
        const NodePtr& node = row.node();
        out.push_back(node && node->get("key").isText() ? node->get("key").textOr() : "-");
    }
    return out;
}

std::shared_ptr<UITblCell> ListsFixture::cellAt(int row) const {
    auto cell = std::dynamic_pointer_cast<UITblCell>(list->tbl()->cellForRow(ui::IndexPath::forRow(row)));
    EXPECT_TRUE(cell) << "no cell on screen for row " << row;
    return cell;
}

gfx::Point ListsFixture::rowCentre(int row) const {
    const auto& table = list->tbl();
    return table->convertRectTo(table->rectForRow(ui::IndexPath::forRow(row)), nullptr).center();
}

void ListsFixture::tapOn(const ui::View& view) const {
    host->tap(view.convertRectTo(view.bounds(), nullptr).center());
}

} // namespace morvane::test
