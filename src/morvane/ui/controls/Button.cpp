#include <morvane/ui/controls/Button.h>

#include <morvane/gfx/TextMetrics.h>
#include <morvane/ui/controls/ImageView.h>
#include <morvane/ui/controls/Label.h>

#include <algorithm>

namespace morvane::ui {

namespace {

// How much of the title and image shows while pressed (the pressed look).
constexpr double kPressedAlpha = 0.3;

} // namespace

Button::Button() : titleLabel_(std::make_shared<Label>()), imageView_(std::make_shared<ImageView>()) {
    // A custom button's titles are white unless told otherwise.
    titleColors_[slot(ControlState::Normal)] = gfx::Color::whiteColor();
    titleLabel_->setTextAlignment(gfx::TextAlignment::Center);
    imageView_->setContentMode(gfx::ContentMode::AspectFit);
    addSubview(imageView_);
    addSubview(titleLabel_);
    refresh();
}

Button::Button(const gfx::Rect& frame) : Button() {
    setFrame(frame);
}

void Button::setTitle(std::optional<std::string> title, ControlState state) {
    titles_[slot(state)] = std::move(title);
    refresh();
}

std::optional<std::string> Button::titleForState(ControlState state) const {
    return titles_[slot(state)] ? titles_[slot(state)] : titles_[slot(ControlState::Normal)];
}

void Button::setTitleColor(std::optional<gfx::Color> color, ControlState state) {
    titleColors_[slot(state)] = color;
    refresh();
}

gfx::Color Button::titleColorForState(ControlState state) const {
    if (titleColors_[slot(state)]) return *titleColors_[slot(state)];
    return titleColors_[slot(ControlState::Normal)].value_or(gfx::Color::whiteColor());
}

void Button::setImage(gfx::Image image, ControlState state) {
    images_[slot(state)] = std::move(image);
    refresh();
}

gfx::Image Button::imageForState(ControlState state) const {
    return images_[slot(state)] ? images_[slot(state)] : images_[slot(ControlState::Normal)];
}

void Button::stateChanged() {
    refresh();
}

void Button::setAttributedTitle(std::optional<gfx::AttributedText> title) {
    attributedTitle_ = std::move(title);
    refresh();
}

void Button::refresh() {
    ControlState current = state();
    if (attributedTitle_)
        titleLabel_->setAttributedText(attributedTitle_);
    else
        titleLabel_->setText(currentTitle());
    titleLabel_->setTextColor(titleColorForState(current));
    imageView_->setImage(currentImage());
    // The pressed look: dimmed unless the highlighted state has its own colour or image.
    bool dim = current == ControlState::Highlighted && !titleColors_[slot(ControlState::Highlighted)] &&
               !images_[slot(ControlState::Highlighted)];
    titleLabel_->setAlpha(dim ? kPressedAlpha : 1);
    imageView_->setAlpha(dim ? kPressedAlpha : 1);
    if (!isEnabled()) titleLabel_->setAlpha(titleColors_[slot(ControlState::Disabled)] ? 1 : 0.5);
    setNeedsLayout();
}

gfx::Size Button::sizeThatFits(gfx::Size) const {
    gfx::Size text = attributedTitle_ ? gfx::TextMetrics::size(*attributedTitle_)
                                      : gfx::TextMetrics::size(currentTitle(), titleLabel_->font());
    gfx::Size picture = currentImage() ? currentImage().size() : gfx::Size{};
    return {text.width + picture.width, std::max(text.height, picture.height)};
}

void Button::layoutSubviews() {
    gfx::Rect b = bounds();
    auto horizontal = contentHorizontalAlignment();
    auto vertical = contentVerticalAlignment();
    gfx::Image picture = currentImage();
    std::string title = currentTitle();

    gfx::Size pictureSize = picture ? picture.size() : gfx::Size{};
    if (pictureSize.height > b.height && pictureSize.height > 0)
        pictureSize = pictureSize * (b.height / pictureSize.height);
    if (pictureSize.width > b.width && pictureSize.width > 0)
        pictureSize = pictureSize * (b.width / pictureSize.width);

    gfx::Size titleSize;
    const bool styled = attributedTitle_ && !attributedTitle_->isEmpty();
    if (styled || !title.empty()) {
        double room = std::max(0.0, b.width - pictureSize.width);
        const bool oneLine = titleLabel_->numberOfLines() == 1;
        // A styled title measures with its own fonts.
        if (styled)
            titleSize = oneLine ? gfx::TextMetrics::size(*attributedTitle_)
                                : gfx::TextMetrics::boundingSize(*attributedTitle_, room);
        else
            titleSize = oneLine ? gfx::TextMetrics::size(title, titleLabel_->font())
                                : gfx::TextMetrics::boundingSize(title, titleLabel_->font(), room);
        titleSize.width = std::min(titleSize.width, room);
        titleSize.height = std::min(titleSize.height, b.height);
    }
    if (horizontal == ContentHorizontalAlignment::Fill)
        titleSize.width = std::max(0.0, b.width - pictureSize.width);
    if (vertical == ContentVerticalAlignment::Fill) titleSize.height = b.height;

    double contentWidth = pictureSize.width + titleSize.width;
    double x = b.x;
    switch (horizontal) {
    case ContentHorizontalAlignment::Center:
        x = b.x + (b.width - contentWidth) / 2;
        break;
    case ContentHorizontalAlignment::Right:
        x = b.x + b.width - contentWidth;
        break;
    default:
        break;
    }
    auto top = [&](double height) {
        switch (vertical) {
        case ContentVerticalAlignment::Center:
            return b.y + (b.height - height) / 2;
        case ContentVerticalAlignment::Bottom:
            return b.y + b.height - height;
        default:
            return b.y;
        }
    };
    imageView_->setFrame({x, top(pictureSize.height), pictureSize.width, pictureSize.height});
    titleLabel_->setFrame({x + pictureSize.width, top(titleSize.height), titleSize.width, titleSize.height});
}

} // namespace morvane::ui
