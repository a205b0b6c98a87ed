#include <morvane/commerce/NItemPrice.h>

#include <morvane/components/DispatchGuard.h>
#include <morvane/gfx/Canvas.h>
#include <morvane/gfx/Font.h>
#include <morvane/sys/Queue.h>
#include <morvane/ui/controls/Label.h>

#include <array>

namespace morvane {

namespace {

const std::string kChecked = "\u2713";
const std::string kUnchecked = "\u2718";
// The panel's colour above the DELETE strip.
constexpr gfx::Color kPanel = gfx::Color::fromBytes(213, 213, 226);

// Spaces and tabs at both ends go, line breaks stay: the blanks of Unicode
// (space separators) and the tab, in their UTF-8 forms.
std::string trimBlanks(std::string_view text) {
    static const std::array<std::string_view, 18> blanks = {
        "\t",     " ",      "\u00a0", "\u1680", "\u2000", "\u2001", "\u2002", "\u2003", "\u2004",
        "\u2005", "\u2006", "\u2007", "\u2008", "\u2009", "\u200a", "\u202f", "\u205f", "\u3000"};
    for (bool cut = true; cut && !text.empty();) {
        cut = false;
        for (std::string_view blank : blanks) {
            if (text.starts_with(blank)) {
                text.remove_prefix(blank.size());
                cut = true;
            }
            if (text.ends_with(blank)) {
                text.remove_suffix(blank.size());
                cut = true;
            }
        }
    }
    return std::string(text);
}

std::shared_ptr<ui::Button> button(const std::string& title, const gfx::Font& font) {
    auto b = std::make_shared<ui::Button>();
    b->setTitle(title);
    b->titleLabel()->setFont(font);
    return b;
}

} // namespace

NItemPrice::NItemPrice(std::string_view heading, std::string_view itemLabel, std::string_view priceLabel)
    : ui::View(gfx::Rect{}) {
    MORVANE_ASSERT_MAIN_THREAD();
    const double size = gfx::Font::systemFontSize();
    const gfx::Font bold = gfx::Font::boldSystemFont(size);
    const gfx::Color red = gfx::Color::redColor();

    title_ = button(std::string(heading), bold);
    title_->setTitleColor(red);
    addSubview(title_);

    saveBtn_ = button("Save", bold);
    saveBtn_->setBackgroundColor(red);
    saveBtn_->addAction(ui::ControlEvent::TouchUpInside, [this](ui::Control&) { saveAction(); });
    addSubview(saveBtn_);

    nwBtn_ = button("New", bold);
    nwBtn_->setTitleColor(red);
    nwBtn_->setContentHorizontalAlignment(ui::ContentHorizontalAlignment::Right);
    nwBtn_->addAction(ui::ControlEvent::TouchUpInside, [this](ui::Control&) { createAction(); });
    addSubview(nwBtn_);

    lineBtn_ = std::make_shared<ui::Button>();
    lineBtn_->setBackgroundColor(gfx::Color::lightGrayColor());
    addSubview(lineBtn_);

    delBtn_ = button("DELETE", bold);
    delBtn_->addAction(ui::ControlEvent::TouchUpInside, [this](ui::Control&) { delAction(); });
    addSubview(delBtn_);

    closeBtn_ = button("x", bold);
    closeBtn_->setTitleColor(red);
    closeBtn_->setContentHorizontalAlignment(ui::ContentHorizontalAlignment::Right);
    closeBtn_->addAction(ui::ControlEvent::TouchUpInside, [this](ui::Control&) { cancelAction(); });
    addSubview(closeBtn_);

    // Red until the selection is first set or flipped; blue from then on.
    checkBtn_ = button(kChecked, gfx::Font::boldSystemFont(1.2 * size));
    checkBtn_->setTitleColor(red);
    checkBtn_->setTag(0);
    checkBtn_->addAction(ui::ControlEvent::TouchUpInside, [this](ui::Control&) { checkAction(); });
    addSubview(checkBtn_);

    itemTxt_ = UITxt::initWithName(itemLabel, "item", false);
    // A dish or a trip is named in words: the item field takes letters.
    itemTxt_->setNumeric(false);
    addSubview(itemTxt_);
    priceTxt_ = UITxt::initWithName(priceLabel, "price", false);
    priceTxt_->setNumeric(true);
    addSubview(priceTxt_);

    errorTest();
    setBackgroundColor(gfx::Color::blackColor());
    setClipsToBounds(true);
    watchItem();
}

std::shared_ptr<NItemPrice> NItemPrice::initWithData(std::string_view heading, std::string_view itemLabel,
                                                     std::string_view priceLabel) {
    return std::make_shared<NItemPrice>(heading, itemLabel, priceLabel);
}

NItemPrice::~NItemPrice() {
    // The buttons may outlive the editor: their actions must not reach back.
    for (const auto& b : {saveBtn_, nwBtn_, delBtn_, closeBtn_, checkBtn_})
        b->removeActions(ui::ControlEvent::TouchUpInside);
}

void NItemPrice::errorTest() {
    priceTxt_->watchAction(
        1,
        [](const std::string&, const std::string& text) -> Value {
            if (text == "0000") return List::make({Value("Error"), Value::object(gfx::Color::blueColor())});
            return {};
        },
        [](bool) {});
}

void NItemPrice::watchItem() {
    itemTxt_->watchAction(
        1,
        [used = usedList_](const std::string&, const std::string& text) -> Value {
            if (const ListPtr& names = *used) {
                for (const Value& name : *names)
                    if (const std::string* t = name.text(); t && *t == text)
                        return List::make({Value("Already used"), Value::object(gfx::Color::yellowColor())});
            }
            return {};
        },
        [](bool) {});
}

void NItemPrice::setTop(const Value& text) {
    MORVANE_ASSERT_MAIN_THREAD();
    itemTxt_->addText(text);
}

void NItemPrice::setBottom(const Value& text) {
    MORVANE_ASSERT_MAIN_THREAD();
    priceTxt_->addText(text);
}

void NItemPrice::addUsedList(ListPtr used) {
    MORVANE_ASSERT_MAIN_THREAD();
    *usedList_ = std::move(used);
}

void NItemPrice::setSelection(const std::optional<std::string_view>& selection) {
    MORVANE_ASSERT_MAIN_THREAD();
    checkBtn_->setTag(selection && *selection == "yes" ? 0 : 1);
    checkIt();
}

void NItemPrice::watchAction(int, ItemCB save, ItemCB create, ItemCB del, CancelCB cancel) {
    MORVANE_ASSERT_MAIN_THREAD();
    saveCB_ = std::move(save);
    createCB_ = std::move(create);
    deleteCB_ = std::move(del);
    cancelCB_ = std::move(cancel);
}

void NItemPrice::checkIt() {
    MORVANE_ASSERT_MAIN_THREAD();
    const bool unselected = checkBtn_->tag() != 0;
    checkBtn_->setTitle(unselected ? kUnchecked : kChecked);
    checkBtn_->setTitleColor(unselected ? gfx::Color::redColor() : gfx::Color::blueColor());
}

void NItemPrice::checkAction() {
    MORVANE_ASSERT_MAIN_THREAD();
    checkBtn_->setTag(checkBtn_->tag() == 0 ? 1 : 0);
    checkIt();
}

std::string NItemPrice::selectedText() const {
    return checkBtn_->currentTitle() == kUnchecked ? "no" : "yes";
}

void NItemPrice::report(const ItemCB& callback, const std::string& selected) {
    // Copies first: the callback may refill the editor, replace its callbacks
    // or let go of it.
    DispatchGuard guard(*this);
    const ItemCB call = callback;
    call(tag(), itemTxt_->text(), priceTxt_->text(), selected);
}

void NItemPrice::saveAction() {
    MORVANE_ASSERT_MAIN_THREAD();
    setHidden(true);
    if (!saveCB_) return;
    if (!trimBlanks(itemTxt_->text()).empty())
        report(saveCB_, selectedText());
    else if (deleteCB_)
        report(deleteCB_, selectedText());
}

void NItemPrice::createAction() {
    MORVANE_ASSERT_MAIN_THREAD();
    setHidden(true);
    if (createCB_) report(createCB_, selectedText());
}

void NItemPrice::delAction() {
    MORVANE_ASSERT_MAIN_THREAD();
    setHidden(true);
    if (deleteCB_) report(deleteCB_, "");
}

void NItemPrice::cancelAction() {
    MORVANE_ASSERT_MAIN_THREAD();
    setHidden(true);
    if (!cancelCB_) return;
    DispatchGuard guard(*this);
    const CancelCB call = cancelCB_;
    call(true);
}

void NItemPrice::layoutSubviews() {
    ui::View::layoutSubviews();
    const double w = frame().width;
    const double h = frame().height;
    title_->setFrame({0.1 * w, 0, 0.8 * w, 0.14 * h});
    closeBtn_->setFrame({0.9 * w, 0, 0.05 * w, 0.14 * h});
    itemTxt_->setFrame({0.05 * w, 0.15 * h, 0.9 * w, 0.2 * h});
    priceTxt_->setFrame({0.05 * w, 0.39 * h, 0.9 * w, 0.2 * h});
    saveBtn_->setFrame({0.55 * w, 0.64 * h, 0.4 * w, 0.15 * h});
    checkBtn_->setFrame({0.05 * w, 0.64 * h, 0.1 * w, 0.15 * h});
    nwBtn_->setFrame({0.2 * w, 0.64 * h, 0.28 * w, 0.15 * h});
    lineBtn_->setFrame({0.51 * w, 0.66 * h, 0.01 * w, 0.12 * h});
    delBtn_->setFrame({0.1 * w, 0.82 * h, 0.8 * w, 0.18 * h});
    saveBtn_->layer().setCornerRadius(0.05 * h);
    lineBtn_->layer().setCornerRadius(2);
    layer().setCornerRadius(0.05 * h);
}

void NItemPrice::draw(gfx::Canvas& canvas, const gfx::Rect& rect) {
    ui::View::draw(canvas, rect);
    const double w = bounds().width;
    const double h = bounds().height;
    // The form on the panel colour, the DELETE strip on black, each outlined
    // with a hairline as a fresh context strokes.
    const gfx::Rect form{0, 0, w, 0.82 * h};
    const gfx::Rect strip{0, 0.82 * h, w, 0.18 * h};
    canvas.fillRect(form, kPanel);
    canvas.strokeRect(form, gfx::Color::blackColor(), 1);
    canvas.fillRect(strip, gfx::Color::blackColor());
    canvas.strokeRect(strip, gfx::Color::blackColor(), 1);
}

} // namespace morvane
