#include <morvane/commerce/QRProfileTbl.h>

#include <morvane/commerce/QRProfileTblCell.h>
#include <morvane/gfx/Font.h>
#include <morvane/sys/Queue.h>

#include <algorithm>

namespace morvane {

QRProfileTbl::QRProfileTbl(const gfx::Color& background) : ui::View(gfx::Rect{}) {
    MORVANE_ASSERT_MAIN_THREAD();
    const double s = gfx::Font::systemFontSize();
    title_ = std::make_shared<ui::Label>();
    title_->setTextColor(gfx::Color::whiteColor());
    title_->setFont(gfx::Font::boldSystemFont(s));
    title_->setTextAlignment(gfx::TextAlignment::Center);
    addSubview(title_);

    subtitle_ = std::make_shared<ui::Label>();
    subtitle_->setTextColor(gfx::Color::whiteColor());
    subtitle_->setFont(gfx::Font::boldSystemFont(0.5 * s));
    subtitle_->setTextAlignment(gfx::TextAlignment::Center);
    addSubview(subtitle_);

    lineLbl_ = std::make_shared<ui::Label>();
    lineLbl_->setBackgroundColor(gfx::Color::whiteColor());
    addSubview(lineLbl_);

    tbl_ = std::make_shared<ui::TableView>(gfx::Rect{}, ui::TableView::Style::Plain);
    tbl_->registerCell<QRProfileTblCell>(QRProfileTblCell::kReuseIdentifier);
    tbl_->setSeparatorStyle(ui::TableView::SeparatorStyle::None);
    // A second touch on a line deselects it, and so shrinks it back.
    tbl_->setAllowsMultipleSelection(true);
    tbl_->setDelegate(this);
    tbl_->setDataSource(this);
    tbl_->setBackgroundColor(gfx::Color::clearColor());
    addSubview(tbl_);

    setBackgroundColor(background);
}

std::shared_ptr<QRProfileTbl> QRProfileTbl::initWithBackgroundColor(const gfx::Color& background) {
    return std::make_shared<QRProfileTbl>(background);
}

QRProfileTbl::~QRProfileTbl() {
    // The table may outlive the list (anyone can hold it).
    tbl_->setDataSource(nullptr);
    tbl_->setDelegate(nullptr);
}

void QRProfileTbl::addTitle(std::string_view text) {
    title_->setText(std::string(text));
}

void QRProfileTbl::addSubTitle(std::string_view text) {
    subtitle_->setText(std::string(text));
}

void QRProfileTbl::addData(std::string_view label, std::string_view value) {
    displayData_.push_back(Node::make({{"key", Value(label)}, {"val", Value(value)}}));
}

void QRProfileTbl::clear() {
    displayData_.clear();
}

void QRProfileTbl::refresh() {
    MORVANE_ASSERT_MAIN_THREAD();
    tbl_->reloadData();
}

double QRProfileTbl::heightFrom(const ui::View& view) const {
    return bounds().height - bottomOf(view);
}

double QRProfileTbl::bottomOf(const ui::View& view, double offset) {
    return view.frame().y + view.frame().height + offset;
}

void QRProfileTbl::addBorder(ui::View& view, double width) {
    view.layer().setBorderColor(gfx::Color::whiteColor());
    view.layer().setBorderWidth(width);
}

const std::string& QRProfileTbl::valueAt(std::size_t line) const {
    static const std::string none;
    if (line >= displayData_.size()) return none;
    const std::string* text = displayData_[line]->get("val").text();
    return text ? *text : none;
}

int QRProfileTbl::numberOfSections(ui::TableView&) {
    return int(displayData_.size());
}

int QRProfileTbl::numberOfRows(ui::TableView&, int) {
    return 1;
}

std::shared_ptr<ui::TableViewCell> QRProfileTbl::cellForRow(ui::TableView& table, ui::IndexPath indexPath) {
    auto cell = table.dequeueReusableCell(QRProfileTblCell::kReuseIdentifier, indexPath);
    const auto line = std::size_t(indexPath.section);
    if (auto row = std::dynamic_pointer_cast<QRProfileTblCell>(cell); row && line < displayData_.size()) {
        const std::string* key = displayData_[line]->get("key").text();
        row->addLeft(key ? *key : std::string());
        row->addRight(valueAt(line));
    }
    return cell;
}

std::optional<double> QRProfileTbl::heightForRow(ui::TableView& table, ui::IndexPath indexPath) {
    auto cell = std::dynamic_pointer_cast<QRProfileTblCell>(
        table.dequeueReusableCell(QRProfileTblCell::kReuseIdentifier));
    if (!cell) return 40;
    // Measured at the width it will be shown at.
    cell->setFrame({0, 0, table.bounds().width, cell->frame().height});
    double height = cell->heightLbl(valueAt(std::size_t(indexPath.section)));
    const auto selected = table.indexPathsForSelectedRows();
    if (std::find(selected.begin(), selected.end(), indexPath) != selected.end()) height *= 1.5;
    return height;
}

std::optional<double> QRProfileTbl::heightForFooter(ui::TableView&, int) {
    return 0;
}

void QRProfileTbl::didSelectRow(ui::TableView& table, ui::IndexPath) {
    table.performBatchUpdates({});
}

void QRProfileTbl::didDeselectRow(ui::TableView& table, ui::IndexPath) {
    table.performBatchUpdates({});
}

void QRProfileTbl::layoutSubviews() {
    const double w = bounds().width;
    const double h = bounds().height;
    const double t = 1.4 * gfx::Font::systemFontSize();
    title_->setFrame({0, 0, w, 1.5 * t});
    lineLbl_->setFrame({0.1 * w, bottomOf(*title_, 0.1 * t), 0.8 * w, 1});
    tbl_->setFrame({0, bottomOf(*lineLbl_, 0.1 * t), w, h - bottomOf(*lineLbl_)});
}

} // namespace morvane
