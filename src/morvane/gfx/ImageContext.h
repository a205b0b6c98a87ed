#pragma once
// An offscreen drawing: begin a context of a size in points, opaque or not, at
// a scale; draw on its canvas; take the result as an Image. A transparent
// context starts fully transparent, an opaque one black.
//
//   ImageContext context(Size{40, 40}, Opacity::Transparent, 2);
//   context.canvas().fillEllipse(Rect{0, 0, 40, 40}, Color::redColor());
//   Image dot = context.takeImage();

#include <morvane/gfx/Canvas.h>
#include <morvane/gfx/Geometry.h>
#include <morvane/gfx/Image.h>

#include <memory>

namespace morvane::gfx {

enum class Opacity { Transparent, Opaque };

class ImageContext {
  public:
    // The pixel size is the point size times the scale, rounded up. A scale of
    // 0 or less means the screen scale. An empty or oversized context is
    // invalid: its canvas still accepts drawing, and its image is null.
    ImageContext(Size size, Opacity opacity, double scale);
    ~ImageContext();
    ImageContext(const ImageContext&) = delete;
    ImageContext& operator=(const ImageContext&) = delete;

    // The scale used when a context asks for scale 0 (the main screen's).
    static double screenScale();
    static void setScreenScale(double scale);

    bool isValid() const;
    Size size() const { return size_; }
    double scale() const { return scale_; }
    Canvas& canvas() { return *canvas_; }

    // A copy of what is drawn so far; drawing may go on.
    Image image() const;
    // The result without copying the pixels; the context is invalid afterwards.
    Image takeImage();

  private:
    struct Impl;
    Size size_;
    double scale_;
    std::unique_ptr<Impl> impl_;
    std::unique_ptr<Canvas> canvas_;
};

} // namespace morvane::gfx
