#include <morvane/ui/hosts/WindowHost.h>

#include <morvane/gfx/Canvas.h>
#include <morvane/sys/Clock.h>
#include <morvane/sys/RunLoop.h>
#include <morvane/ui/core/Key.h>
#include <morvane/ui/core/Renderer.h>
#include <morvane/ui/core/Window.h>
#include <morvane/ui/core/detail/Animator.h>
#include <morvane/ui/text/TextField.h>
#include <morvane/ui/text/TextView.h>

#include <SDL.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <string_view>
#include <vector>

namespace morvane::ui {

namespace {

bool isHeadlessDriver(std::string_view driver) {
    return driver == "offscreen" || driver == "dummy";
}

std::optional<Key> keyFor(SDL_Keycode code) {
    switch (code) {
    case SDLK_RETURN:
    case SDLK_KP_ENTER:
        return Key::Return;
    case SDLK_BACKSPACE:
        return Key::Backspace;
    case SDLK_DELETE:
        return Key::Delete;
    case SDLK_TAB:
        return Key::Tab;
    case SDLK_ESCAPE:
        return Key::Escape;
    case SDLK_LEFT:
        return Key::Left;
    case SDLK_RIGHT:
        return Key::Right;
    case SDLK_UP:
        return Key::Up;
    case SDLK_DOWN:
        return Key::Down;
    case SDLK_HOME:
        return Key::Home;
    case SDLK_END:
        return Key::End;
    default:
        return std::nullopt;
    }
}

} // namespace

struct WindowHost::Impl {
    SDL_Window* window = nullptr;
    Uint32 wakeEvent = 0;
    std::vector<std::uint8_t> pixels;
    int pixelWidth = 0;
    int pixelHeight = 0;
    std::unique_ptr<Renderer> renderer = std::make_unique<Renderer>();
    bool exposed = true; // the window needs its pixels again (shown, resized, uncovered)

