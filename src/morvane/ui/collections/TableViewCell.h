#pragma once
// One row of a table. Put the row's views into contentView(); the table sets
// the cell's frame, selection and separator. Cells are reused: a cell that
// scrolled out is handed out again for another row, after prepareForReuse.
//
//   class PriceCell : public ui::TableViewCell {
//     public:
//       using TableViewCell::TableViewCell;
//       void prepareForReuse() override { TableViewCell::prepareForReuse(); price_->setText(""); }
//   };

#include <morvane/ui/collections/IndexPath.h>
#include <morvane/ui/core/View.h>

#include <memory>
#include <string>

namespace morvane::ui {

namespace detail {
template <class Cell> class CellRecycler;
}

class Label;
class TableView;

class TableViewCell : public View {
  public:
    enum class Style { Default, Subtitle };
    enum class SelectionStyle { None, Default };

    explicit TableViewCell(Style style = Style::Default, std::string reuseIdentifier = {});
    ~TableViewCell() override;

    const std::string& reuseIdentifier() const { return reuseIdentifier_; }
    Style style() const { return style_; }
    const std::shared_ptr<View>& contentView() const { return contentView_; }
    // Made on first use.
    Label& textLabel();
    Label& detailTextLabel();

    SelectionStyle selectionStyle() const { return selectionStyle_; }
    void setSelectionStyle(SelectionStyle style);
    bool isSelected() const { return selected_; }
    virtual void setSelected(bool selected, bool animated = false);
    bool isHighlighted() const { return highlighted_; }
    virtual void setHighlighted(bool highlighted, bool animated = false);

    // Called before a reused cell is handed out for another row: clear what
    // belonged to the old row. The default resets selection and highlight.
    virtual void prepareForReuse();

    // The row the cell shows now, while the table shows it.
    std::optional<IndexPath> indexPath() const { return indexPath_; }

    void draw(gfx::Canvas& canvas, const gfx::Rect& rect) override;

  protected:
    void layoutSubviews() override;

  private:
    friend class TableView;
    template <class> friend class detail::CellRecycler;
    std::string reuseIdentifier_;
    Style style_;
    std::shared_ptr<View> contentView_;
    std::shared_ptr<Label> textLabel_;
    std::shared_ptr<Label> detailTextLabel_;
    SelectionStyle selectionStyle_ = SelectionStyle::Default;
    bool selected_ = false;
    bool highlighted_ = false;
    std::optional<IndexPath> indexPath_;
    // Set by the table: the line at the bottom edge.
    bool separator_ = false;
    double separatorInset_ = 0;
    gfx::Color separatorColor_;
};

} // namespace morvane::ui
