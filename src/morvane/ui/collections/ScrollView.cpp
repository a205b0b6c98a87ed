#include <morvane/ui/collections/ScrollView.h>

#include <morvane/gfx/Canvas.h>
#include <morvane/sys/Clock.h>
#include <morvane/sys/Timer.h>
#include <morvane/ui/controls/RefreshControl.h>
#include <morvane/ui/core/GestureRecognizer.h>
#include <morvane/ui/core/Touch.h>

#include <algorithm>
#include <cmath>

namespace morvane::ui {

namespace {

constexpr double kFrameInterval = 1.0 / 60;
// Below this speed (points per second) a glide stops.
constexpr double kStopSpeed = 8;
// How fast content past an edge is pulled back (per second, exponential).
constexpr double kSpringRate = 14;
// Past an edge a dragged finger moves the content this much less.
constexpr double kRubberBand = 0.5;
// Only finger samples this recent count towards the release speed.
constexpr double kVelocityWindow = 0.1;
constexpr double kIndicatorWidth = 3;

bool finite(gfx::Point p) {
    return std::isfinite(p.x) && std::isfinite(p.y);
}

} // namespace

// The drag recogniser: forwards a touch's steps to the scroll view and
// claims the touch once the scroll view calls it a drag.
namespace detail {

class ScrollPan : public GestureRecognizer {
  public:
    explicit ScrollPan(ScrollView& scroll) : scroll_(scroll) {}

  protected:
    void touchBegan(const Touch& touch) override { scroll_.panBegan(touch); }
    void touchMoved(const Touch& touch) override {
        if (scroll_.panMoved(touch)) setState(state() == State::Possible ? State::Began : State::Changed);
    }
    void touchEnded(const Touch& touch) override {
        if (state() == State::Possible) return setState(State::Failed);
        scroll_.panEnded(touch);
        setState(State::Ended);
    }
    void touchCancelled(const Touch&) override {
        if (state() != State::Possible) scroll_.panCancelled();
        setState(State::Cancelled);
    }

