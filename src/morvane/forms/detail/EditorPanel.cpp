#include <morvane/forms/detail/EditorPanel.h>

#include <morvane/gfx/Font.h>
#include <morvane/sys/Queue.h>
#include <morvane/ui/controls/Label.h>

namespace morvane::detail {

EditorPanel::EditorPanel(std::string_view heading, std::shared_ptr<InputField> field)
    : ui::View(gfx::Rect{}), field_(std::move(field)) {
    const gfx::Font bold = gfx::Font::boldSystemFont(gfx::Font::systemFontSize());
    title_ = std::make_shared<ui::Button>();
    title_->setTitle(std::string(heading));
    title_->setTitleColor(gfx::Color::redColor());
    title_->titleLabel()->setFont(bold);
    addSubview(title_);
    saveButton_ = std::make_shared<ui::Button>();
    saveButton_->setBackgroundColor(gfx::Color::redColor());
    saveButton_->setTitle("Save");
    saveButton_->titleLabel()->setFont(bold);
    saveButton_->addAction(ui::ControlEvent::TouchUpInside, [this](ui::Control&) { saveAction(); });
    addSubview(saveButton_);
    deleteBtn_ = std::make_shared<ui::Button>();
    deleteBtn_->setTitle("DELETE");
    deleteBtn_->titleLabel()->setFont(bold);
    deleteBtn_->setBackgroundColor(gfx::Color::blackColor());
    deleteBtn_->addAction(ui::ControlEvent::TouchUpInside, [this](ui::Control&) { deleteAction(); });
    addSubview(deleteBtn_);
    cancelBtn_ = std::make_shared<ui::Button>();
    cancelBtn_->setTitle("Cancel");
    cancelBtn_->setTitleColor(gfx::Color::redColor());
    cancelBtn_->setContentHorizontalAlignment(ui::ContentHorizontalAlignment::Right);
    cancelBtn_->titleLabel()->setFont(bold);
    cancelBtn_->addAction(ui::ControlEvent::TouchUpInside, [this](ui::Control&) { cancelAction(); });
    addSubview(cancelBtn_);
    addSubview(field_);
    setClipsToBounds(true);
    setBackgroundColor(gfx::Color::fromBytes(213, 213, 226));
}

EditorPanel::~EditorPanel() {
    // The buttons may outlive the panel: their actions must not reach back.
    for (const auto& button : {saveButton_, deleteBtn_, cancelBtn_})
        button->removeActions(ui::ControlEvent::TouchUpInside);
}

void EditorPanel::addData(std::string_view text) {
    field_->txt()->setText(std::string(text));
}

void EditorPanel::watchAction(int, SaveCB save, DoneCB del, DoneCB cancel) {
    saveCB_ = std::move(save);
    deleteCB_ = std::move(del);
    cancelCB_ = std::move(cancel);
}

void EditorPanel::saveAction() {
    MORVANE_ASSERT_MAIN_THREAD();
    field_->resign();
    if (!saveCB_) return;
    auto keep = weak_from_this().lock();
    SaveCB save = saveCB_;
    save(field_->txt()->text());
}

void EditorPanel::deleteAction() {
    MORVANE_ASSERT_MAIN_THREAD();
    field_->resign();
    if (!deleteCB_) return;
    auto keep = weak_from_this().lock();
    DoneCB done = deleteCB_;
    done(true);
}

void EditorPanel::cancelAction() {
    MORVANE_ASSERT_MAIN_THREAD();
    field_->resign();
    if (!cancelCB_) return;
    auto keep = weak_from_this().lock();
    DoneCB done = cancelCB_;
    done(true);
}

} // namespace morvane::detail
