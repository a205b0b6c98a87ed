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
#include <morvane/gfx/Image.h>
#include <morvane/media/NCamera.h>
#include <morvane/ui/collections/ScrollView.h>
#include <morvane/ui/controls/Button.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace morvane {

class UMEdit : public ui::ScrollView {
  public:
    // Replaces the built-in camera: gets the picture child's accessibility hint.
    using CameraCB = std::function<void(const std::optional<std::string>& hint)>;
    using DscrCB = std::function<void(const std::string& text)>;

    explicit UMEdit(const gfx::Rect& frame = {});
    ~UMEdit() override;

    const std::shared_ptr<ui::Button>& editBtn() const { return editBtn_; }
    // The child chosen by the last touch in edit mode (the canvas itself when
    // it hit none); nothing before the first.
    ui::View* currentView() const;
    const std::shared_ptr<ZBDataInput>& dataInputZB() const { return dataInputZB_; }
    const std::shared_ptr<NCamera>& camera() const { return camera_; }
    bool canEdit() const { return canEdit_; }

    virtual void editEnable(bool enable);
    bool isEditable() const { return canEdit_; }
    void startEditor();
    void stopEditor();
    void edit(bool on);
    void moreAction();
    void editCallback(bool) {}
    void watchCamera2(CameraCB callback) { cameraCB_ = std::move(callback); }
    // Kept for the application; the canvas never calls it.
    void watchDscrCB(DscrCB callback) { dscrCB_ = std::move(callback); }

    // The view's text when it is a text child; others are left alone.
    static void setVal(ui::View& view, std::string_view text);
    // The text of `view` when the current view is a text child.
    std::optional<std::string> getVal(const ui::View& view) const;
    // The edit button's action, on the current view.
    void showOrder();
    void clearFocus();
    void focusView(ui::View& view);
    // The child chosen for a touch at the point (canvas coordinates); the
    // canvas itself when none.
    ui::View& searchView(gfx::Point point);
    // True when the point's y lies strictly between the rectangle's top and bottom.
    static bool inside(const gfx::Rect& rect, gfx::Point point);

    // The hooks: nothing here.
    virtual void txtChanged(const std::string& text, ui::View& view);
    virtual void imageChanged(const gfx::Image& image, ui::View& view);

    void touchesBegan(const ui::Touches& touches) override;
    void touchesMoved(const ui::Touches& touches) override;
    void touchesEnded(const ui::Touches& touches) override;

    static bool isTextChild(const ui::View& view);
    static bool isPictureChild(const ui::View& view);

  protected:
    void layoutSubviews() override;

  private:
    void watchDscr();
    void watchCamera();
    std::shared_ptr<ui::Button> editBtn_;
    // The chosen child, held; or the canvas itself, which holding would tie
    // the canvas to itself.
    std::shared_ptr<ui::View> currentChild_;
    bool currentIsCanvas_ = false;
    std::shared_ptr<ZBDataInput> dataInputZB_;
    std::shared_ptr<NCamera> camera_;
    DscrCB dscrCB_;
    CameraCB cameraCB_;
    bool canEdit_ = false;
};

} // namespace morvane