    ~Impl() {
        sys::RunLoop::main().setWakeUpHandler({});
        if (window) SDL_DestroyWindow(window);
        if (window) SDL_QuitSubSystem(SDL_INIT_VIDEO);
    }
};

WindowHost::WindowHost() : WindowHost(Options{}) {}

WindowHost::WindowHost(Options options) : impl_(std::make_unique<Impl>()), options_(std::move(options)) {
    if (!(options_.scale > 0) || !std::isfinite(options_.scale)) options_.scale = 1;
    if (options_.size.isEmpty()) options_.size = {390, 844};
    window_ = Window::create(options_.size);
    // A window lives in real time (a headless host may have stopped the clock).
    sys::Clock::useReal();

    if (SDL_InitSubSystem(SDL_INIT_VIDEO) != 0) {
        error_ = std::string("no video: ") + SDL_GetError();
        return;
    }
    // With no display at all SDL quietly falls back to drawing off screen; a
    // window nobody can see is no window, unless that driver was asked for.
    if (const char* driver = SDL_GetCurrentVideoDriver(); driver && isHeadlessDriver(driver)) {
        const char* chosen = std::getenv("SDL_VIDEODRIVER");
        if (!chosen || !*chosen) {
            error_ = std::string("no display (SDL fell back to its ") + driver + " video driver)";
            SDL_QuitSubSystem(SDL_INIT_VIDEO);
            return;
        }
    }
    impl_->pixelWidth = static_cast<int>(std::ceil(options_.size.width * options_.scale));
    impl_->pixelHeight = static_cast<int>(std::ceil(options_.size.height * options_.scale));
    impl_->window = SDL_CreateWindow(options_.title.c_str(), SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED,
                                     impl_->pixelWidth, impl_->pixelHeight, SDL_WINDOW_SHOWN);
    if (!impl_->window) {
        error_ = std::string("no window: ") + SDL_GetError();
        SDL_QuitSubSystem(SDL_INIT_VIDEO);
        return;
    }
    impl_->pixels.assign(static_cast<std::size_t>(impl_->pixelWidth) * impl_->pixelHeight * 4, 0);

    SDL_DisplayMode mode;
    int display = SDL_GetWindowDisplayIndex(impl_->window);
    if (display >= 0 && SDL_GetCurrentDisplayMode(display, &mode) == 0 && mode.refresh_rate > 0)
        refreshInterval_ = 1.0 / mode.refresh_rate;

    // Work posted from other threads wakes the loop through an SDL event,
    // which SDL lets any thread push.
    impl_->wakeEvent = SDL_RegisterEvents(1);
    Uint32 wakeEvent = impl_->wakeEvent;
    sys::RunLoop::main().setWakeUpHandler([wakeEvent] {
        SDL_Event event{};
        event.type = wakeEvent;
        SDL_PushEvent(&event);
    });
    SDL_StartTextInput();
}

WindowHost::~WindowHost() = default;

bool WindowHost::isOpen() const {
    return impl_->window != nullptr && !closing_;
}

void WindowHost::close() {
    closing_ = true;
}

void WindowHost::run() {
    while (runOnce(1.0)) {
    }
}

bool WindowHost::needsFrame() const {
    double now = sys::Clock::now();
    return impl_->exposed || workRan_ || drawnGeneration_ != detail::Animator::displayGeneration() ||
           detail::Animator::continuousCount() > 0 ||
           // Animations, and one last frame once they have ended.
           now < detail::Animator::busyUntil() || lastFrameTime_ < detail::Animator::busyUntil();
}

bool WindowHost::runOnce(double maxWait) {
    if (!isOpen()) return false;
    double now = sys::Clock::now();
    // How long the loop may sleep: until due work, or the next frame if one is needed.
    double wait = std::max(0.0, maxWait);
    if (auto due = sys::RunLoop::main().timeUntilNextDue()) wait = std::min(wait, *due);
    window_->layoutIfNeeded();
    if (needsFrame()) wait = std::min(wait, std::max(0.0, lastFrameTime_ + refreshInterval_ - now));
    handleEvents(wait);
    if (!isOpen()) return false;

    workRan_ = sys::RunLoop::main().runDue() > 0 || workRan_;
    now = sys::Clock::now();
    if (needsFrame() && now >= lastFrameTime_ + refreshInterval_) drawFrame();
    return isOpen();
}

void WindowHost::handleEvents(double maxWait) {
    SDL_Event event;
    int timeoutMs = static_cast<int>(std::ceil(maxWait * 1000));
    bool got = timeoutMs > 0 ? SDL_WaitEventTimeout(&event, timeoutMs) == 1 : SDL_PollEvent(&event) == 1;
    double scale = options_.scale;
    while (got) {
        switch (event.type) {
        case SDL_QUIT:
            closing_ = true;
            break;
        case SDL_WINDOWEVENT:
            if (event.window.event == SDL_WINDOWEVENT_CLOSE) closing_ = true;
            if (event.window.event == SDL_WINDOWEVENT_EXPOSED ||
                event.window.event == SDL_WINDOWEVENT_SHOWN ||
                event.window.event == SDL_WINDOWEVENT_SIZE_CHANGED)
                impl_->exposed = true;
            break;
        case SDL_MOUSEBUTTONDOWN:
            if (event.button.button == SDL_BUTTON_LEFT)
                window_->sendTouchDown({event.button.x / scale, event.button.y / scale});
            break;
        case SDL_MOUSEMOTION:
            if (event.motion.state & SDL_BUTTON_LMASK)
                window_->sendTouchMove({event.motion.x / scale, event.motion.y / scale});
            break;
        case SDL_MOUSEBUTTONUP:
            if (event.button.button == SDL_BUTTON_LEFT)
                window_->sendTouchUp({event.button.x / scale, event.button.y / scale});
            break;
        case SDL_TEXTINPUT:
            window_->sendText(event.text.text);
            break;
        case SDL_KEYDOWN:
            if ((event.key.keysym.mod & KMOD_CTRL) && event.key.keysym.sym == SDLK_c) {
                // Copy the focused field's selection (all of it when none);
                // a secure field gives nothing.
                std::string copied;
                if (auto* field = dynamic_cast<TextField*>(window_->firstResponder()))
                    copied = field->textToCopy();
                else if (auto* view = dynamic_cast<TextView*>(window_->firstResponder()))
                    copied = view->textToCopy();
                if (!copied.empty()) SDL_SetClipboardText(copied.c_str());
                break;
            }
            if ((event.key.keysym.mod & KMOD_CTRL) && event.key.keysym.sym == SDLK_v) {
                // A paste reaches the focused view as one piece of text.
                if (char* clip = SDL_GetClipboardText()) {
                    window_->sendText(clip);
                    SDL_free(clip);
                }
                break;
            }
            if (auto key = keyFor(event.key.keysym.sym)) window_->sendKey(*key);
            break;
        default:
            if (event.type == impl_->wakeEvent) workRan_ = true; // posted work: look again
            break;
        }
        got = SDL_PollEvent(&event) == 1;
    }
}

void WindowHost::drawFrame() {
    SDL_Surface* target = SDL_GetWindowSurface(impl_->window);
    if (!target) return;
    std::uint64_t generation = detail::Animator::displayGeneration();
    auto canvas = gfx::Canvas::overPixels(impl_->pixels.data(), impl_->pixelWidth, impl_->pixelHeight,
                                          impl_->pixelWidth * 4, options_.scale);
    // The kept pixels hold the last frame, so only what changed is drawn;
    // when the window was exposed, its surface needs every pixel again.
    bool whole = impl_->exposed;
    DirtyRegion drawn =
        impl_->renderer
            ->renderFrame(*window_, *canvas, whole ? Renderer::Redraw::Everything : Renderer::Redraw::Changes)
            .changed();
    canvas.reset();
    // The window surface's format varies by display; SDL converts while copying.
    SDL_Surface* source =
        SDL_CreateRGBSurfaceWithFormatFrom(impl_->pixels.data(), impl_->pixelWidth, impl_->pixelHeight, 32,
                                           impl_->pixelWidth * 4, SDL_PIXELFORMAT_ARGB8888);
    if (source && whole) {
        SDL_SetSurfaceBlendMode(source, SDL_BLENDMODE_NONE);
        SDL_BlitSurface(source, nullptr, target, nullptr);
        SDL_UpdateWindowSurface(impl_->window);
    } else if (source && !drawn.isEmpty()) {
        SDL_SetSurfaceBlendMode(source, SDL_BLENDMODE_NONE);
        std::vector<SDL_Rect> parts;
        for (const gfx::Rect& r : drawn.rects()) {
            gfx::Rect device = gfx::Rect{r.x * options_.scale, r.y * options_.scale, r.width * options_.scale,
                                         r.height * options_.scale}
                                   .integral();
            SDL_Rect part{static_cast<int>(device.x), static_cast<int>(device.y),
                          static_cast<int>(device.width), static_cast<int>(device.height)};
            SDL_Rect to = part;
            SDL_BlitSurface(source, &part, target, &to);
            parts.push_back(part);
        }
        SDL_UpdateWindowSurfaceRects(impl_->window, parts.data(), static_cast<int>(parts.size()));
    }
    if (source) SDL_FreeSurface(source);
    // Layout during the render may have changed views; what was drawn is current.
    drawnGeneration_ = std::max(generation, detail::Animator::displayGeneration());
    lastFrameTime_ = sys::Clock::now();
    impl_->exposed = false;
    workRan_ = false;
    ++framesDrawn_;
}

} // namespace morvane::ui
