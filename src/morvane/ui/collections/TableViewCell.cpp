#include <morvane/ui/collections/TableViewCell.h>

#include <morvane/gfx/Canvas.h>
#include <morvane/ui/controls/Label.h>

namespace morvane::ui {

namespace {
constexpr double kMargin = 15;
const gfx::Color kSelectedColor = gfx::Color::gray(0.85);
} // namespace

TableViewCell::TableViewCell(Style style, std::string reuseIdentifier)
    : reuseIdentifier_(std::move(reuseIdentifier)), style_(style) {
    setBackgroundColor(gfx::Color::whiteColor());
    contentView_ = std::make_shared<View>();
    addSubview(contentView_);
}

TableViewCell::~TableViewCell() = default;

Label& TableViewCell::textLabel() {
    if (!textLabel_) {
        textLabel_ = std::make_shared<Label>();
        textLabel_->setFont(gfx::Font::systemFont(17));
        contentView_->addSubview(textLabel_);
        setNeedsLayout();
    }
    return *textLabel_;
}

Label& TableViewCell::detailTextLabel() {
    if (!detailTextLabel_) {
        detailTextLabel_ = std::make_shared<Label>();
        detailTextLabel_->setFont(gfx::Font::systemFont(12));
        detailTextLabel_->setTextColor(gfx::Color::darkGrayColor());
        contentView_->addSubview(detailTextLabel_);
        setNeedsLayout();
    }
    return *detailTextLabel_;
}

void TableViewCell::setSelectionStyle(SelectionStyle style) {
    selectionStyle_ = style;
    setNeedsDisplay();
}

void TableViewCell::setSelected(bool selected, bool) {
    if (selected == selected_) return;
    selected_ = selected;
    setNeedsDisplay();
}

void TableViewCell::setHighlighted(bool highlighted, bool) {
    if (highlighted == highlighted_) return;
    highlighted_ = highlighted;
    setNeedsDisplay();
}

void TableViewCell::prepareForReuse() {
    setSelected(false);
    setHighlighted(false);
}

void TableViewCell::layoutSubviews() {
    gfx::Rect b = bounds();
    contentView_->setFrame({0, 0, b.width, b.height});
    double width = b.width - 2 * kMargin;
    if (textLabel_ && detailTextLabel_ && style_ == Style::Subtitle) {
        textLabel_->setFrame({kMargin, b.height / 2 - 21, width, 21});
        detailTextLabel_->setFrame({kMargin, b.height / 2, width, 17});
    } else {
        if (textLabel_) textLabel_->setFrame({kMargin, 0, width, b.height});
        if (detailTextLabel_) detailTextLabel_->setFrame({kMargin, 0, width, b.height});
        if (detailTextLabel_) detailTextLabel_->setTextAlignment(gfx::TextAlignment::Right);
    }
}

void TableViewCell::draw(gfx::Canvas& canvas, const gfx::Rect& rect) {
    if ((selected_ || highlighted_) && selectionStyle_ != SelectionStyle::None)
        canvas.fillRect(rect, kSelectedColor);
    if (separator_) {
        double y = rect.y + rect.height - 0.25;
        canvas.drawLine({rect.x + separatorInset_, y}, {rect.x + rect.width, y}, separatorColor_, 0.5);
    }
}

} // namespace morvane::ui
