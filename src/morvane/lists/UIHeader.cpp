#include <morvane/lists/UIHeader.h>

#include <morvane/components/DispatchGuard.h>
#include <morvane/components/MainQueue.h>
#include <morvane/gfx/Font.h>
#include <morvane/gfx/TextMetrics.h>
#include <morvane/media/ImageColor.h>
#include <morvane/media/ResourcePictures.h>
#include <morvane/media/ZBImageModel.h>
#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/sys/Log.h>
#include <morvane/sys/Queue.h>
#include <morvane/util/Txt.h>

#include <cmath>

namespace morvane {

namespace {

// Enough rounds for any host that answers -1 once its segment shows; a host
// that always answers an index would otherwise recurse until the stack ends.
constexpr int kMaxSegmentRounds = 16;

double fontSize(double factor) {
    return factor * gfx::Font::systemFontSize();
}

} // namespace

UIHeader::UIHeader() : UIHeader(gfx::Rect{}) {}

UIHeader::UIHeader(const gfx::Rect& frame) : ui::View(frame) {
    MORVANE_ASSERT_MAIN_THREAD();
    const gfx::Color white = gfx::Color::whiteColor();
    myDict_ = Node::make();
    mySelection_ = List::make();

    titleLbl_ = std::make_shared<ui::Label>();
    titleLbl_->setTextAlignment(gfx::TextAlignment::Left);
    titleLbl_->setFont(gfx::Font::boldSystemFont(fontSize(1.2)));
    titleLbl_->setTextColor(white);
    addSubview(titleLbl_);

    subtitleLbl_ = std::make_shared<ui::TextView>();
    subtitleLbl_->setEditable(false);
    subtitleLbl_->setUserInteractionEnabled(false);
    subtitleLbl_->setBackgroundColor(gfx::Color::clearColor());
    subtitleLbl_->setFont(gfx::Font::italicSystemFont(fontSize(0.75)));
    subtitleLbl_->setTextAlignment(gfx::TextAlignment::Left);
    subtitleLbl_->setTextContainerInset({0, 0, 0, 0});
    subtitleLbl_->setTextColor(white);
    subtitleLbl_->setText("dscr");
    addSubview(subtitleLbl_);

    // The button's own actions and the segment's refer to `this`; they are
    // removed in the destructor, since anyone may hold the controls longer.
    selectionBtn_ = std::make_shared<ui::Button>();
    selectionBtn_->setBackgroundColor(gfx::Color::blackColor());
    selectionBtn_->titleLabel()->setFont(gfx::Font::boldSystemFont(fontSize(0.85)));
    selectionBtn_->titleLabel()->setNumberOfLines(3);
    selectionBtn_->titleLabel()->setTextAlignment(gfx::TextAlignment::Center);
    selectionBtn_->setTitleColor(white);
    selectionBtn_->addAction(ui::ControlEvent::TouchUpInside, [this](ui::Control&) { runAction(); });
    selectionBtn_->setHidden(true);
    addSubview(selectionBtn_);

    photo_ = std::make_shared<ui::ImageView>(ResourcePictures::named("store"));
    photo_->setContentMode(gfx::ContentMode::AspectFill);
    addSubview(photo_);

    toaster_ = std::make_shared<ui::TextField>();
    toaster_->setBackgroundColor(gfx::Color::blackColor());
    toaster_->setEnabled(false);
    toaster_->setFont(gfx::Font::boldSystemFont(fontSize(0.6)));
    toaster_->setTextColor(white);
    toaster_->setHidden(true);
    addSubview(toaster_);

    backBtn_ = std::make_shared<ui::Button>();
    backBtn_->setTitle("←");
    backBtn_->setTitleColor(white);
    backBtn_->titleLabel()->setFont(gfx::Font::boldSystemFont(fontSize(1.5)));
    backBtn_->setContentHorizontalAlignment(ui::ContentHorizontalAlignment::Left);
    backBtn_->setContentVerticalAlignment(ui::ContentVerticalAlignment::Bottom);
    backBtn_->addAction(ui::ControlEvent::TouchUpInside, [this](ui::Control&) { backAction(); });
    backBtn_->setHidden(true);
    addSubview(backBtn_);

    mySegment();
    segmentedControl_->setHidden(true);
    addSubview(segmentedControl_);

    setClipsToBounds(true);
}

UIHeader::~UIHeader() {
    selectionBtn_->removeActions(ui::ControlEvent::TouchUpInside);
    backBtn_->removeActions(ui::ControlEvent::TouchUpInside);
    segmentedControl_->removeActions(ui::ControlEvent::ValueChanged);
}

void UIHeader::mySegment() {
    segmentedControl_ =
        std::make_shared<ui::SegmentedControl>(std::vector<std::string>{"Arrivals", "Departures"});
    segmentedControl_->setSelectedSegmentIndex(0);
    segmentedControl_->setBackgroundColor(gfx::Color::blackColor());
    const ui::TextAttributes attributes{gfx::Font::boldSystemFont(fontSize(0.6)), gfx::Color::whiteColor()};
    segmentedControl_->setTitleTextAttributes(attributes, ui::ControlState::Normal);
    segmentedControl_->setTitleTextAttributes(attributes, ui::ControlState::Selected);
    segmentedControl_->setSelectedSegmentTintColor(gfx::Color::redColor());
    segmentedControl_->addAction(ui::ControlEvent::ValueChanged, [this](ui::Control&) { segmentChanged(); });
}

// ---- Registration ---------------------------------------------------------------

void UIHeader::watch(std::string_view name, ClickCB click, DataCB data) {
    MORVANE_ASSERT_MAIN_THREAD();
    sys::Log::platform("zed: ball " + std::string(name));
    if (click)
        cbClick_.set(name, std::move(click));
    else
        cbClick_.remove(name);
    if (data)
        cbList_.set(name, std::move(data));
    else
        cbList_.remove(name);
}

void UIHeader::watchHdrBack(std::optional<std::string> title, BackCB callback) {
    MORVANE_ASSERT_MAIN_THREAD();
    if (title) backBtn_->setTitle(std::move(*title));
    backCB_ = std::move(callback);
    backBtn_->setHidden(false);
}

void UIHeader::watchSubtitle(long index, SubtitleCB callback) {
    MORVANE_ASSERT_MAIN_THREAD();
    DispatchGuard guard(*this);
    segmentedControl_->setHidden(false);
    segmentedControl_->setSelectedSegmentIndex(int(index));
    // The action runs with the callback stored before: a new owner hears only
    // the taps that come after it registered.
    auto control = segmentedControl_;
    control->sendActions(ui::ControlEvent::ValueChanged);
    subtitleCB_ = std::move(callback);
}

void UIHeader::watchTranslate(TranslateCB translate) {
    MORVANE_ASSERT_MAIN_THREAD();
    translateCB_ = std::move(translate);
}

// ---- Data sets --------------------------------------------------------------------

void UIHeader::addDataWhenSelect(std::string name, Value data) {
    MORVANE_ASSERT_MAIN_THREAD();
    mySelection_->push(Value(name));
    myDict_->set(name, std::move(data));
}

void UIHeader::clear() {
    MORVANE_ASSERT_MAIN_THREAD();
    selectionBtn_->setHidden(true);
    mySelection_->clear();
    myDict_ = Node::make();
}

void UIHeader::refresh() {
    MORVANE_ASSERT_MAIN_THREAD();
    DispatchGuard guard(*this);
    if (mySelection_->empty()) {
        callData(Node::make());
        return;
    }
    mySelection_->sortText(true);
    const long shown = isMatch();
    currentIdx_ = shown < 0 ? 0 : shown;
    addSelection(currentIdx_);
    showButtonWhenChoosing();
}

void UIHeader::refreshDescend() {
    MORVANE_ASSERT_MAIN_THREAD();
    DispatchGuard guard(*this);
    mySelection_->sortText(false);
    currentIdx_ = 0;
    addSelection(0);
    showButtonWhenChoosing();
}

void UIHeader::showButtonWhenChoosing() {
    selectionBtn_->setHidden(mySelection_->size() < 2);
}

std::string UIHeader::nameAt(long index) const {
    if (index < 0 || std::size_t(index) >= mySelection_->size()) return {};
    return mySelection_->at(std::size_t(index)).toText();
}

void UIHeader::addSelection(long index) {
    MORVANE_ASSERT_MAIN_THREAD();
    if (index < 0 || std::size_t(index) >= mySelection_->size()) return;
    DispatchGuard guard(*this);
    const std::string name = nameAt(index);
    const std::string caption = refineText(Txt::splitBy(name, "-"));
    selectionBtn_->setAccessibilityHint(name);
    selectionBtn_->setTitle(caption);
    translateInto(std::string(kTranslateMarker) + caption, [](UIHeader& header, const std::string& text) {
        header.selectionBtn_->setTitle(trim(text));
    });
    selectionBtn_->setHidden(false);
    callData(myDict_->get(name).node());
}

void UIHeader::callData(const NodePtr& data) {
    DispatchGuard guard(*this);
    for (const DataCB& callback : cbList_.snapshot())
        if (callback) callback(data);
}

long UIHeader::isMatch() const {
    const auto& hint = selectionBtn_->accessibilityHint();
    if (!hint) return -1;
    for (std::size_t i = 0; i < mySelection_->size(); ++i)
        if (mySelection_->at(i).toText() == *hint) return long(i);
    return -1;
}

NodePtr UIHeader::findObject(std::string_view name) const {
    return myDict_->nodeLike(name);
}

NodePtr UIHeader::addCurentSel(std::string_view name) {
    MORVANE_ASSERT_MAIN_THREAD();
    if (NodePtr found = findObject(name)) {
        currentSel_ = std::string(name);
        return found;
    }
    currentSel_.reset();
    toast("   Error: " + std::string(name));
    return nullptr;
}

void UIHeader::clearCurentSel() {
    currentSel_.reset();
}

// ---- Content ----------------------------------------------------------------------

void UIHeader::translateInto(const std::string& text,
                             std::function<void(UIHeader&, const std::string&)> apply) {
    if (!translateCB_) return;
    const TranslateCB translate = translateCB_;
    std::weak_ptr<UIHeader> weak = std::static_pointer_cast<UIHeader>(weak_from_this().lock());
    translate(text, [weak, apply](const std::string& translated) {
        postToMain(weak, [apply, translated](UIHeader& header) { apply(header, translated); });
    });
}

void UIHeader::addTitle(std::string_view text) {
    MORVANE_ASSERT_MAIN_THREAD();
    DispatchGuard guard(*this);
    const std::string piece = Txt::splitBy(text, "-");
    titleLbl_->setText(piece);
    translateInto(std::string(kTranslateMarker) + piece, [](UIHeader& header, const std::string& translated) {
        header.titleLbl_->setText(trim(translated));
    });
}

void UIHeader::addSubtitle(std::string_view text) {
    MORVANE_ASSERT_MAIN_THREAD();
    std::string shown;
    shown.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 1 < text.size() && text[i + 1] == 'n') {
            shown += '\n';
            ++i;
        } else {
            shown += text[i];
        }
    }
    subtitleLbl_->setText(std::move(shown));
}

