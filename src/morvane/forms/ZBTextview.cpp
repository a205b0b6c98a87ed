#include <morvane/forms/ZBTextview.h>

#include <morvane/gfx/Font.h>

namespace morvane {

ZBTextview::ZBTextview(std::string_view heading, std::string_view field, std::string_view)
    : EditorPanel(heading, ZBInput::initWithName(field, "email", false)) {}

std::shared_ptr<ZBTextview> ZBTextview::initWithData(std::string_view heading, std::string_view field,
                                                     std::string_view unused) {
    return std::make_shared<ZBTextview>(heading, field, unused);
}

void ZBTextview::layoutSubviews() {
    const double w = bounds().width, h = bounds().height, b = 2.8 * gfx::Font::systemFontSize();
    title()->setFrame({0.1 * w, 0, 0.8 * w, b});
    field_->setFrame({0.05 * w, b, 0.9 * w, h - 3.1 * b});
    saveButton_->setFrame({w - 4 * b, h - 2.4 * b, 3 * b, b});
    saveButton_->layer().setCornerRadius(b / 2);
    cancelBtn()->setFrame({w - 7.2 * b, h - 2.4 * b, 3 * b, b});
    deleteBtn()->setFrame({0, h - 1.2 * b, w, 1.2 * b});
    layer().setCornerRadius(0.025 * h);
}

} // namespace morvane
