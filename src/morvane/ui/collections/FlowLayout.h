#pragma once
// Places a grid's items in lines, left to right and top to bottom: as many
// items as fit the width go on a line, a full line spreads its spare room
// evenly between its items, and lines follow each other by the line spacing.
//
//   ui::FlowLayout layout;
//   layout.setItemSize({141, 180});
//   layout.setMinimumInteritemSpacing(6);
//   layout.setMinimumLineSpacing(6);
//   layout.setSectionInset({6, 6, 6, 6});   // two columns on a 300-point grid
//
// The frames are computed once per reload into lines with running tops, so the
// items under a viewport are found by a binary search over the lines.

#include <morvane/gfx/Geometry.h>
#include <morvane/ui/collections/IndexPath.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace morvane::ui {

class FlowLayout {
  public:
    enum class ScrollDirection { Vertical };

    gfx::Size itemSize() const { return itemSize_; }
    void setItemSize(gfx::Size size) { itemSize_ = size; }
    double minimumInteritemSpacing() const { return interitem_; }
    void setMinimumInteritemSpacing(double spacing) { interitem_ = spacing; }
    double minimumLineSpacing() const { return line_; }
    void setMinimumLineSpacing(double spacing) { line_ = spacing; }
    const gfx::Insets& sectionInset() const { return inset_; }
    void setSectionInset(const gfx::Insets& inset) { inset_ = inset; }
    ScrollDirection scrollDirection() const { return ScrollDirection::Vertical; }

    // Per-section and per-item answers that override the values above (a
    // grid's delegate supplies them); absent ones use the values above.
    struct Answers {
        std::function<std::optional<gfx::Size>(IndexPath)> sizeForItem;
        std::function<std::optional<gfx::Insets>(int section)> insetForSection;
        std::function<std::optional<double>(int section)> lineSpacingForSection;
        std::function<std::optional<double>(int section)> interitemSpacingForSection;
    };

    // Lays out every item for a grid `width` points wide. Unusable sizes and
    // spacings (negative, not a number) count as 0 and are reported through `warn`.
    void prepare(double width, const std::vector<int>& itemsPerSection, const Answers& answers,
                 const std::function<void(const std::string&)>& warn = {});

    gfx::Size contentSize() const { return contentSize_; }
    // The frame of an item in content coordinates (empty for an unknown item).
    gfx::Rect frameForItem(IndexPath indexPath) const;
    // The items whose frames meet the rectangle, in order.
    std::vector<IndexPath> itemsIn(const gfx::Rect& rect) const;
    std::optional<IndexPath> itemAt(gfx::Point point) const;

  private:
    struct Line {
        double top;
        double bottom;
        std::size_t first; // into frames_
        std::size_t count;
    };
    gfx::Size itemSize_{50, 50};
    double interitem_ = 10;
    double line_ = 10;
    gfx::Insets inset_;

    std::vector<gfx::Rect> frames_;
    std::vector<IndexPath> paths_;
    std::vector<std::size_t> sectionStart_;
    std::vector<Line> lines_;
    gfx::Size contentSize_;
};

} // namespace morvane::ui
