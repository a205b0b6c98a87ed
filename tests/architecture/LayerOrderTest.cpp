// The layers of the library, lowest first. A source file may include the
// headers of its own layer and of the layers below it, never above: the
// folder tree is the architecture, and this keeps it true.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr std::array<const char*, 12> kLayers = {"model", "gfx",   "sys",        "util",
                                                 "ui",    "media", "components", "lists",
                                                 "forms", "menus", "commerce",   "flight"};

int rankOf(const std::string& layer) {
    auto found = std::find(kLayers.begin(), kLayers.end(), layer);
    return found == kLayers.end() ? -1 : int(found - kLayers.begin());
}

struct Violation {
    std::string file;
    std::string include;
};

// The layer an include line names ("ui" for `#include <morvane/ui/core/View.h>`),
// or "" for any other line.
std::string includedLayer(std::string_view line) {
    auto skipBlanks = [&] {
        while (!line.empty() && (line.front() == ' ' || line.front() == '\t'))
            line.remove_prefix(1);
    };
    skipBlanks();
    if (!line.starts_with('#')) return {};
    line.remove_prefix(1);
    skipBlanks();
    if (!line.starts_with("include")) return {};
    line.remove_prefix(7);
    skipBlanks();
    constexpr std::string_view kPrefix = "<morvane/";
    if (!line.starts_with(kPrefix)) return {};
    line.remove_prefix(kPrefix.size());
    const auto slash = line.find('/');
    return slash == std::string_view::npos ? std::string() : std::string(line.substr(0, slash));
}

// Every include of a layer above the including file's own, under `root`
// (the library's src/morvane folder). Files outside any layer folder are
// skipped, and so are unknown folders: the test that follows names them.
std::vector<Violation> upwardIncludes(const std::filesystem::path& root) {
    std::vector<Violation> found;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
        if (!entry.is_regular_file()) continue;
        const auto relative = std::filesystem::relative(entry.path(), root);
        if (std::distance(relative.begin(), relative.end()) < 2) continue;
        const int own = rankOf(relative.begin()->string());
        if (own < 0) continue;
        std::ifstream in(entry.path());
        std::string line;
        while (std::getline(in, line)) {
            const std::string layer = includedLayer(line);
            if (!layer.empty() && rankOf(layer) > own) found.push_back({relative.string(), line});
        }
    }
    return found;
}

const std::filesystem::path kSources = std::filesystem::path(MORVANE_SOURCE_DIR) / "src" / "morvane";

} // namespace

TEST(LayerOrder, no_layer_includes_a_layer_above_it) {
    for (const Violation& v : upwardIncludes(kSources))
        ADD_FAILURE() << v.file << " reaches up a layer: " << v.include;
}

TEST(LayerOrder, every_folder_of_the_library_is_a_known_layer) {
    for (const auto& entry : std::filesystem::directory_iterator(kSources)) {
        if (!entry.is_directory()) continue;
        EXPECT_GE(rankOf(entry.path().filename().string()), 0)
            << entry.path().filename() << " is not in the list of layers";
    }
}

// The check itself: an include upwards in a scratch tree is found.
TEST(LayerOrder, an_upward_include_is_caught) {
    const auto root = std::filesystem::temp_directory_path() / "morvane-layer-order";
    std::filesystem::remove_all(root);
    std::filesystem::create_directories(root / "ui" / "core");
    std::ofstream(root / "ui" / "core" / "View.cpp") << "#include <morvane/gfx/Color.h>\n"
                                                     << "#include <morvane/lists/UITbl.h>\n";
    const auto found = upwardIncludes(root);
    std::filesystem::remove_all(root);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_NE(found[0].include.find("lists/UITbl.h"), std::string::npos);
}
