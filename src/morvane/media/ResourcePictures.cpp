#include <morvane/gfx/ImageContext.h>
#include <morvane/media/ResourcePictures.h>
#include <morvane/sys/App.h>
#include <morvane/sys/Files.h>

#include <dlfcn.h>

#include <array>
#include <cstdlib>
#include <list>
#include <mutex>
#include <string>
#include <tuple>

namespace morvane {

namespace fs = std::filesystem;

namespace {

constexpr std::array<std::string_view, 4> kExtensions = {".png", ".jpg", ".jpeg", ".svg"};
constexpr std::size_t kCachedPictures = 64;

bool isPlainName(std::string_view name) {
    return !name.empty() && name.size() <= 255 && name.front() != '.' &&
           name.find_first_of(std::string_view("/\\\0", 3)) == std::string_view::npos;
}

bool hasPictureExtension(std::string_view name) {
    for (auto extension : kExtensions) {
        if (name.size() > extension.size() && name.substr(name.size() - extension.size()) == extension)
            return true;
    }
    return false;
}

std::optional<fs::path> findIn(const fs::path& folder, std::string_view name) {
    if (folder.empty()) return std::nullopt;
    auto accept = [&](const fs::path& candidate) -> std::optional<fs::path> {
        std::error_code error;
        if (fs::is_regular_file(candidate, error) && sys::Files::isInside(candidate, folder))
            return candidate;
        return std::nullopt;
    };
    if (hasPictureExtension(name)) {
        if (auto found = accept(folder / std::string(name))) return found;
    }
    for (auto extension : kExtensions) {
        if (auto found = accept(folder / (std::string(name) + std::string(extension)))) return found;
    }
    return std::nullopt;
}

fs::path locateKitFolder() {
    if (const char* overridden = std::getenv("MORVANE_KIT_IMAGES_DIR"); overridden && *overridden)
        return overridden;
    // Found beside the library itself, so an installed kit and a build tree
    // both work wherever they were put: <prefix>/lib[/<arch>]/libmorvane.so
    // with <prefix>/share/morvane/images, or the build folder's own share/.
    Dl_info info{};
    if (dladdr(reinterpret_cast<void*>(&locateKitFolder), &info) == 0 || !info.dli_fname) return {};
    std::error_code error;
    const fs::path library = fs::weakly_canonical(fs::absolute(info.dli_fname, error), error);
    const fs::path folder = library.parent_path();
    for (const fs::path& candidate :
         {folder / "share", folder.parent_path() / "share", folder.parent_path().parent_path() / "share"}) {
        const fs::path images = candidate / "morvane" / "images";
        if (fs::is_directory(images, error)) return images;
    }
    return {};
}

struct Cache {
    struct Entry {
        std::tuple<std::string, double, double, double> key;
        gfx::Image image;
    };
    std::mutex mutex;
    std::list<Entry> entries; // most recently used first
};

Cache& cache() {
    static Cache* instance = new Cache;
    return *instance;
}

} // namespace

fs::path ResourcePictures::kitFolder() {
    static const fs::path folder = locateKitFolder();
    return folder;
}

std::optional<fs::path> ResourcePictures::pathOf(std::string_view name) {
    if (!isPlainName(name)) return std::nullopt;
    if (auto found = findIn(sys::App::resourceFolder(), name)) return found;
    return findIn(kitFolder(), name);
}

gfx::Image ResourcePictures::named(std::string_view name, gfx::Size size, double scale) {
    const auto path = pathOf(name);
    if (!path) return {};
    const bool vector = path->extension() == ".svg";
    if (!vector)
        size = {}, scale = 1;
    else if (scale <= 0)
        scale = gfx::ImageContext::screenScale();

    auto key = std::make_tuple(path->string(), size.width, size.height, scale);
    auto& c = cache();
    {
        std::lock_guard lock(c.mutex);
        for (auto it = c.entries.begin(); it != c.entries.end(); ++it) {
            if (it->key == key) {
                c.entries.splice(c.entries.begin(), c.entries, it);
                return it->image;
            }
        }
    }
    gfx::Image image;
    if (auto bytes = sys::Files::read(*path)) {
        const std::span<const std::uint8_t> data(reinterpret_cast<const std::uint8_t*>(bytes->data()),
                                                 bytes->size());
        image = vector ? gfx::Image::fromSVG(data, size, scale) : gfx::Image::fromData(data, 1);
    }
    if (image.isNull()) return image;
    std::lock_guard lock(c.mutex);
    c.entries.push_front({std::move(key), image});
    if (c.entries.size() > kCachedPictures) c.entries.pop_back();
    return image;
}

void ResourcePictures::clearCache() {
    auto& c = cache();
    std::lock_guard lock(c.mutex);
    c.entries.clear();
}

} // namespace morvane