  private:
    ScrollView& scroll_;
};

} // namespace detail

ScrollView::ScrollView() {
    setClipsToBounds(true);
    indicator_ = std::make_shared<View>();
    indicator_->setBackgroundColor(gfx::Color::gray(0, 0.35));
    indicator_->layer().setCornerRadius(kIndicatorWidth / 2);
    indicator_->setUserInteractionEnabled(false);
    indicator_->setHidden(true);
    addSubview(indicator_);
    addGestureRecognizer(std::make_shared<detail::ScrollPan>(*this));
}

ScrollView::ScrollView(const gfx::Rect& frame) : ScrollView() {
    setFrame(frame);
}

ScrollView::~ScrollView() {
    if (timer_) timer_->invalidate();
}

void ScrollView::setContentSize(gfx::Size size) {
    if (!(size.width >= 0) || !std::isfinite(size.width)) size.width = 0;
    if (!(size.height >= 0) || !std::isfinite(size.height)) size.height = 0;
    if (size == contentSize_) return;
    contentSize_ = size;
    // What a subclass draws is laid out on the content.
    setNeedsDisplay();
    if (!dragging_ && !decelerating_) {
        gfx::Point c = clamped(contentOffset());
        if (c != contentOffset()) applyOffset(c);
    }
    setNeedsLayout();
}

void ScrollView::setContentInset(const gfx::Insets& inset) {
    contentInset_ = inset;
    setNeedsLayout();
}

gfx::Insets ScrollView::adjustedContentInset() const {
    gfx::Insets inset = contentInset_;
    if (refreshControl_ && refreshControl_->isRefreshing()) inset.top += RefreshControl::kHeight;
    return inset;
}

gfx::Point ScrollView::minimumContentOffset() const {
    gfx::Insets inset = adjustedContentInset();
    return {-inset.left, -inset.top};
}

gfx::Point ScrollView::maximumContentOffset() const {
    gfx::Insets inset = adjustedContentInset();
    gfx::Point low = minimumContentOffset();
    return {std::max(low.x, contentSize_.width + inset.right - bounds().width),
            std::max(low.y, contentSize_.height + inset.bottom - bounds().height)};
}

gfx::Point ScrollView::clamped(gfx::Point offset) const {
    gfx::Point low = minimumContentOffset();
    gfx::Point high = maximumContentOffset();
    return {std::clamp(offset.x, low.x, high.x), std::clamp(offset.y, low.y, high.y)};
}

bool ScrollView::canScrollVertically() const {
    return alwaysBounceVertical_ || maximumContentOffset().y > minimumContentOffset().y;
}

bool ScrollView::canScrollHorizontally() const {
    return maximumContentOffset().x > minimumContentOffset().x;
}

void ScrollView::setShowsVerticalScrollIndicator(bool shows) {
    showsVertical_ = shows;
    layoutIndicators();
}

void ScrollView::setShowsHorizontalScrollIndicator(bool shows) {
    showsHorizontal_ = shows;
    layoutIndicators();
}

void ScrollView::setContentOffset(gfx::Point offset, bool animated) {
    if (!finite(offset)) return;
    stopScrolling();
    if (!animated) {
        applyOffset(offset);
        return;
    }
    // An animated move is a glide with a fixed end: step() eases towards it.
    gfx::Point from = contentOffset();
    double start = sys::Clock::now();
    decelerating_ = true;
    std::weak_ptr<View> weak = weak_from_this();
    timer_ = sys::Timer::schedule(
        kFrameInterval, sys::Timer::Repeat::Repeating, [weak, from, offset, start](sys::Timer& timer) {
            auto self = std::static_pointer_cast<ScrollView>(weak.lock());
            if (!self) return timer.invalidate();
            double t = std::clamp((sys::Clock::now() - start) / 0.3, 0.0, 1.0);
            double e = t * t * (3 - 2 * t);
            self->applyOffset({from.x + (offset.x - from.x) * e, from.y + (offset.y - from.y) * e});
            if (t >= 1) {
                timer.invalidate();
                self->decelerating_ = false;
                self->layoutIndicators();
            }
        });
}

void ScrollView::applyOffset(gfx::Point offset) {
    if (!finite(offset)) return;
    gfx::Rect b = bounds();
    if (offset != b.origin()) setBounds({offset.x, offset.y, b.width, b.height});
    layoutIndicators();
    if (refreshControl_) refreshControl_->pulled(-(offset.y + contentInset_.top), dragging_);
    contentOffsetChanged();
    if (delegate_) delegate_->scrollViewDidScroll(*this);
}

void ScrollView::stopScrolling() {
    if (timer_) timer_->invalidate();
    timer_.reset();
    if (decelerating_) {
        decelerating_ = false;
        layoutIndicators();
    }
}

void ScrollView::setRefreshControl(std::shared_ptr<RefreshControl> control) {
    if (refreshControl_) refreshControl_->removeFromSuperview();
    refreshControl_ = std::move(control);
    if (refreshControl_) {
        insertSubview(refreshControl_, 0);
        alwaysBounceVertical_ = true;
    }
    setNeedsLayout();
}

void ScrollView::refreshInsetChanged() {
    // Beginning a refresh while the content rests at the top shows the
    // control; ending it lets the content move back up.
    if (dragging_) return;
    gfx::Point offset = contentOffset();
    gfx::Point target = clamped(offset);
    if (refreshControl_ && refreshControl_->isRefreshing() &&
        offset.y <= minimumContentOffset().y + RefreshControl::kHeight)
        target.y = minimumContentOffset().y;
    if (target != offset) setContentOffset(target, true);
}

void ScrollView::layoutSubviews() {
    if (refreshControl_) {
        refreshControl_->setFrame(
            {0, -RefreshControl::kHeight - contentInset_.top, bounds().width, RefreshControl::kHeight});
    }
    layoutIndicators();
}

void ScrollView::layoutIndicators() {
    gfx::Rect b = bounds();
    bool moving = dragging_ || decelerating_;
    bool tall = contentSize_.height > b.height && b.height > 0;
    bool show = showsVertical_ && moving && tall;
    indicator_->setHidden(!show);
    if (!show) return;
    if (subviews().back() != indicator_) bringSubviewToFront(indicator_.get());
    double track = b.height - 4;
    double length = std::max(20.0, track * b.height / contentSize_.height);
    double range = contentSize_.height - b.height;
    double progress = range > 0 ? std::clamp(b.y / range, 0.0, 1.0) : 0;
    indicator_->setFrame({b.x + b.width - kIndicatorWidth - 2, b.y + 2 + (track - length) * progress,
                          kIndicatorWidth, length});
}

// ---- Touches --------------------------------------------------------------------

void ScrollView::touchesBegan(const Touches& touches) {
    if (touches.empty()) return;
    tracking_ = true;
    contentTouchBegan(touches.front().locationIn(this));
}

void ScrollView::touchesMoved(const Touches&) {
    // Movement is the pan recogniser's: a touch that moves far enough is
    // claimed by it, and this view is told the touch was cancelled.
}

void ScrollView::touchesEnded(const Touches& touches) {
    if (!tracking_ || touches.empty()) return;
    tracking_ = false;
    if (refreshControl_) refreshControl_->touchEnded();
    contentTapped(touches.front().locationIn(this));
}

void ScrollView::touchesCancelled(const Touches&) {
    if (!tracking_) return;
    tracking_ = false;
    contentTouchCancelled();
}

void ScrollView::panBegan(const Touch& touch) {
    // A touch catches a gliding content where it is.
    stopScrolling();
    dragging_ = false;
    horizontalDrag_ = false;
    touchStart_ = touch.locationIn(nullptr);
    offsetAtStart_ = contentOffset();
    samples_.assign(1, {touch.timestamp(), touchStart_});
}

bool ScrollView::panMoved(const Touch& touch) {
    gfx::Point location = touch.locationIn(nullptr);
    gfx::Point previous = touch.previousLocationIn(nullptr);
    samples_.push_back({touch.timestamp(), location});
    if (samples_.size() > 16) samples_.erase(samples_.begin());
    double dx = location.x - touchStart_.x;
    double dy = location.y - touchStart_.y;

    if (!dragging_ && !horizontalDrag_) {
        if (std::hypot(dx, dy) < kDragThreshold) return false;
        gfx::Point startInContent = convertPointFrom(touchStart_, nullptr);
        if (std::abs(dx) > std::abs(dy) && !canScrollHorizontally() && beginHorizontalDrag(startInContent)) {
            horizontalDrag_ = true;
        } else if (scrollEnabled_) {
            dragging_ = true;
            if (delegate_) delegate_->scrollViewWillBeginDragging(*this);
        } else {
            return false;
        }
        contentTouchCancelled();
    }
    if (horizontalDrag_) {
        horizontalDragMoved(dx);
        return true;
    }

    gfx::Point offset = contentOffset();
    gfx::Point low = minimumContentOffset();
    gfx::Point high = maximumContentOffset();
    auto move = [&](double value, double delta, double lo, double hi, bool can) {
        if (!can) return value;
        double next = value - delta;
        if (next < lo || next > hi) {
            if (!bounces_) return std::clamp(next, lo, hi);
            next = value - delta * kRubberBand;
        }
        return next;
    };
    offset.x = move(offset.x, location.x - previous.x, low.x, high.x, canScrollHorizontally());
    offset.y = move(offset.y, location.y - previous.y, low.y, high.y, canScrollVertically());
    applyOffset(offset);
    return true;
}

void ScrollView::panEnded(const Touch& touch) {
    tracking_ = false;
    gfx::Point end = touch.locationIn(nullptr);
    // The release speed: from the oldest recent sample to the lift.
    gfx::Point speed;
    for (auto& s : samples_) {
        double dt = touch.timestamp() - s.time;
        if (dt > kVelocityWindow) continue;
        if (dt > 0) speed = {(end.x - s.location.x) / dt, (end.y - s.location.y) / dt};
        break;
    }
    if (horizontalDrag_) {
        horizontalDrag_ = false;
        horizontalDragEnded(end.x - touchStart_.x, speed.x);
        return;
    }
    if (!dragging_) return;
    dragging_ = false;
    gfx::Point velocity{canScrollHorizontally() ? -speed.x : 0, canScrollVertically() ? -speed.y : 0};
    if (refreshControl_) refreshControl_->touchEnded();
    bool glide =
        std::hypot(velocity.x, velocity.y) > kStopSpeed || clamped(contentOffset()) != contentOffset();
    if (delegate_) delegate_->scrollViewDidEndDragging(*this, glide);
    if (glide)
        beginGlide(velocity);
    else
        layoutIndicators();
}

void ScrollView::panCancelled() {
    tracking_ = false;
    if (horizontalDrag_) {
        horizontalDrag_ = false;
        horizontalDragEnded(0, 0);
        return;
    }
    bool wasDragging = dragging_;
    dragging_ = false;
    if (refreshControl_) refreshControl_->touchEnded();
    if (wasDragging) beginGlide({});
}

// ---- Gliding ----------------------------------------------------------------------

void ScrollView::beginGlide(gfx::Point velocity) {
    stopScrolling();
    velocity_ = velocity;
    decelerating_ = true;
    lastStep_ = sys::Clock::now();
    std::weak_ptr<View> weak = weak_from_this();
    timer_ = sys::Timer::schedule(kFrameInterval, sys::Timer::Repeat::Repeating, [weak](sys::Timer& timer) {
        auto self = std::static_pointer_cast<ScrollView>(weak.lock());
        if (!self) return timer.invalidate();
        self->step();
    });
    layoutIndicators();
}

void ScrollView::step() {
    double now = sys::Clock::now();
    double dt = std::clamp(now - lastStep_, 0.0, 0.1);
    lastStep_ = now;
    if (dt <= 0) return;
    gfx::Point offset = contentOffset();
    gfx::Point target = clamped(offset);
    auto axis = [&](double& value, double& velocity, double rest) {
        if (value != rest) {
            // Past an edge: the speed dies quickly and a spring pulls back.
            velocity *= std::exp(-dt * 20);
            value += velocity * dt;
            value += (rest - value) * (1 - std::exp(-dt * kSpringRate));
            if (std::abs(rest - value) < 0.5 && std::abs(velocity) < kStopSpeed * 4) {
                value = rest;
                velocity = 0;
            }
        } else {
            value += velocity * dt;
            velocity *= std::pow(kDecelerationRate, dt * 1000);
        }
    };
    axis(offset.x, velocity_.x, target.x);
    axis(offset.y, velocity_.y, target.y);
    if (!bounces_) {
        // Without bouncing an edge simply stops the glide.
        gfx::Point c = clamped(offset);
        if (c.x != offset.x) velocity_.x = 0;
        if (c.y != offset.y) velocity_.y = 0;
        offset = c;
    }
    applyOffset(offset);
    bool still = std::hypot(velocity_.x, velocity_.y) < kStopSpeed;
    if (still && clamped(offset) == offset) settle();
}

void ScrollView::settle() {
    if (timer_) timer_->invalidate();
    timer_.reset();
    decelerating_ = false;
    velocity_ = {};
    layoutIndicators();
    if (delegate_) delegate_->scrollViewDidEndDecelerating(*this);
}

void ScrollView::draw(gfx::Canvas&, const gfx::Rect&) {}

gfx::Rect ScrollView::drawingRect() const {
    return View::drawingRect().united(gfx::Rect{{0, 0}, contentSize_}.insetBy(-1, -1));
}

} // namespace morvane::ui