void UIHeader::addImage(std::optional<std::string_view> name, std::optional<std::string_view> stamp) {
    MORVANE_ASSERT_MAIN_THREAD();
    std::weak_ptr<ui::ImageView> weakPhoto = photo_;
    ZBImageModel::loadOnMain(name, stamp, std::weak_ptr<const void>(weakPhoto),
                             [weakPhoto](const gfx::Image& image) {
                                 auto photo = weakPhoto.lock();
                                 if (!photo) return;
                                 // Narrow pictures are shown whole; wide ones are cut to the circle.
                                 photo->setClipsToBounds(image.size().width >= 129);
                                 photo->setImage(image);
                             });
}

void UIHeader::addImage(const gfx::Image& image) {
    MORVANE_ASSERT_MAIN_THREAD();
    photo_->setImage(ImageColor::maskedImageWithcolor(image, gfx::Color::whiteColor()));
}

void UIHeader::toast(std::string_view text) {
    MORVANE_ASSERT_MAIN_THREAD();
    toaster_->setText(std::string(text));
    toaster_->setBackgroundColor(gfx::Color::redColor());
    toaster_->setHidden(false);
    toaster_->setAlpha(0);
    // The strip rises from just below the bar into its bottom edge, stays
    // while the first animation runs, then falls away.
    std::weak_ptr<ui::TextField> weakStrip = toaster_;
    const double bar = bounds().height;
    ui::View::animate(
        2.0,
        [&] {
            const double half = toaster_->bounds().height / 2;
            toaster_->setCenter({toaster_->center().x, bar - half});
            toaster_->setAlpha(1);
        },
        [weakStrip](bool) {
            auto strip = weakStrip.lock();
            if (!strip) return;
            ui::View::animate(
                1.0,
                [&] {
                    strip->setCenter({strip->center().x, strip->center().y + strip->bounds().height / 2});
                    strip->setAlpha(0);
                },
                [weakStrip](bool) {
                    if (auto done = weakStrip.lock()) done->setHidden(true);
                });
        });
}

