#include <morvane/ui/core/DirtyRegion.h>

#include <cmath>
#include <limits>

namespace morvane::ui {

namespace {

bool isFinite(const gfx::Rect& r) {
    return std::isfinite(r.x) && std::isfinite(r.y) && std::isfinite(r.width) && std::isfinite(r.height);
}

// What merging two rectangles costs: the area their box covers that neither did.
double waste(const gfx::Rect& a, const gfx::Rect& b) {
    return a.united(b).area() - a.area() - b.area() + a.intersection(b).area();
}

} // namespace

void DirtyRegion::add(const gfx::Rect& rect) {
    if (rect.isEmpty() || !isFinite(rect)) return;
    gfx::Rect incoming = rect.standardized();
    // Merging may make the box overlap rectangles it missed before, so look again after each merge.
    for (bool merged = true; merged;) {
        merged = false;
        for (std::size_t i = 0; i < rects_.size(); ++i) {
            const gfx::Rect& r = rects_[i];
            if (r.contains(incoming)) return;
            // Overlapping or touching with little slack: one box is cheaper than two.
            if (incoming.contains(r) || waste(r, incoming) <= 0.25 * std::min(r.area(), incoming.area())) {
                incoming = incoming.united(r);
                rects_.erase(rects_.begin() + static_cast<std::ptrdiff_t>(i));
                merged = true;
                break;
            }
        }
    }
    rects_.push_back(incoming);
    while (rects_.size() > kMaxRects) {
        // Too many boxes: merge the pair that wastes least.
        std::size_t bestA = 0, bestB = 1;
        double best = std::numeric_limits<double>::infinity();
        for (std::size_t a = 0; a < rects_.size(); ++a)
            for (std::size_t b = a + 1; b < rects_.size(); ++b)
                if (double w = waste(rects_[a], rects_[b]); w < best) {
                    best = w;
                    bestA = a;
                    bestB = b;
                }
        gfx::Rect joined = rects_[bestA].united(rects_[bestB]);
        rects_.erase(rects_.begin() + static_cast<std::ptrdiff_t>(bestB));
        rects_.erase(rects_.begin() + static_cast<std::ptrdiff_t>(bestA));
        add(joined);
    }
}

void DirtyRegion::add(const DirtyRegion& other) {
    for (const gfx::Rect& r : other.rects_)
        add(r);
}

gfx::Rect DirtyRegion::bounds() const {
    gfx::Rect box;
    for (const gfx::Rect& r : rects_)
        box = box.united(r);
    return box;
}

bool DirtyRegion::intersects(const gfx::Rect& rect) const {
    for (const gfx::Rect& r : rects_)
        if (r.intersects(rect)) return true;
    return false;
}

double DirtyRegion::area() const {
    double sum = 0;
    for (const gfx::Rect& r : rects_)
        sum += r.area();
    return sum;
}

DirtyRegion DirtyRegion::pixelAligned(double scale, const gfx::Rect& limit) const {
    DirtyRegion aligned;
    if (!(scale > 0)) return aligned;
    for (const gfx::Rect& r : rects_) {
        gfx::Rect cut = r.intersection(limit);
        if (cut.isEmpty()) continue;
        gfx::Rect device{cut.x * scale, cut.y * scale, cut.width * scale, cut.height * scale};
        device = device.integral();
        aligned.add({device.x / scale, device.y / scale, device.width / scale, device.height / scale});
    }
    return aligned;
}

} // namespace morvane::ui
