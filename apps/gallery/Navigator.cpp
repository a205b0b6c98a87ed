#include "Navigator.h"

#include "Style.h"

#include <morvane/gfx/Font.h>
#include <morvane/model/Node.h>
#include <morvane/sys/Queue.h>
#include <morvane/ui/controls/Label.h>
#include <morvane/util/Colors.h>

#include <utility>

namespace gallery {

using namespace morvane;

namespace {
constexpr double kBarHeight = 104;
using Keys = std::vector<std::string>;
} // namespace

// The home screen: a title and the list of screens, drawn by the kit's own list.
class Navigator::Home : public Screen {
  public:
    Home(const gfx::Rect& frame, const std::string& heading, std::shared_ptr<UITbl> list)
        : Screen(frame), list_(std::move(list)) {
        setBackgroundColor(style::kBar);
        title_ = std::make_shared<ui::Label>();
        title_->setFont(gfx::Font::boldSystemFont(30));
        title_->setTextColor(gfx::Color::whiteColor());
        title_->setText(heading);
        subtitle_ = std::make_shared<ui::Label>();
        subtitle_->setFont(gfx::Font::systemFont(15));
        subtitle_->setTextColor(style::kSoftText);
        subtitle_->setText("Tap a screen to open it");
        addSubview(title_);
        addSubview(subtitle_);
        addSubview(list_);
    }
    std::shared_ptr<ui::View> backControl() const override { return nullptr; }

  protected:
    void layoutSubviews() override {
        const gfx::Size size = bounds().size();
        title_->setFrame({20, 44, size.width - 40, 36});
        subtitle_->setFrame({20, 78, size.width - 40, 20});
        list_->setFrame({0, kBarHeight, size.width, size.height - kBarHeight});
    }

  private:
    std::shared_ptr<ui::Label> title_;
    std::shared_ptr<ui::Label> subtitle_;
    std::shared_ptr<UITbl> list_;
};

std::shared_ptr<Navigator> Navigator::make(const gfx::Rect& frame, std::vector<Entry> entries,
                                           std::string heading) {
    auto navigator = std::make_shared<Navigator>(frame, std::move(entries), std::move(heading));
    navigator->watchHome();
    return navigator;
}

Navigator::Navigator(const gfx::Rect& frame, std::vector<Entry> entries, std::string heading)
    : View(frame), entries_(std::move(entries)) {
    homeList_ = std::make_shared<UITbl>();
    homeList_->setBackgroundColor(style::kList);
    homeList_->cfg({.header = [](Keys& keys) { keys = {"name"}; },
                    .body = [](Keys& keys) { keys = {"summary"}; },
                    .sortBy = [](Keys& keys) { keys = {"order"}; },
                    .ascending = [](bool& ascending) { ascending = true; },
                    .cellHeight = [](float& lines) { lines = 5; }});
    for (std::size_t i = 0; i < entries_.size(); ++i)
        homeList_->adData(Node::make({{"key", entries_[i].id},
                                      {"order", std::to_string(10 + i)},
                                      {"name", entries_[i].title},
                                      {"summary", entries_[i].summary}}));
    homeList_->refresh();
    home_ = std::make_shared<Home>(gfx::Rect{{0, 0}, frame.size()}, heading, homeList_);
    current_ = home_;
    addSubview(home_);
}

void Navigator::watchHome() {
    // Screens change after the tap is over, not inside the list's touch.
    std::weak_ptr<Navigator> weak = std::static_pointer_cast<Navigator>(shared_from_this());
    homeList_->watchTbl("home",
                        [weak](const Value& key, const NodePtr&) {
                            sys::Queue::main().async([weak, id = key.toText()] {
                                if (auto self = weak.lock()) self->open(id);
                            });
                        },
                        {}, {});
}

bool Navigator::open(const std::string& id) {
    std::shared_ptr<Screen> next;
    if (id == kHomeId) {
        next = home_;
    } else {
        for (const Entry& entry : entries_)
            if (entry.id == id) {
                std::weak_ptr<Navigator> weak = std::static_pointer_cast<Navigator>(shared_from_this());
                next = entry.make(bounds(), [weak] {
                    sys::Queue::main().async([weak] {
                        if (auto self = weak.lock()) self->open(kHomeId);
                    });
                });
            }
        if (!next) return false;
    }
    if (current_ != next) {
        current_->removeFromSuperview();
        current_ = next;
        addSubview(current_);
    }
    currentId_ = id;
    setNeedsLayout();
    return true;
}

void Navigator::layoutSubviews() {
    current_->setFrame(bounds());
}

} // namespace gallery
