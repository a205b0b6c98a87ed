#include <morvane/media/detail/CachePaths.h>
#include <morvane/sys/App.h>
#include <morvane/sys/Files.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>

namespace morvane::detail {

namespace fs = std::filesystem;

std::string hashHex(std::string_view text) {
    std::uint64_t hash = 14695981039346656037ull;
    for (unsigned char c : text) {
        hash ^= c;
        hash *= 1099511628211ull;
    }
    char out[17];
    std::snprintf(out, sizeof out, "%016llx", static_cast<unsigned long long>(hash));
    return out;
}

std::string shortenedName(std::string_view name) {
    if (name.size() <= kMaxNameBytes) return std::string(name);
    // Keep a short extension so the file still says what it holds.
    std::string_view extension;
    if (auto dot = name.rfind('.'); dot != std::string_view::npos && name.size() - dot <= 16)
        extension = name.substr(dot);
    const std::string suffix = "-" + hashHex(name);
    std::size_t keep = kMaxNameBytes - suffix.size() - extension.size();
    // Do not cut a UTF-8 sequence in two.
    while (keep > 0 && (static_cast<unsigned char>(name[keep]) & 0xC0) == 0x80)
        --keep;
    return std::string(name.substr(0, keep)) + suffix + std::string(extension);
}

std::optional<std::string> unsafeCachePath(std::string_view relative) {
    if (relative.size() > kMaxRelativePathBytes) return "path too long";
    if (relative.find('\0') != std::string_view::npos) return "NUL in the path";
    if (relative.find('\\') != std::string_view::npos) return "backslash in the path";
    std::size_t start = 0;
    bool first = true;
    while (true) {
        const std::size_t slash = relative.find('/', start);
        const std::string_view part =
            relative.substr(start, slash == std::string_view::npos ? std::string_view::npos : slash - start);
        if (part.empty()) return "empty name in the path";
        if (part == "." || part == "..") return "relative step in the path";
        if (part.size() > kMaxNameBytes) return "name too long";
        if (first && part != kImageFolder && part != kOlderLoaderFolder) return "not a cache folder";
        first = false;
        if (slash == std::string_view::npos) break;
        start = slash + 1;
    }
    return std::nullopt;
}

bool insideCacheFolders(const fs::path& path) {
    const fs::path documents = sys::App::documentsFolder().lexically_normal();
    const fs::path normal = path.lexically_normal();
    for (std::string_view folder : {kImageFolder, kOlderLoaderFolder}) {
        const fs::path root = documents / folder;
        const fs::path relative = normal.lexically_relative(root);
        if (relative.empty() || *relative.begin() == "..") continue;
        if (sys::Files::isInside(normal, root)) return true;
    }
    return false;
}

bool isWebAddress(std::string_view address) {
    auto startsWith = [&](std::string_view scheme) {
        if (address.size() < scheme.size()) return false;
        return std::equal(scheme.begin(), scheme.end(), address.begin(), [](char a, char b) {
            return a == (b >= 'A' && b <= 'Z' ? char(b - 'A' + 'a') : b);
        });
    };
    return startsWith("http://") || startsWith("https://");
}

} // namespace morvane::detail
