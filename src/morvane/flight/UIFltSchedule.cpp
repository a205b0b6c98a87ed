#include <morvane/flight/UIFltSchedule.h>

#include <morvane/sys/Queue.h>

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
}

void UIFltSchedule::onMain(std::function<void(UIFltSchedule&)> work) {
    std::weak_ptr<ui::View> weak = weak_from_this();
    sys::Queue::main().async([weak, work = std::move(work)] {
        if (auto self = std::static_pointer_cast<UIFltSchedule>(weak.lock())) work(*self);
    });
}

void UIFltSchedule::addAirport(Caption caption, Value value) {
    onMain([caption = std::move(caption), value = std::move(value)](UIFltSchedule& card) {
        card.airport_->addDataBreak(caption, value);
    });
}

void UIFltSchedule::addFlightDate(Caption caption, Value value) {
    onMain([caption = std::move(caption), value = std::move(value)](UIFltSchedule& card) {
        card.flightDate_->addData(caption, value);
    });
}

void UIFltSchedule::addSchedule(Caption caption, Value value, Value remark) {
    onMain([caption = std::move(caption), value = std::move(value), remark = std::move(remark)](
               UIFltSchedule& card) { card.schedule_->addData(caption, value, remark); });
}

void UIFltSchedule::addActual(Caption caption, Value value, Value remark) {
    onMain([caption = std::move(caption), value = std::move(value), remark = std::move(remark)](
               UIFltSchedule& card) { card.actual_->addData(caption, value, remark); });
}

void UIFltSchedule::addTerminal(Caption caption, Value value) {
    onMain([caption = std::move(caption), value = std::move(value)](UIFltSchedule& card) {
        card.terminal_->addData(caption, value);
    });
}

void UIFltSchedule::addGate(Caption caption, Value value) {
    onMain([caption = std::move(caption), value = std::move(value)](UIFltSchedule& card) {
        card.gate_->addData(caption, value);
    });
}

void UIFltSchedule::addBaggage(Caption caption, Value value) {
    onMain([caption = std::move(caption), value = std::move(value)](UIFltSchedule& card) {
        card.baggage_->setHidden(true);
        if (value.isText()) {
            card.baggage_->addData(caption, value);
            card.baggage_->setHidden(false);
        }
        card.setNeedsLayout();
    });
}

void UIFltSchedule::resetFld() {
    onMain([](UIFltSchedule& card) {
        for (const auto& row : {card.airport_, card.flightDate_, card.schedule_, card.actual_, card.terminal_,
                                card.gate_, card.baggage_})
            row->addData(std::nullopt, Value(""));
    });
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