// ---- Text helpers -----------------------------------------------------------------

std::string UIHeader::trim(std::string_view text) {
    if (text.find('(') == std::string_view::npos) return std::string(text);
    // Every shortest "( ... )" run; like a regular expression's ".", the run
    // does not cross a line break.
    std::string out;
    std::size_t from = 0;
    while (from < text.size()) {
        const std::size_t open = text.find('(', from);
        if (open == std::string_view::npos) break;
        std::size_t close = open + 1;
        while (close < text.size() && text[close] != ')' && text[close] != '\n')
            ++close;
        if (close >= text.size() || text[close] != ')') {
            out.append(text.substr(from, open + 1 - from));
            from = open + 1;
            continue;
        }
        out.append(text.substr(from, open - from));
        from = close + 1;
    }
    out.append(text.substr(std::min(from, text.size())));
    return Txt::trim(out);
}

std::vector<std::string> UIHeader::splitStringInTwo(std::string_view text) {
    const std::string trimmed = Txt::trim(text);
    // Positions count UTF-16 units, as the kit counts characters; spaces are
    // single bytes, so a split never falls inside a character.
    std::vector<std::pair<std::size_t, std::size_t>> spaces; // (unit, byte)
    std::size_t units = 0;
    for (std::size_t i = 0; i < trimmed.size();) {
        const unsigned char c = static_cast<unsigned char>(trimmed[i]);
        const std::size_t length = c < 0x80 ? 1 : c < 0xE0 ? 2 : c < 0xF0 ? 3 : 4;
        if (c == ' ') spaces.push_back({units, i});
        units += length == 4 ? 2 : 1;
        i += length;
    }
    const std::size_t middle = units / 2;
    std::optional<std::pair<std::size_t, std::size_t>> before, after;
    for (const auto& space : spaces) {
        if (space.first < middle)
            before = space;
        else if (!after)
            after = space;
    }
    std::optional<std::pair<std::size_t, std::size_t>> at;
    if (after && (!before || middle - before->first > after->first - middle))
        at = after;
    else
        at = before;
    if (!at) return {trimmed};
    return {trimmed.substr(0, at->second), trimmed.substr(at->second + 1)};
}

