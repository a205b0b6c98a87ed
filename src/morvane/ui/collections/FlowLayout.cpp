#include <morvane/ui/collections/FlowLayout.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace morvane::ui {

namespace {

double usable(double value, const char* what, const std::function<void(const std::string&)>& warn) {
    if (std::isfinite(value) && value >= 0) return value;
    if (warn) warn(std::string("a ") + what + " of " + std::to_string(value) + " is not usable; 0 is used");
    return 0;
}

} // namespace

void FlowLayout::prepare(double width, const std::vector<int>& itemsPerSection, const Answers& answers,
                         const std::function<void(const std::string&)>& warn) {
    frames_.clear();
    paths_.clear();
    lines_.clear();
    sectionStart_.clear();
    if (!std::isfinite(width) || width < 0) width = 0;
    double y = 0;
    for (int s = 0; s < int(itemsPerSection.size()); ++s) {
        sectionStart_.push_back(frames_.size());
        gfx::Insets inset = inset_;
        if (answers.insetForSection)
            if (auto i = answers.insetForSection(s)) inset = *i;
        double lineSpacing = line_;
        if (answers.lineSpacingForSection)
            if (auto v = answers.lineSpacingForSection(s)) lineSpacing = *v;
        double interitem = interitem_;
        if (answers.interitemSpacingForSection)
            if (auto v = answers.interitemSpacingForSection(s)) interitem = *v;
        lineSpacing = usable(lineSpacing, "line spacing", warn);
        interitem = usable(interitem, "inter-item spacing", warn);

        y += inset.top;
        double left = inset.left;
        double available = std::max(0.0, width - inset.left - inset.right);
        int count = itemsPerSection[std::size_t(s)];
        int item = 0;
        bool firstLine = true;
        while (item < count) {
            // Fill a line: at least one item, then as many as fit.
            std::size_t start = frames_.size();
            double used = 0;
            double tallest = 0;
            while (item < count) {
                gfx::Size size = itemSize_;
                if (answers.sizeForItem)
                    if (auto v = answers.sizeForItem({s, item})) size = *v;
                size.width = std::min(usable(size.width, "item width", warn), available);
                size.height = usable(size.height, "item height", warn);
                double needed = frames_.size() == start ? size.width : used + interitem + size.width;
                if (frames_.size() > start && needed > available + 1e-9) break;
                frames_.push_back({0, 0, size.width, size.height});
                paths_.push_back({s, item});
                used = needed;
                tallest = std::max(tallest, size.height);
                ++item;
            }
            if (!firstLine) y += lineSpacing;
            firstLine = false;
            std::size_t n = frames_.size() - start;
            // A full line (more items follow) spreads its spare room between
            // its items; the last line keeps the minimum spacing.
            double spacing = interitem;
            if (n > 1 && item < count) {
                double widths = 0;
                for (std::size_t i = start; i < frames_.size(); ++i)
                    widths += frames_[i].width;
                spacing = (available - widths) / double(n - 1);
            }
            double x = left;
            for (std::size_t i = start; i < frames_.size(); ++i) {
                frames_[i].x = x;
                // Items shorter than their line sit in its middle.
                frames_[i].y = y + (tallest - frames_[i].height) / 2;
                x += frames_[i].width + spacing;
            }
            lines_.push_back({y, y + tallest, start, n});
            y += tallest;
        }
        y += inset.bottom;
    }
    contentSize_ = {width, y};
}

gfx::Rect FlowLayout::frameForItem(IndexPath p) const {
    if (p.section < 0 || p.section >= int(sectionStart_.size()) || p.row < 0) return {};
    std::size_t i = sectionStart_[std::size_t(p.section)] + std::size_t(p.row);
    if (i >= paths_.size() || paths_[i] != p) return {};
    return frames_[i];
}

std::vector<IndexPath> FlowLayout::itemsIn(const gfx::Rect& rect) const {
    std::vector<IndexPath> found;
    auto line = std::upper_bound(lines_.begin(), lines_.end(), rect.y,
                                 [](double y, const Line& l) { return y < l.bottom; });
    for (; line != lines_.end() && line->top < rect.y + rect.height; ++line)
        for (std::size_t i = line->first; i < line->first + line->count; ++i)
            if (frames_[i].intersects(rect)) found.push_back(paths_[i]);
    return found;
}

std::optional<IndexPath> FlowLayout::itemAt(gfx::Point point) const {
    for (IndexPath p : itemsIn({point.x - 0.5, point.y - 0.5, 1, 1}))
        if (frameForItem(p).contains(point)) return p;
    return std::nullopt;
}

} // namespace morvane::ui
