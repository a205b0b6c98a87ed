#pragma once
// UMEdit: a scrollable canvas whose children are edited in place. In edit
// mode a touch chooses the child under the finger (the lowest one, then the
// one furthest right, among those the point lies strictly inside), draws a
// thin border round it and puts a small round "↑" button at its top right
// corner. The button opens the data input bar for a text child (a text view,
// label or text field) or the camera for a picture child (an image view or a
// ZBImage). What is saved goes back into the child and out through two hooks
// that subclasses give meaning (the profile card does):
//
//   class Card : public UMEdit {
//       void txtChanged(const std::string& text, ui::View& view) override { ... }
//       void imageChanged(const gfx::Image& image, ui::View& view) override { ... }
//   };
//   card->editEnable(true);
//
// The canvas keeps nothing itself: it moves texts and pictures between its
// children, the bar, the camera and the hooks. Text views it meets in edit
// mode are made read-only and still (so touches reach the canvas) and stay so.
// Threads: main thread only. The hooks may call any operation of the canvas.

#include <morvane/forms/ZBDataInput.h>
#include <morvane/forms/detail/EditCanvas.h>
#include <morvane/ui/collections/ScrollView.h>

#include <memory>

namespace morvane {

class UMEdit : public detail::EditCanvas<ui::ScrollView> {
  public:
    explicit UMEdit(const gfx::Rect& frame = {});
    ~UMEdit() override;

    const std::shared_ptr<ZBDataInput>& dataInputZB() const { return dataInputZB_; }

    virtual void editEnable(bool enable);
    bool isEditable() const { return canEdit(); }
    // The edit button's action, on the current view.
    void showOrder();

  protected:
    void layoutSubviews() override;
    void editButtonAction() override { showOrder(); }
    bool isEditor(const ui::View& child) const override { return &child == dataInputZB_.get(); }
    // Touches are ignored while the bar is up.
    bool touchesChoose() const override { return canEdit() && dataInputZB_->isHidden(); }
    bool isPictureChild(const ui::View& view) const override;

  private:
    std::shared_ptr<ZBDataInput> dataInputZB_;
};

} // namespace morvane