std::string UIHeader::refineText(std::string_view text) {
    const std::vector<std::string> parts = splitStringInTwo(text);
    if (parts.size() != 2) return std::string(text);
    sys::Log::platform("First part: " + parts[0]);
    sys::Log::platform("Second part: " + parts[1]);
    return parts[0] + "\n" + parts[1];
}

// ---- Actions ----------------------------------------------------------------------

void UIHeader::backAction() {
    MORVANE_ASSERT_MAIN_THREAD();
    if (!backCB_) return;
    DispatchGuard guard(*this);
    const BackCB call = backCB_;
    call("");
}

void UIHeader::runAction() {
    MORVANE_ASSERT_MAIN_THREAD();
    if (currentIdx_ == -1) return;
    DispatchGuard guard(*this);
    const long count = long(mySelection_->size());
    currentIdx_ = currentIdx_ + 1 <= count - 1 ? currentIdx_ + 1 : 0;
    addSelection(currentIdx_);
    for (const ClickCB& click : cbClick_.snapshot())
        if (click) click(true);
}

void UIHeader::segmentChanged() {
    MORVANE_ASSERT_MAIN_THREAD();
    DispatchGuard guard(*this);
    const int selected = segmentedControl_->selectedSegmentIndex();
    sys::Log::platform("Selected Segment: " + std::to_string(selected));
    const std::string title = segmentedControl_->titleForSegment(selected).value_or("");
    if (!subtitleCB_) return;
    const SubtitleCB call = subtitleCB_;
    const long answer = call(title);
    if (answer == -1) return;
    if (segmentDepth_ >= kMaxSegmentRounds) {
        if (!std::exchange(segmentLoopLogged_, true))
            sys::Log::platform("UIHeader: the segment callback keeps answering an index; stopped after " +
                               std::to_string(kMaxSegmentRounds) + " rounds");
        return;
    }
    ++segmentDepth_;
    segmentedControl_->setSelectedSegmentIndex(int(answer));
    auto control = segmentedControl_;
    control->sendActions(ui::ControlEvent::ValueChanged);
    --segmentDepth_;
}

