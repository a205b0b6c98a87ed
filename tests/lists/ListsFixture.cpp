#include "ListsFixture.h"

#include <morvane/gfx/ImageContext.h>
#include <morvane/media/ResourcePictures.h>
#include <morvane/media/ZBImageModel.h>
#include <morvane/sys/App.h>
#include <morvane/sys/Clock.h>
#include <morvane/sys/Queue.h>
#include <morvane/sys/RunLoop.h>
#include <morvane/ui/Window.h>

#include <fstream>
#include <unistd.h>

namespace morvane::test {

namespace fs = std::filesystem;

void configure(UITbl& list, const ListConfig& c) {
    list.cfg(c.image, c.header, c.body, c.price, c.sort, c.sortBy, c.ascending, c.cellHeight, c.numOfCol,
             c.checkBox, c.select, c.incKey);
}

void ListsFixture::SetUp() {
    const auto* info = testing::UnitTest::GetInstance()->current_test_info();
    root = fs::temp_directory_path() /
           ("morvane-lists-" + std::to_string(getpid()) + "-" + info->test_suite_name() + "-" + info->name());
    fs::remove_all(root);
    documents = root / "Documents";
    resources = root / "Resources";
    fs::create_directories(documents);
    fs::create_directories(resources);
    sys::App::setDocumentsFolder(documents);
    sys::App::setResourceFolder(resources);
    ResourcePictures::clearCache();
    ZBImageModel::clearMemoryCache();

    host = std::make_unique<ui::HeadlessHost>();
    list = std::make_shared<UITbl>(gfx::Rect(0, 0, 390, 844));
    host->root()->addSubview(list);
    host->runUntilIdle();
}

void ListsFixture::TearDown() {
    list.reset();
    sys::Queue::waitIdle();
    host.reset();
    sys::RunLoop::main().discardPending();
    sys::Clock::useReal();
    sys::App::setDocumentsFolder({});
    sys::App::setResourceFolder({});
    std::error_code ignored;
    fs::remove_all(root, ignored);
}

std::vector<std::string> ListsFixture::rowKeys() const {
    std::vector<std::string> out;
    for (const Value& row : *list->myData()) {
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

void ListsFixture::resourcePicture(const std::string& name, int width, int height,
                                   const gfx::Color& color) const {
    std::ofstream(resources / (name + ".png"), std::ios::binary) << pngBytes(width, height, color);
}

std::string pngBytes(int width, int height, const gfx::Color& color) {
    gfx::ImageContext context(gfx::Size(width, height), gfx::Opacity::Transparent, 1);
    context.canvas().fillRect(gfx::Rect(0, 0, width, height), color);
    auto data = context.takeImage().pngData();
    return std::string(data.begin(), data.end());
}

} // namespace morvane::test
