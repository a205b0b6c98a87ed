// morvane-gallery: the kit's sample app. Without arguments it plays a
// scripted tour of its screens without a display and writes screenshots and
// an index.html; with --window it opens the app in a window.

#include "Gallery.h"
#include "Tour.h"

#include <morvane/sys/App.h>
#include <morvane/sys/Queue.h>
#include <morvane/ui/core/Window.h>
#include <morvane/ui/hosts/WindowHost.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <unistd.h>

namespace {

constexpr std::string_view kUsage = R"(usage: morvane-gallery [options]

Plays a scripted tour of the gallery's screens without a display and writes
PNG screenshots and an index.html that shows them, screen by screen.

  --out DIR         where the pages go (default: ./gallery-pages)
  --scale N         screenshot pixels per point, 1 to 3 (default: 2)
  --wait SECONDS    how long to wait for pictures at each step (default: 30)
  --resources DIR   the gallery's sample data (default: the resources folder
                    beside the program)
  --window          open the app in a window instead (mouse for the finger):
                    its home screen lists the screens, each has a way back
  --help            this text
)";

struct Arguments {
    std::filesystem::path out = "gallery-pages";
    std::optional<std::filesystem::path> resources;
    double scale = 2;
    double wait = 30;
    bool window = false;
};

// Nothing when the arguments are not understood (the reason is printed).
std::optional<Arguments> parse(const std::vector<std::string_view>& args, bool* help) {
    Arguments parsed;
    auto number = [](std::string_view text, double low, double high, double* out) {
        char* end = nullptr;
        const std::string copy(text);
        const double value = std::strtod(copy.c_str(), &end);
        if (copy.empty() || *end != '\0' || !(value >= low && value <= high)) return false;
        *out = value;
        return true;
    };
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string_view arg = args[i];
        const bool hasValue = i + 1 < args.size();
        if (arg == "--help" || arg == "-h") {
            *help = true;
            return parsed;
        } else if (arg == "--window") {
            parsed.window = true;
        } else if (arg == "--out" && hasValue) {
            parsed.out = std::string(args[++i]);
        } else if (arg == "--resources" && hasValue) {
            parsed.resources = std::string(args[++i]);
        } else if (arg == "--scale" && hasValue) {
            if (!number(args[++i], 1, 3, &parsed.scale)) {
                std::cerr << "morvane-gallery: --scale takes a number from 1 to 3\n";
                return std::nullopt;
            }
        } else if (arg == "--wait" && hasValue) {
            if (!number(args[++i], 0, 3600, &parsed.wait)) {
                std::cerr << "morvane-gallery: --wait takes a number of seconds up to 3600\n";
                return std::nullopt;
            }
        } else {
            std::cerr << "morvane-gallery: " << (hasValue || arg.starts_with("--") ? "unknown option " : "")
                      << arg << (arg.starts_with("--") && !hasValue ? " (or its value is missing)" : "")
                      << "\n";
            return std::nullopt;
        }
    }
    return parsed;
}

// A scratch folder for this run's picture cache and settings, removed at the end.
class Scratch {
  public:
    Scratch() {
        std::string pattern = (std::filesystem::temp_directory_path() / "morvane-gallery-XXXXXX").string();
        if (::mkdtemp(pattern.data())) path_ = pattern;
    }
    ~Scratch() {
        std::error_code ignored;
        if (!path_.empty()) std::filesystem::remove_all(path_, ignored);
    }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;
    const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_;
};

int runWindow(gallery::Gallery& gallery) {
    morvane::ui::WindowHost host({.title = "Morvane gallery: " + gallery.data().city()});
    if (!host.isOpen()) {
        std::cerr << "morvane-gallery: no window: " << host.error() << "\n";
        return 1;
    }
    const morvane::gfx::Size size = host.root()->bounds().size();
    host.root()->addSubview(gallery.makeApp({0, 0, size.width, size.height}));
    host.run();
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    bool help = false;
    const auto arguments = parse(std::vector<std::string_view>(argv + 1, argv + argc), &help);
    if (help) {
        std::cout << kUsage;
        return 0;
    }
    if (!arguments) {
        std::cerr << "Try morvane-gallery --help\n";
        return 2;
    }

    Scratch scratch;
    if (scratch.path().empty()) {
        std::cerr << "morvane-gallery: cannot make a scratch folder in "
                  << std::filesystem::temp_directory_path() << "\n";
        return 1;
    }
    int status = 1;
    {
        gallery::Gallery gallery({
            .resources = arguments->resources.value_or(morvane::sys::App::resourceFolder()),
            .scratch = scratch.path(),
        });
        std::string error;
        if (!gallery.start(&error)) {
            std::cerr << "morvane-gallery: " << error << "\n";
            return 1;
        }
        if (arguments->window) {
            status = runWindow(gallery);
        } else {
            gallery::Tour tour(
                gallery, {.out = arguments->out, .scale = arguments->scale, .waitSeconds = arguments->wait});
            status = tour.run();
        }
        // Downloads still under way write into the scratch folder: let them end first.
        morvane::sys::Queue::waitIdle();
    }
    return status;
}
