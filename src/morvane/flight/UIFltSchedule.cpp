#include <morvane/flight/UIFltSchedule.h>

#include <morvane/sys/Queue.h>

#include <algorithm>
#include <utility>

namespace morvane {

UIFltSchedule::UIFltSchedule(const gfx::Rect& frame) : ui::View(frame) {
    MORVANE_ASSERT_MAIN_THREAD();
    airport_ = UIFltTiny::initWithTitle("airport");
    flightDate_ = UIFltTiny::initWithTitle("flightDate");
    schedule_ = UIFltTiny::initWithTitle("Scheduled");
    actual_ = UIFltTiny::initWithTitle("Actual");
    terminal_ = UIFltTiny::initWithTitle("Terminal");
    gate_ = UIFltTiny::initWithTitle("Gate");
    baggage_ = UIFltTiny::initWithTitle("Baggage");
    for (const auto& row : {airport_, flightDate_, schedule_, actual_, terminal_, gate_, baggage_})
        addSubview(row);
    setClipsToBounds(true);
    pending_ = std::make_shared<Pending>();
}

struct UIFltSchedule::Pending {
    std::mutex mutex;
    // In the order rows were first updated since the last pass.
    std::vector<std::pair<UIFltTiny*, Update>> updates;
    bool passQueued = false;
};

void UIFltSchedule::queue(UIFltTiny& row, Update update) {
    const std::shared_ptr<Pending> pending = pending_;
    // A caption comes into effect only with a value that is a text.
    if (!update.value.isText()) update.caption.reset();
    {
        std::lock_guard lock(pending->mutex);
        // Only the row's latest waiting update is merged into, and only one
        // of the same kind: an emptying pass after a baggage update must not
        // undo the row's showing.
        auto waiting = std::find_if(pending->updates.rbegin(), pending->updates.rend(),
                                    [&row](const auto& entry) { return entry.first == &row; });
        if (waiting == pending->updates.rend() || waiting->second.kind != update.kind) {
            pending->updates.emplace_back(&row, std::move(update));
        } else {
            // A caption the earlier update would have shown survives a later
            // update that gives none.
            Update& earlier = waiting->second;
            if (!update.caption) update.caption = std::move(earlier.caption);
            earlier = std::move(update);
        }
        if (std::exchange(pending->passQueued, true)) return;
    }
    std::weak_ptr<ui::View> weak = weak_from_this();
    sys::Queue::main().async([weak, pending] {
        std::vector<std::pair<UIFltTiny*, Update>> updates;
        {
            std::lock_guard lock(pending->mutex);
            updates.swap(pending->updates);
            pending->passQueued = false;
        }
        auto card = std::static_pointer_cast<UIFltSchedule>(weak.lock());
        if (!card) return;
        for (const auto& [row, update] : updates)
            apply(*card, *row, update);
    });
}

void UIFltSchedule::apply(UIFltSchedule& card, UIFltTiny& row, const Update& update) {
    // A merged caption is shown even when the value that came with it has
    // been replaced by one that is no text.
    if (update.caption && !update.value.isText()) row.title()->setTitle(*update.caption);
    switch (update.kind) {
    case Kind::Plain:
        row.addData(update.caption, update.value);
        break;
    case Kind::Break:
        row.addDataBreak(update.caption, update.value);
        break;
    case Kind::Timed:
        row.addData(update.caption, update.value, update.remark);
        break;
    case Kind::Baggage:
        row.setHidden(true);
        if (update.value.isText()) {
            row.addData(update.caption, update.value);
            row.setHidden(false);
        }
        card.setNeedsLayout();
        break;
    }
}

void UIFltSchedule::addAirport(Caption caption, Value value) {
    queue(*airport_, {Kind::Break, std::move(caption), std::move(value), {}});
}

void UIFltSchedule::addFlightDate(Caption caption, Value value) {
    queue(*flightDate_, {Kind::Plain, std::move(caption), std::move(value), {}});
}

void UIFltSchedule::addSchedule(Caption caption, Value value, Value remark) {
    queue(*schedule_, {Kind::Timed, std::move(caption), std::move(value), std::move(remark)});
}

void UIFltSchedule::addActual(Caption caption, Value value, Value remark) {
    queue(*actual_, {Kind::Timed, std::move(caption), std::move(value), std::move(remark)});
}

void UIFltSchedule::addTerminal(Caption caption, Value value) {
    queue(*terminal_, {Kind::Plain, std::move(caption), std::move(value), {}});
}

void UIFltSchedule::addGate(Caption caption, Value value) {
    queue(*gate_, {Kind::Plain, std::move(caption), std::move(value), {}});
}

void UIFltSchedule::addBaggage(Caption caption, Value value) {
    queue(*baggage_, {Kind::Baggage, std::move(caption), std::move(value), {}});
}

void UIFltSchedule::resetFld() {
    for (const auto& row : {airport_, flightDate_, schedule_, actual_, terminal_, gate_, baggage_})
        queue(*row, {Kind::Plain, std::nullopt, Value(""), {}});
}

void UIFltSchedule::layoutSubviews() {
    const double w = bounds().width, h = bounds().height;
    airport_->setFrame({0, 0.01 * h, w, 0.22 * h});
    flightDate_->setFrame({0, 0.26 * h, w, 0.22 * h});
    schedule_->setFrame({0, 0.44 * h, 0.48 * w, 0.25 * h});
    actual_->setFrame({0.52 * w, 0.44 * h, 0.48 * w, 0.25 * h});
    if (baggage_->isHidden()) {
        terminal_->setFrame({0, 0.72 * h, 0.48 * w, 0.25 * h});
        gate_->setFrame({0.52 * w, 0.72 * h, 0.48 * w, 0.25 * h});
    } else {
        terminal_->setFrame({0.05 * w, 0.72 * h, 0.3 * w, 0.25 * h});
        gate_->setFrame({0.35 * w, 0.72 * h, 0.3 * w, 0.25 * h});
        baggage_->setFrame({0.65 * w, 0.72 * h, 0.3 * w, 0.25 * h});
    }
    layer().setCornerRadius(8);
}

} // namespace morvane
