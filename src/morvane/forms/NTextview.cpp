#include <morvane/forms/NTextview.h>

namespace morvane {

NTextview::NTextview(std::string_view heading, std::string_view field, std::string_view)
    : EditorPanel(heading, CTextview::initWithName(field, "email", false)) {}

std::shared_ptr<NTextview> NTextview::initWithData(std::string_view heading, std::string_view field,
                                                   std::string_view unused) {
    return std::make_shared<NTextview>(heading, field, unused);
}

void NTextview::layoutSubviews() {
    const double w = bounds().width, h = bounds().height;
    title()->setFrame({0.1 * w, 0, 0.8 * w, 0.15 * h});
    field_->setFrame({0.05 * w, 0.15 * h, 0.9 * w, 0.5 * h});
    saveButton_->setFrame({0.55 * w, 0.64 * h, 0.4 * w, 0.15 * h});
    saveButton_->layer().setCornerRadius(0.05 * h);
    cancelBtn()->setFrame({0.12 * w, 0.64 * h, 0.4 * w, 0.15 * h});
    deleteBtn()->setFrame({0, 0.82 * h, w, 0.19 * h});
    layer().setCornerRadius(0.05 * h);
}

} // namespace morvane
