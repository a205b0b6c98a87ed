#pragma once
// UISearchFlt: the flight search box: a "Flight Number" field that formats
// what is typed as an airline code and a number ("AS 1144"), the example
// line and a "Search" button that hands the number to the application.
//
//   box->watchSearch([](const std::string& number, const NodePtr&) { lookUp(number); });
//
// Without a search callback the button does nothing and the field keeps the
// keyboard. Threads: main thread only; the callback may release the box.

#include <morvane/forms/ZBTxt.h>
#include <morvane/model/Node.h>
#include <morvane/ui/controls/Button.h>
#include <morvane/ui/controls/Label.h>

#include <functional>
#include <memory>

namespace morvane {

class UISearchFlt : public ui::View {
  public:
    using SearchCB = std::function<void(const std::string& text, const NodePtr& node)>;

    explicit UISearchFlt(const gfx::Rect& frame = {});
    ~UISearchFlt() override;

    const std::shared_ptr<ZBTxt>& txtZB() const { return txtZB_; }
    const std::shared_ptr<ui::Button>& takePhotoBtn() const { return takePhotoBtn_; }
    const std::shared_ptr<ui::Label>& title() const { return title_; }

    void watchSearch(SearchCB callback);
    void menuAction();

    // 2.8 times the height of "Sample Text" in the system font.
    static double getTextHeight();
    static double bottomOf(const ui::View& view, double offset = 0);
    double heightOf(const ui::View& view, double offset) const;
    static void addBorder(ui::View& view, double width);

  protected:
    void layoutSubviews() override;

  private:
    std::shared_ptr<ZBTxt> txtZB_;
    std::shared_ptr<ui::Button> takePhotoBtn_;
    std::shared_ptr<ui::Label> title_;
    SearchCB searchCB_;
};

} // namespace morvane
