#include <morvane/gfx/detail/BoxFill.h>

#include <algorithm>
#include <cmath>

namespace morvane::gfx::detail {

namespace {

// a * b / 255, rounded, for 8-bit values.
inline std::uint32_t mul255(std::uint32_t a, std::uint32_t b) {
    std::uint32_t t = a * b + 128;
    return (t + (t >> 8)) >> 8;
}

double overlap(double a0, double a1, double b0, double b1) {
    return std::max(0.0, std::min(a1, b1) - std::max(a0, b0));
}

// What a row of pixels has in common for one box: the part of its height the
// box covers, whether it crosses a corner, and the columns between the
// corners (or the sides), where every pixel has that same coverage.
struct Row {
    double cover = 0;
    bool corner = false;
    int first = 0, last = 0;
};

Row rowOf(const DeviceBox& box, int j) {
    Row row;
    row.cover = overlap(j, j + 1.0, box.y0, box.y1);
    if (row.cover <= 0) return row;
    row.corner = box.radius > 0 && (j < box.y0 + box.radius || j + 1 > box.y1 - box.radius);
    double inset = row.corner ? box.radius : 0;
    row.first = static_cast<int>(std::ceil(box.x0 + inset));
    row.last = std::max(row.first, static_cast<int>(std::floor(box.x1 - inset)));
    return row;
}

// How much of pixel i of the row the rounded box covers, 0 to 1.
double coverage(const DeviceBox& box, const Row& row, int i, int j) {
    if (row.cover <= 0) return 0;
    double c = overlap(i, i + 1.0, box.x0, box.x1) * row.cover;
    if (!row.corner || c <= 0) return c;
    double r = box.radius;
    double px = i + 0.5, py = j + 0.5;
    double cx = px < box.x0 + r ? box.x0 + r : px > box.x1 - r ? box.x1 - r : px;
    double cy = py < box.y0 + r ? box.y0 + r : py > box.y1 - r ? box.y1 - r : py;
    if (cx == px || cy == py) return c;
    // In a corner: the distance to the arc gives the coverage, within the
    // half-pixel ramp an antialiased edge has. Pixels clearly inside or
    // outside the ramp need no square root (the margin keeps the answer the
    // same as the root would give).
    double squared = (px - cx) * (px - cx) + (py - cy) * (py - cy);
    double margin = 1e-9 * (r + 1) * (r + 1);
    if (r >= 0.5 && squared < (r - 0.5) * (r - 0.5) - margin) return c;
    if (squared > (r + 0.5) * (r + 0.5) + margin) return 0;
    double d = std::sqrt(squared);
    return std::min(c, std::clamp(r + 0.5 - d, 0.0, 1.0));
}

class Painter {
  public:
    Painter(const PixelTarget& target, PremultipliedColor color) : t_(target), c_(color) {
        solid_ = std::uint32_t(color.a) << 24 | std::uint32_t(color.r) << 16 | std::uint32_t(color.g) << 8 |
                 color.b;
    }

    // The source scaled by a coverage; false when that shows nothing.
    bool scaled(double cover, std::uint32_t& s, std::uint32_t& a) const {
        auto amount = static_cast<std::uint32_t>(cover * 255 + 0.5);
        if (amount == 0) return false;
        a = c_.a;
        s = solid_;
        if (amount < 255) {
            a = mul255(c_.a, amount);
            s = a << 24 | mul255(c_.r, amount) << 16 | mul255(c_.g, amount) << 8 | mul255(c_.b, amount);
        }
        return true;
    }

    void put(int i, int j, std::uint32_t s, std::uint32_t a) { blend(row(j) + i, s, a); }

    // Pixel i of rows [top, bottom), each the same source. Down the column
    // with the source held in registers: a box's edge pixels repeat so.
    void column(int i, int top, int bottom, std::uint32_t s, std::uint32_t a) {
        if (top >= bottom) return;
        auto* p = reinterpret_cast<std::uint8_t*>(row(top) + i);
        const std::ptrdiff_t stride = t_.stride;
        if (a == 255) {
            for (int j = top; j < bottom; ++j, p += stride)
                *reinterpret_cast<std::uint32_t*>(p) = s;
            return;
        }
        for (int j = top; j < bottom; ++j, p += stride)
            blend(reinterpret_cast<std::uint32_t*>(p), s, a);
    }

    // Pixels [first, last) of row j, each covered by the same amount.
    void span(int first, int last, int j, double cover) {
        auto amount = static_cast<std::uint32_t>(cover * 255 + 0.5);
        if (amount == 0) return;
        std::uint32_t a = c_.a, s = solid_;
        if (amount < 255) {
            a = mul255(c_.a, amount);
            s = a << 24 | mul255(c_.r, amount) << 16 | mul255(c_.g, amount) << 8 | mul255(c_.b, amount);
        }
        std::uint32_t* p = row(j);
        for (int i = first; i < last; ++i)
            blend(p + i, s, a);
    }

