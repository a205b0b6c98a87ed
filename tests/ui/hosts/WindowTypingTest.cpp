// Typing in the SDL2 window host, on SDL's display-less video driver: text
// input events (accents, emoji) reach the focused field as the headless
// host's typing does, editing keys and Tab act on it, and Ctrl+C / Ctrl+V go
// through SDL's clipboard.

#include <morvane/ui/core/Window.h>
#include <morvane/ui/hosts/WindowHost.h>
#include <morvane/ui/text/TextField.h>

#include <SDL.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>

namespace {

using namespace morvane;

void pushText(const char* text) {
    SDL_Event event{};
    event.type = SDL_TEXTINPUT;
    std::strncpy(event.text.text, text, sizeof event.text.text - 1);
    SDL_PushEvent(&event);
}

void pushKey(SDL_Keycode key, Uint16 mod = KMOD_NONE) {
    SDL_Event event{};
    event.type = SDL_KEYDOWN;
    event.key.keysym.sym = key;
    event.key.keysym.mod = mod;
    SDL_PushEvent(&event);
}

TEST(WindowTyping, keyboard_and_clipboard_reach_the_focused_field) {
    const char* previous = std::getenv("SDL_VIDEODRIVER");
    std::string saved = previous ? previous : "";
    setenv("SDL_VIDEODRIVER", "dummy", 1);
    {
        ui::WindowHost host({.title = "typing", .size = {200, 200}, .scale = 1});
        if (!host.isOpen()) {
            unsetenv("SDL_VIDEODRIVER");
            GTEST_SKIP() << host.error();
        }
        auto first = std::make_shared<ui::TextField>(gfx::Rect{10, 10, 180, 30});
        auto second = std::make_shared<ui::TextField>(gfx::Rect{10, 50, 180, 30});
        auto secret = std::make_shared<ui::TextField>(gfx::Rect{10, 90, 180, 30});
        secret->setSecureTextEntry(true);
        host.root()->addSubview(first);
        host.root()->addSubview(second);
        host.root()->addSubview(secret);
        ASSERT_TRUE(first->becomeFirstResponder());
        auto pump = [&] {
            for (int i = 0; i < 5; ++i)
                host.runOnce(0.005);
        };

        pushText("Zoë");
        pushText("😀");
        pushText("x");
        pushKey(SDLK_BACKSPACE);
        pushKey(SDLK_LEFT);
        pushKey(SDLK_LEFT);
        pushKey(SDLK_DELETE);
        pushKey(SDLK_HOME);
        pushText("«");
        pushKey(SDLK_END);
        pushText("»");
        pump();
        EXPECT_EQ(first->text(), "«Zo😀»");

        pushKey(SDLK_c, KMOD_LCTRL);
        pushKey(SDLK_TAB);
        pushKey(SDLK_v, KMOD_LCTRL);
        pump();
        EXPECT_TRUE(second->isEditing());
        EXPECT_EQ(second->text(), "«Zo😀»");

        // A secure field's text never reaches the clipboard.
        SDL_SetClipboardText("before");
        pushKey(SDLK_TAB);
        pushText("hunter2");
        pushKey(SDLK_c, KMOD_LCTRL);
        pump();
        EXPECT_TRUE(secret->isEditing());
        char* clip = SDL_GetClipboardText();
        EXPECT_STREQ(clip, "before");
        SDL_free(clip);
    }
    if (previous)
        setenv("SDL_VIDEODRIVER", saved.c_str(), 1);
    else
        unsetenv("SDL_VIDEODRIVER");
}

} // namespace
