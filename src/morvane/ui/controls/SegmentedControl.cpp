#include <morvane/ui/controls/SegmentedControl.h>

#include <morvane/gfx/Canvas.h>
#include <morvane/ui/core/Touch.h>

#include <algorithm>

namespace morvane::ui {

namespace {

const gfx::Color kTrackColor = gfx::Color::gray(0.46, 0.12);
const gfx::Color kDividerColor = gfx::Color::gray(0.55, 0.3);
constexpr double kInset = 2;

} // namespace

SegmentedControl::SegmentedControl(std::vector<std::string> items) : titles_(std::move(items)) {
    setFrame({0, 0, 64.0 * static_cast<double>(std::max<std::size_t>(titles_.size(), 1)), 32});
}

void SegmentedControl::insertSegment(std::string title, int index) {
    index = std::clamp(index, 0, numberOfSegments());
    titles_.insert(titles_.begin() + index, std::move(title));
    if (selected_ >= index) ++selected_;
    setNeedsDisplay();
}

void SegmentedControl::removeSegment(int index) {
    if (index < 0 || index >= numberOfSegments()) return;
    titles_.erase(titles_.begin() + index);
    if (selected_ == index)
        selected_ = kNoSegment;
    else if (selected_ > index)
        --selected_;
    setNeedsDisplay();
}

void SegmentedControl::removeAllSegments() {
    titles_.clear();
    selected_ = kNoSegment;
    setNeedsDisplay();
}

void SegmentedControl::setTitle(std::string title, int segment) {
    if (segment < 0 || segment >= numberOfSegments()) return;
    titles_[static_cast<std::size_t>(segment)] = std::move(title);
    setNeedsDisplay();
}

std::optional<std::string> SegmentedControl::titleForSegment(int segment) const {
    if (segment < 0 || segment >= numberOfSegments()) return std::nullopt;
    return titles_[static_cast<std::size_t>(segment)];
}

void SegmentedControl::setSelectedSegmentIndex(int index) {
    if (index != kNoSegment && (index < 0 || index >= numberOfSegments())) return;
    selected_ = index;
    setNeedsDisplay();
}

void SegmentedControl::setTitleTextAttributes(const TextAttributes& attributes, ControlState state) {
    (state == ControlState::Selected ? selectedAttributes_ : normal_) = attributes;
    setNeedsDisplay();
}

TextAttributes SegmentedControl::titleTextAttributes(ControlState state) const {
    return state == ControlState::Selected ? selectedAttributes_ : normal_;
}

void SegmentedControl::setSelectedSegmentTintColor(const gfx::Color& color) {
    selectedTint_ = color;
    setNeedsDisplay();
}

int SegmentedControl::segmentAt(gfx::Point point) const {
    if (titles_.empty() || !bounds().contains(point)) return kNoSegment;
    double width = bounds().width / numberOfSegments();
    int index = static_cast<int>((point.x - bounds().x) / width);
    return std::clamp(index, 0, numberOfSegments() - 1);
}

void SegmentedControl::touchEndedInside(const Touch& touch) {
    int index = segmentAt(touch.locationIn(this));
    if (index == kNoSegment || index == selected_) return;
    selected_ = index;
    setNeedsDisplay();
    sendActions(ControlEvent::ValueChanged);
}

void SegmentedControl::draw(gfx::Canvas& canvas, const gfx::Rect& rect) {
    double radius = std::min(rect.height / 4, 9.0);
    canvas.fillRoundedRect(rect, radius, kTrackColor);
    int count = numberOfSegments();
    if (count == 0) return;
    double width = rect.width / count;
    for (int i = 0; i < count; ++i) {
        gfx::Rect segment{rect.x + width * i, rect.y, width, rect.height};
        bool isSelected = i == selected_;
        if (isSelected)
            canvas.fillRoundedRect(segment.insetBy(kInset, kInset), std::max(0.0, radius - kInset / 2),
                                   selectedTint_);
        else if (i > 0 && i - 1 != selected_)
            canvas.drawLine({segment.x, segment.y + rect.height * 0.25},
                            {segment.x, segment.y + rect.height * 0.75}, kDividerColor, 1);
        const TextAttributes& attributes = isSelected ? selectedAttributes_ : normal_;
        gfx::TextStyle style;
        style.font = attributes.font.value_or(gfx::Font::systemFont(13));
        if (isSelected && !attributes.font && normal_.font) style.font = *normal_.font;
        style.color = attributes.color.value_or(isSelected && normal_.color ? *normal_.color
                                                                            : gfx::Color::blackColor());
        style.alignment = gfx::TextAlignment::Center;
        style.verticalAlignment = gfx::VerticalAlignment::Center;
        canvas.drawText(titles_[static_cast<std::size_t>(i)], segment.insetBy(4, 0), style);
    }
}

} // namespace morvane::ui