  private:
    std::uint32_t* row(int j) const {
        return reinterpret_cast<std::uint32_t*>(t_.data + std::ptrdiff_t(j) * t_.stride);
    }

    // Source over destination, two channels at a time.
    static void blend(std::uint32_t* p, std::uint32_t s, std::uint32_t alpha) {
        if (alpha == 255) {
            *p = s;
            return;
        }
        std::uint32_t d = *p;
        std::uint32_t keep = 255 - alpha;
        auto scaleAdd = [keep](std::uint32_t dst, std::uint32_t src) {
            std::uint32_t t = dst * keep + 0x00800080;
            t = ((t + ((t >> 8) & 0x00ff00ff)) >> 8) & 0x00ff00ff;
            t += src;
            t |= 0x01000100 - ((t >> 8) & 0x00010001); // saturate each lane
            return t & 0x00ff00ff;
        };
        *p = scaleAdd(d & 0x00ff00ff, s & 0x00ff00ff) | scaleAdd((d >> 8) & 0x00ff00ff, (s >> 8) & 0x00ff00ff)
                                                            << 8;
    }

    PixelTarget t_;
    PremultipliedColor c_;
    std::uint32_t solid_;
};

// A row through the corners of a filled box with a run between them. Where
// the row crosses each arc is worked out once: pixels well inside are covered
// like the run, pixels beyond the arc's antialiasing ramp not at all, and only
// the few in between need their distance to the arc.
void cornerRow(Painter& painter, const DeviceBox& box, const Row& row, int j, int i0, int i1, int runFirst,
               int runLast) {
    constexpr double kFar = 1e9;
    double r = box.radius, py = j + 0.5;
    double dy = py < box.y0 + r ? box.y0 + r - py : py - (box.y1 - r);
    // Half-widths of the arc's fully covered and touched parts at this row.
    double within = kFar, reach = kFar;
    if (dy >= 0) {
        within = r - 0.5 > dy ? std::sqrt((r - 0.5) * (r - 0.5) - dy * dy) : -1;
        reach = (r + 0.5) * (r + 0.5) > dy * dy ? std::sqrt((r + 0.5) * (r + 0.5) - dy * dy) : 0;
    }
    auto each = [&](int first, int last) {
        for (int i = first; i < last; ++i) {
            double c = coverage(box, row, i, j);
            if (c > 0) painter.span(i, i + 1, j, c);
        }
    };
    int leftStart = std::clamp(static_cast<int>(std::floor(box.x0 + r - reach - 0.5)), i0, runFirst);
    int leftWhole = std::clamp(static_cast<int>(std::ceil(std::max(box.x0, box.x0 + r - within - 0.5))),
                               leftStart, runFirst);
    int rightWhole = std::clamp(
        static_cast<int>(std::floor(std::min(box.x1 - 1, box.x1 - r + within - 0.5))) + 1, runLast, i1);
    int rightEnd = std::clamp(static_cast<int>(std::floor(box.x1 - r + reach)) + 1, rightWhole, i1);
    each(leftStart, leftWhole);
    if (leftWhole < runFirst) painter.span(leftWhole, runFirst, j, row.cover);
    if (runLast < rightWhole) painter.span(runLast, rightWhole, j, row.cover);
    each(rightWhole, rightEnd);
}

DeviceBox clampedRadius(DeviceBox box) {
    box.radius = std::clamp(box.radius, 0.0, std::min(box.x1 - box.x0, box.y1 - box.y0) / 2);
    return box;
}

} // namespace

void fillBox(const PixelTarget& target, const DeviceBox& outerBox, const DeviceBox* innerBox,
             PremultipliedColor color, SolidRects solid) {
    if (color.a == 0) return;
    DeviceBox outer = clampedRadius(outerBox);
    if (!(outer.x1 > outer.x0) || !(outer.y1 > outer.y0)) return;
    DeviceBox inner{};
    bool hasInner = innerBox && innerBox->x1 > innerBox->x0 && innerBox->y1 > innerBox->y0;
    if (hasInner) inner = clampedRadius(*innerBox);

    int i0 = std::max(target.clipX0, static_cast<int>(std::floor(outer.x0)));
    int i1 = std::min(target.clipX1, static_cast<int>(std::ceil(outer.x1)));
    int j0 = std::max(target.clipY0, static_cast<int>(std::floor(outer.y0)));
    int j1 = std::min(target.clipY1, static_cast<int>(std::ceil(outer.y1)));
    if (i0 >= i1 || j0 >= j1) return;

    Painter painter(target, color);
    // Consecutive rows with the same whole-pixel span are handed on as one rectangle.
    int bandFirst = 0, bandLast = 0, bandTop = j0;
    auto flush = [&](int bottom) {
        if (bandFirst < bandLast && bandTop < bottom)
            solid.fill(solid.context, bandFirst, bandTop, bandLast - bandFirst, bottom - bandTop);
    };
    // Rows between the corners (of both shapes, for an outline) are alike:
    // their edge pixels are worked out once and repeated.
    auto middle = [](const DeviceBox& box, int& top, int& bottom) {
        top = static_cast<int>(std::ceil(box.y0 + box.radius));
        bottom = static_cast<int>(std::floor(box.y1 - box.radius));
    };
    int midTop, midBottom;
    middle(outer, midTop, midBottom);
    if (hasInner) {
        int innerTop, innerBottom;
        middle(inner, innerTop, innerBottom);
        midTop = std::max(midTop, innerTop);
        midBottom = std::min(midBottom, innerBottom);
    }
    constexpr int kMaxEdge = 16;
    struct EdgePixel {
        int i;
        std::uint32_t s, a;
    } edge[kMaxEdge];
    int edgeCount = -1; // not worked out yet
    Row midOut, midIn;
    if (midTop < midBottom) {
        midOut = rowOf(outer, midTop);
        if (hasInner) midIn = rowOf(inner, midTop);
    }

    for (int j = j0; j < j1; ++j) {
        bool isMiddle = j >= midTop && j < midBottom;
        // Referred to, not copied: a copy of a just-built row costs a store
        // forwarding stall on every row.
        Row outRow, inRow;
        if (!isMiddle) {
            outRow = rowOf(outer, j);
            if (hasInner) inRow = rowOf(inner, j);
        }
        const Row& out = isMiddle ? midOut : outRow;
        const Row& in = isMiddle ? midIn : inRow;
        // Between the corners every pixel of the row is covered alike: whole
        // rows go on as rectangles, partly covered ones as one run. An
        // outline's sides are thin and drawn pixel by pixel around its hole.
        int runFirst = 0, runLast = 0, holeFirst = 0, holeLast = 0;
        if (!hasInner) {
            runFirst = std::clamp(out.first, i0, i1);
            runLast = std::clamp(out.last, runFirst, i1);
        } else if (in.cover >= 1) {
            holeFirst = std::clamp(in.first, i0, i1);
            holeLast = std::clamp(in.last, holeFirst, i1);
        }
        bool whole = runFirst < runLast && out.cover >= 1;
        int bandFirstNow = whole ? runFirst : 0, bandLastNow = whole ? runLast : 0;
        if (bandFirstNow != bandFirst || bandLastNow != bandLast) {
            flush(j);
            bandFirst = bandFirstNow;
            bandLast = bandLastNow;
            bandTop = j;
        }
        if (runFirst < runLast && !whole) painter.span(runFirst, runLast, j, out.cover);
        if (isMiddle && edgeCount >= 0) {
            for (int e = 0; e < edgeCount; ++e)
                painter.put(edge[e].i, j, edge[e].s, edge[e].a);
            continue;
        }
        if (!hasInner && out.corner && runFirst < runLast) {
            cornerRow(painter, outer, out, j, i0, i1, runFirst, runLast);
            continue;
        }
        if (!hasInner && out.corner && outer.x1 - outer.x0 >= 2) {
            // A box so narrow that its corners meet (a pill, a small round
            // badge) has no run between them; split the row at the middle
            // instead: every pixel left of it lies outside the right corner
            // and every one right of it outside the left corner, so each
            // half is its own corner's, as either side of a run is.
            int middle = std::clamp(static_cast<int>(std::floor((outer.x0 + outer.x1) / 2 + 0.5)), i0, i1);
            cornerRow(painter, outer, out, j, i0, i1, middle, middle);
            continue;
        }
        int found = 0;
        for (int i = i0; i < i1; ++i) {
            if (i == runFirst && runFirst < runLast) {
                i = runLast - 1;
                continue;
            }
            if (i == holeFirst && holeFirst < holeLast) {
                i = holeLast - 1;
                continue;
            }
            double c = coverage(outer, out, i, j);
            if (hasInner && c > 0) c -= coverage(inner, in, i, j);
            std::uint32_t s, a;
            if (c > 0 && painter.scaled(c, s, a)) {
                painter.put(i, j, s, a);
                if (isMiddle && found < kMaxEdge) edge[found] = {i, s, a};
                ++found;
            }
        }
        if (isMiddle && found <= kMaxEdge) {
            // The remaining middle rows repeat these pixels; their whole-pixel
            // run is the same, so the band of rectangles carries on.
            edgeCount = found;
            int end = std::min(midBottom, j1);
            for (int e = 0; e < edgeCount; ++e)
                painter.column(edge[e].i, j + 1, end, edge[e].s, edge[e].a);
            j = std::max(j, end - 1);
        }
    }
    flush(j1);
}

} // namespace morvane::gfx::detail
