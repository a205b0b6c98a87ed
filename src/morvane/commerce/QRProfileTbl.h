#pragma once
// QRProfileTbl: the title and labelled lines of a QR profile panel, one line
// a section of one row. Touching a line makes it half as tall again (for a
// long value); touching it again brings it back.
//
//   tbl->addTitle("Spa card");
//   tbl->addData("Treatment", "Massage");
//   tbl->addData("Your Cost", "45.00");
//   tbl->refresh();
//
// Threads: main thread only.

#include <morvane/model/Node.h>
#include <morvane/ui/collections/TableView.h>
#include <morvane/ui/controls/Label.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace morvane {

class QRProfileTbl : public ui::View, public ui::TableViewDataSource, public ui::TableViewDelegate {
  public:
    explicit QRProfileTbl(const gfx::Color& background = gfx::Color::clearColor());
    static std::shared_ptr<QRProfileTbl> initWithBackgroundColor(const gfx::Color& background);
    ~QRProfileTbl() override;

    const std::shared_ptr<ui::Label>& title() const { return title_; }
    const std::shared_ptr<ui::Label>& subtitle() const { return subtitle_; }
    const std::shared_ptr<ui::Label>& lineLbl() const { return lineLbl_; }
    const std::shared_ptr<ui::TableView>& tbl() const { return tbl_; }
    // The lines, each {"key": label, "val": value}.
    const std::vector<NodePtr>& displayData() const { return displayData_; }

    void addTitle(std::string_view text);
    // The subtitle has no place on screen: it is kept for applications that read it.
    void addSubTitle(std::string_view text);
    void addData(std::string_view label, std::string_view value);
    void clear();
    void refresh();

    // Own height below the view.
    double heightFrom(const ui::View& view) const;
    static double bottomOf(const ui::View& view, double offset = 0);
    static void addBorder(ui::View& view, double width);

    // ---- Table data source and delegate ----------------------------------------
    int numberOfSections(ui::TableView&) override;
    int numberOfRows(ui::TableView&, int section) override;
    std::shared_ptr<ui::TableViewCell> cellForRow(ui::TableView&, ui::IndexPath indexPath) override;
    std::optional<double> heightForRow(ui::TableView&, ui::IndexPath indexPath) override;
    std::optional<double> heightForFooter(ui::TableView&, int section) override;
    void didSelectRow(ui::TableView&, ui::IndexPath) override;
    void didDeselectRow(ui::TableView&, ui::IndexPath) override;

  protected:
    void layoutSubviews() override;

  private:
    const std::string& valueAt(std::size_t line) const;

    std::shared_ptr<ui::Label> title_;
    std::shared_ptr<ui::Label> subtitle_;
    std::shared_ptr<ui::Label> lineLbl_;
    std::shared_ptr<ui::TableView> tbl_;
    std::vector<NodePtr> displayData_;
};

} // namespace morvane
