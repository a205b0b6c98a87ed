#pragma once
// EditLayer: the editing model of UMEdit on a plain (non-scrolling) view,
// with the UIDataInput bar as its text editor. A touch in edit mode chooses a
// child, the "↑" button opens the bar for a text child or the camera for an
// image view (a ZBImage is no picture here), and saves and deletes reach the
// two hooks; a cancel reports nothing.
//
//   class Badge : public EditLayer {
//       void txtChanged(const std::string& text, ui::View& view) override { ... }
//   };
//   badge->edit(true);
//
// Threads: main thread only. The hooks may call any operation of the layer.

#include <morvane/forms/UIDataInput.h>
#include <morvane/forms/detail/EditCanvas.h>
#include <morvane/ui/core/View.h>

#include <memory>

namespace morvane {

class EditLayer : public detail::EditCanvas<ui::View> {
  public:
    explicit EditLayer(const gfx::Rect& frame = {});
    ~EditLayer() override;

    const std::shared_ptr<UIDataInput>& nTextview() const { return nTextview_; }

    // The edit button's action, on the current view.
    void showOrder();

  protected:
    void layoutSubviews() override;
    void editButtonAction() override { showOrder(); }
    bool isEditor(const ui::View& child) const override { return &child == nTextview_.get(); }
    // Touches are ignored while the bar is up.
    bool touchesChoose() const override { return canEdit() && nTextview_->isHidden(); }
    bool isPictureChild(const ui::View& view) const override;

  private:
    std::shared_ptr<UIDataInput> nTextview_;
};

} // namespace morvane
