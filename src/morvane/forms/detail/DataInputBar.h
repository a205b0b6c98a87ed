#pragma once
// What the two data input bars share: a half-transparent veil over the
// owner, and an editor panel that slides up from the bottom edge (1 s), rests
// at 0.15 of the height, and slides down again (1 s) on Save, DELETE or
// Cancel, after which the bar hides itself. The owner hears of the choice as
// the slide-out starts. ZBDataInput and UIDataInput differ in their panel and
// its side margin.

#include <morvane/forms/detail/EditorPanel.h>
#include <morvane/ui/core/View.h>

#include <cstdint>
#include <memory>
#include <string_view>

namespace morvane::detail {

class DataInputBar : public ui::View {
  public:
    using SaveCB = EditorPanel::SaveCB;
    using DoneCB = EditorPanel::DoneCB;
    static constexpr double kSlideSeconds = 1.0;

    ~DataInputBar() override;

    // The owner brings the bar to its front; the bar shows and its panel slides in.
    void show(ui::View& owner);
    // true: the panel slides out and the bar hides; false: the panel slides in
    // from below the bottom edge.
    void minimize(bool out);
    // The text to edit.
    void addData(std::string_view text);
    // Stores the callbacks; the number is not used.
    void watchAction(int unused, SaveCB save, DoneCB del, DoneCB cancel);
    // Registers the bar's own callbacks on its panel (done when it is made).
    void watchDscr();

  protected:
    DataInputBar(std::shared_ptr<EditorPanel> panel, double margin);

    std::shared_ptr<EditorPanel> panel_;

  private:
    gfx::Rect panelFrame(double y) const;

    double margin_;
    SaveCB saveCB_;
    DoneCB cancelCB_;
    DoneCB deleteCB_;
    // Counts the slides, so that a slide-out overtaken by a show does not hide the bar.
    std::uint64_t slides_ = 0;
};

} // namespace morvane::detail
