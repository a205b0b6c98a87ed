#include <morvane/gfx/ImageContext.h>
#include <morvane/gfx/detail/CanvasImpl.h>
#include <morvane/gfx/detail/ImageAccess.h>

#include <atomic>
#include <cmath>
#include <cstring>

namespace morvane::gfx {

namespace {

std::atomic<double> screenScaleValue{1.0};

} // namespace

struct ImageContext::Impl {
    cairo_surface_t* surface = nullptr; // our reference; null when invalid or taken
    bool opaque = false;
    ~Impl() {
        if (surface) cairo_surface_destroy(surface);
    }
};

double ImageContext::screenScale() {
    return screenScaleValue.load(std::memory_order_relaxed);
}

void ImageContext::setScreenScale(double scale) {
    if (scale > 0 && std::isfinite(scale)) screenScaleValue.store(scale, std::memory_order_relaxed);
}

ImageContext::ImageContext(Size size, Opacity opacity, double scale)
    : size_(size), scale_(scale > 0 && std::isfinite(scale) ? scale : screenScale()),
      impl_(std::make_unique<Impl>()) {
    impl_->opaque = opacity == Opacity::Opaque;
    double pixelWidth = std::ceil(size.width * scale_ - 1e-9),
           pixelHeight = std::ceil(size.height * scale_ - 1e-9);
    if (!size.isEmpty() && pixelWidth * pixelHeight <= static_cast<double>(Image::kMaxPixels))
        impl_->surface =
            detail::ImageAccess::createSurface(static_cast<int>(pixelWidth), static_cast<int>(pixelHeight));
    // An invalid context still gets a canvas (over one scratch pixel) so that
    // drawing code need not check; its image is null.
    cairo_surface_t* target = impl_->surface ? cairo_surface_reference(impl_->surface)
                                             : cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 1, 1);
    canvas_ = std::unique_ptr<Canvas>(new Canvas(std::make_unique<Canvas::Impl>(target, scale_)));
    if (impl_->surface && impl_->opaque) canvas_->clear(Color::blackColor());
}

ImageContext::~ImageContext() = default;

bool ImageContext::isValid() const {
    return impl_->surface != nullptr;
}

Image ImageContext::image() const {
    if (!impl_->surface) return {};
    cairo_surface_flush(impl_->surface);
    int width = cairo_image_surface_get_width(impl_->surface);
    int height = cairo_image_surface_get_height(impl_->surface);
    cairo_surface_t* copy = detail::ImageAccess::createSurface(width, height);
    if (!copy) return {};
    std::memcpy(cairo_image_surface_get_data(copy), cairo_image_surface_get_data(impl_->surface),
                static_cast<std::size_t>(cairo_image_surface_get_stride(copy)) * height);
    cairo_surface_mark_dirty(copy);
    return detail::ImageAccess::adopt(copy, scale_, impl_->opaque);
}

Image ImageContext::takeImage() {
    if (!impl_->surface) return {};
    // Drawing after this lands on a scratch pixel, never on the taken image.
    canvas_ = std::unique_ptr<Canvas>(new Canvas(
        std::make_unique<Canvas::Impl>(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 1, 1), scale_)));
    cairo_surface_t* surface = impl_->surface;
    impl_->surface = nullptr;
    cairo_surface_flush(surface);
    cairo_surface_set_device_scale(surface, 1, 1);
    return detail::ImageAccess::adopt(surface, scale_, impl_->opaque);
}

} // namespace morvane::gfx
