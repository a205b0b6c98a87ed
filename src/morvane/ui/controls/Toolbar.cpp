#include <morvane/ui/controls/Toolbar.h>

#include <morvane/gfx/Canvas.h>
#include <morvane/gfx/TextMetrics.h>
#include <morvane/ui/controls/BarButtonItem.h>
#include <morvane/ui/controls/Button.h>
#include <morvane/ui/controls/Label.h>

#include <algorithm>

namespace morvane::ui {

namespace {

constexpr double kMargin = 16;
constexpr double kSpacing = 8;
constexpr double kTitleSize = 17;

} // namespace

Toolbar::Toolbar() {
    setBackgroundColor(gfx::Color::gray(0.97));
}

Toolbar::Toolbar(const gfx::Rect& frame) : Toolbar() {
    setFrame(frame);
}

void Toolbar::setItems(std::vector<std::shared_ptr<BarButtonItem>> items) {
    for (auto& button : buttons_)
        if (button) button->removeFromSuperview();
    buttons_.clear();
    items_ = std::move(items);
    std::erase(items_, nullptr);
    for (auto& item : items_) {
        if (item->isSpace()) {
            buttons_.push_back(nullptr);
            continue;
        }
        auto button = std::make_shared<Button>();
        button->setTitle(item->title());
        button->setTitleColor(tint_);
        button->titleLabel()->setFont(item->isProminent() ? gfx::Font::boldSystemFont(kTitleSize)
                                                          : gfx::Font::systemFont(kTitleSize));
        // The button holds its item weakly: the toolbar's list owns it.
        std::weak_ptr<BarButtonItem> weak = item;
        button->addAction(ControlEvent::TouchUpInside, [weak](Control&) {
            if (auto held = weak.lock()) held->trigger();
        });
        addSubview(button);
        buttons_.push_back(button);
    }
    setNeedsLayout();
}

void Toolbar::setTintColor(const gfx::Color& color) {
    tint_ = color;
    for (auto& button : buttons_)
        if (button) button->setTitleColor(color);
}

Button* Toolbar::buttonForItem(std::size_t index) const {
    return index < buttons_.size() ? buttons_[index].get() : nullptr;
}

void Toolbar::layoutSubviews() {
    gfx::Rect b = bounds();
    std::vector<double> widths(items_.size(), 0);
    double fixed = 0;
    int flexible = 0;
    for (std::size_t i = 0; i < items_.size(); ++i) {
        const auto& item = *items_[i];
        if (item.kind() == BarButtonItem::SystemItem::FlexibleSpace) {
            ++flexible;
            continue;
        }
        if (item.kind() == BarButtonItem::SystemItem::FixedSpace)
            widths[i] = std::max(0.0, item.width());
        else
            widths[i] = item.width() > 0
                            ? item.width()
                            : gfx::TextMetrics::size(item.title(), buttons_[i]->titleLabel()->font()).width;
        fixed += widths[i];
    }
    double gaps = items_.empty() ? 0 : kSpacing * static_cast<double>(items_.size() - 1);
    double left = std::max(0.0, b.width - 2 * kMargin - fixed - gaps);
    double x = b.x + kMargin;
    for (std::size_t i = 0; i < items_.size(); ++i) {
        if (items_[i]->kind() == BarButtonItem::SystemItem::FlexibleSpace) widths[i] = left / flexible;
        if (buttons_[i]) buttons_[i]->setFrame({x, b.y, widths[i], b.height});
        x += widths[i] + kSpacing;
    }
}

void Toolbar::draw(gfx::Canvas& canvas, const gfx::Rect& rect) {
    // A hairline along the top edge separates the bar from what is above it.
    canvas.fillRect({rect.x, rect.y, rect.width, 0.5}, gfx::Color::gray(0.7));
}

} // namespace morvane::ui
