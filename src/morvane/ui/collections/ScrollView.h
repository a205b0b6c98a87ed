#pragma once
// A view whose children are a larger content area, moved under a fixed
// viewport by dragging. The content offset is the bounds origin, so children
// are placed in content coordinates and simply appear shifted.
//
//   auto scroll = std::make_shared<ui::ScrollView>(gfx::Rect{0, 0, 390, 844});
//   scroll->setContentSize({390, 3000});
//   scroll->addSubview(longColumn);
//
// A drag moves the content with the finger (rubber-banding past the edges
// when bouncing is on); letting go with speed keeps it gliding and slowing
// down on the kit's clock, and content pulled past an edge springs back. An
// attached RefreshControl sits above the content and fires when pulled far
// enough. Subclasses (tables, grids) override scrollViewDidScroll hooks via
// contentOffsetChanged and handle taps with the touch hooks below.

#include <morvane/gfx/Geometry.h>
#include <morvane/ui/core/View.h>

#include <memory>
#include <vector>

namespace morvane::sys {
class Timer;
}

namespace morvane::ui {

namespace detail {
class ScrollPan;
}
class RefreshControl;
class ScrollView;

// Told about scrolling. Every answer is optional.
class ScrollViewDelegate {
  public:
    virtual ~ScrollViewDelegate() = default;
    virtual void scrollViewDidScroll(ScrollView&) {}
    virtual void scrollViewWillBeginDragging(ScrollView&) {}
    virtual void scrollViewDidEndDragging(ScrollView&, bool /*willDecelerate*/) {}
    virtual void scrollViewDidEndDecelerating(ScrollView&) {}
};

class ScrollView : public View {
  public:
    // A finger must move this far before a touch becomes a drag.
    static constexpr double kDragThreshold = 8;
    // Velocity kept per millisecond of gliding (the platform's normal rate).
    static constexpr double kDecelerationRate = 0.998;

    ScrollView();
    explicit ScrollView(const gfx::Rect& frame);
    ~ScrollView() override;

    gfx::Size contentSize() const { return contentSize_; }
    void setContentSize(gfx::Size size);
    gfx::Point contentOffset() const { return bounds().origin(); }
    // Moves the content; animated moves take a third of a second.
    void setContentOffset(gfx::Point offset, bool animated = false);
    // Extra room around the content (the refresh control adds its height on top while refreshing).
    const gfx::Insets& contentInset() const { return contentInset_; }
    void setContentInset(const gfx::Insets& inset);
    // The inset in effect: contentInset plus room for a refreshing control.
    gfx::Insets adjustedContentInset() const;
    // The smallest and largest offsets the content rests at.
    gfx::Point minimumContentOffset() const;
    gfx::Point maximumContentOffset() const;

    bool bounces() const { return bounces_; }
    void setBounces(bool bounces) { bounces_ = bounces; }
    // Lets a short content be pulled vertically too (needed for pull to refresh).
    bool alwaysBounceVertical() const { return alwaysBounceVertical_; }
    void setAlwaysBounceVertical(bool bounce) { alwaysBounceVertical_ = bounce; }
    bool isScrollEnabled() const { return scrollEnabled_; }
    void setScrollEnabled(bool enabled) { scrollEnabled_ = enabled; }
    bool showsVerticalScrollIndicator() const { return showsVertical_; }
    void setShowsVerticalScrollIndicator(bool shows);
    bool showsHorizontalScrollIndicator() const { return showsHorizontal_; }
    void setShowsHorizontalScrollIndicator(bool shows);

    bool isDragging() const { return dragging_; }
    bool isDecelerating() const { return decelerating_; }
    // Ends gliding or a running spring-back where the content is now.
    void stopScrolling();

    // Not owned. Virtual: a table or grid set through a ScrollView& takes the
    // delegate as its own delegate too, so the two never disagree.
    ScrollViewDelegate* delegate() const { return delegate_; }
    virtual void setDelegate(ScrollViewDelegate* delegate) { delegate_ = delegate; }

    const std::shared_ptr<RefreshControl>& refreshControl() const { return refreshControl_; }
    void setRefreshControl(std::shared_ptr<RefreshControl> control);

    void touchesBegan(const Touches& touches) override;
    void touchesMoved(const Touches& touches) override;
    void touchesEnded(const Touches& touches) override;
    void touchesCancelled(const Touches& touches) override;
    void draw(gfx::Canvas& canvas, const gfx::Rect& rect) override;
    // A subclass draws on the content (a text view's text), which may reach past the bounds.
    gfx::Rect drawingRect() const override;
    // The content and a subclass's drawing are placed in content coordinates.
    bool slidesContent() const override { return true; }

  protected:
    void layoutSubviews() override;
    // Told after every change of the content offset.
    virtual void contentOffsetChanged() {}
    // The content's own touch hooks, beside View's touchesBegan... which the
    // scroll view itself handles to tell taps from drags.
    // A touch that ended without becoming a drag (location in content coordinates).
    virtual void contentTapped(gfx::Point) {}
    // A touch that began; subclasses may track it (location in content coordinates).
    virtual void contentTouchBegan(gfx::Point) {}
    // The touch became a drag or was cancelled: no tap will follow.
    virtual void contentTouchCancelled() {}
    // A horizontal drag that the subclass takes over (swiping a row). Return
    // true from beginHorizontalDrag to claim it; the scroll view then leaves
    // the offset alone and forwards the movement until the touch ends.
    virtual bool beginHorizontalDrag(gfx::Point) { return false; }
    virtual void horizontalDragMoved(double /*dx*/) {}
    virtual void horizontalDragEnded(double /*dx*/, double /*velocity*/) {}
    // Sets the offset without stopping a glide (bounds origin and hooks).
    void applyOffset(gfx::Point offset);

  protected:
    // The scroll indicator is one of the view's children: subclasses that
    // walk their children can tell it apart.
    const View* scrollIndicator() const { return indicator_.get(); }

  private:
    friend class RefreshControl;
    friend class detail::ScrollPan;
    // Dragging is recognised by a pan recogniser on the scroll view, so that a
    // drag starting on a button inside still scrolls (the button is cancelled).
    void panBegan(const Touch& touch);
    // True once the touch is a drag (the recogniser then claims it).
    bool panMoved(const Touch& touch);
    void panEnded(const Touch& touch);
    void panCancelled();
    struct Sample {
        double time;
        gfx::Point location;
    };
    gfx::Point clamped(gfx::Point offset) const;
    bool canScrollVertically() const;
    bool canScrollHorizontally() const;
    void beginGlide(gfx::Point velocity);
    void step();
    void settle();
    void refreshInsetChanged();
    void layoutIndicators();

    gfx::Size contentSize_;
    gfx::Insets contentInset_;
    bool bounces_ = true;
    bool alwaysBounceVertical_ = false;
    bool scrollEnabled_ = true;
    bool showsVertical_ = true;
    bool showsHorizontal_ = true;
    ScrollViewDelegate* delegate_ = nullptr;
    std::shared_ptr<RefreshControl> refreshControl_;
    std::shared_ptr<View> indicator_;

    // The touch being followed.
    bool tracking_ = false;
    bool dragging_ = false;
    bool horizontalDrag_ = false;
    gfx::Point touchStart_;
    gfx::Point offsetAtStart_;
    std::vector<Sample> samples_;

    // Gliding and springing back.
    bool decelerating_ = false;
    gfx::Point velocity_;
    double lastStep_ = 0;
    std::shared_ptr<sys::Timer> timer_;
};

} // namespace morvane::ui