// ---- Layout -----------------------------------------------------------------------

double UIHeader::getTextHeight() {
    return 2.5 *
           gfx::TextMetrics::size("Sample Text", gfx::Font::systemFont(gfx::Font::systemFontSize())).height;
}

double UIHeader::bottomOf(const ui::View& view, double offset) {
    const gfx::Rect frame = view.frame();
    return frame.y + frame.height + offset;
}

double UIHeader::alignBottom(const ui::View& view, double offset) {
    const gfx::Rect frame = view.frame();
    return frame.y + frame.height - offset;
}

double UIHeader::heightOf(const ui::View& view, double offset) const {
    return bounds().height - bottomOf(view, offset);
}

void UIHeader::addBorder(ui::View& view, double width) {
    view.layer().setBorderColor(gfx::Color::whiteColor());
    view.layer().setBorderWidth(width);
}

void UIHeader::layoutSubviews() {
    const double w = bounds().width;
    const double h = bounds().height;
    const double s = 0.5 * h;
    const double f = 3 * gfx::Font::systemFontSize();
    const double t = getTextHeight();

    backBtn_->setFrame({0.2 * s, 0, w, 0.8 * (h - s)});
    photo_->setFrame({0.2 * s, 0.8 * (h - s), s, s});
    photo_->layer().setCornerRadius(s / 2);
    titleLbl_->setFrame({1.4 * s, photo_->frame().y, w - 1.5 * s, 0.6 * f});
    const double titleBottom = bottomOf(*titleLbl_, 0);
    subtitleLbl_->setFrame({1.5 * s, titleBottom, w - 1.5 * s, h - titleBottom});
    selectionBtn_->setFrame({0.68 * w, 0.8 * (h - t), 0.3 * w, t});
    selectionBtn_->layer().setCornerRadius(t / 2);
    // The strip waits just below the bar, which clips it, until a toast raises it.
    if (!toaster_->hasAnimations()) toaster_->setFrame({0, h, w, 0.5 * f});
    segmentedControl_->setFrame({0.34 * w, h - 0.55 * t, 0.32 * w, 0.5 * t});

    layer().setShadowColor(backgroundColor());
    layer().setShadowOpacity(1);
    layer().setShadowRadius(0.02 * w);
    layer().setShadowOffset({0.02 * w, 0.02 * h});
}

} // namespace morvane
