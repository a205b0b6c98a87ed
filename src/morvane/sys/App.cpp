#include <morvane/sys/App.h>

#include <morvane/sys/Log.h>

#include <cerrno>
#include <cstdlib>
#include <mutex>
#include <pwd.h>
#include <unistd.h>

namespace morvane::sys {
namespace {

// Never destroyed: any thread may ask for a folder while the program exits.
struct AppState {
    std::mutex mutex;
    std::string identifier;
    std::filesystem::path resources, documents, data;
};

AppState& state() {
    static AppState* instance = new AppState;
    return *instance;
}

bool isPlainName(std::string_view name) {
    if (name.empty() || name == "." || name == ".." || name.size() > 255) return false;
    for (char c : name) {
        bool ok = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' ||
                  c == '-' || c == '_';
        if (!ok) return false;
    }
    return true;
}

std::string defaultIdentifier() {
    std::string name = program_invocation_short_name ? program_invocation_short_name : "";
    std::string cleaned;
    for (char c : name)
        cleaned += isPlainName(std::string_view(&c, 1)) ? c : '-';
    if (cleaned.empty()) cleaned = "app";
    return "org.morvane." + cleaned;
}

std::string identifierLocked() {
    if (state().identifier.empty()) state().identifier = defaultIdentifier();
    return state().identifier;
}

// A variable that is set to an absolute path, or nothing.
std::filesystem::path environmentFolder(const char* name) {
    const char* value = std::getenv(name);
    if (!value || value[0] != '/') return {};
    return value;
}

std::filesystem::path xdgDataHome() {
    if (auto folder = environmentFolder("XDG_DATA_HOME"); !folder.empty()) return folder;
    std::filesystem::path home = environmentFolder("HOME");
    if (home.empty()) {
        if (struct passwd* entry = getpwuid(getuid()); entry && entry->pw_dir && entry->pw_dir[0] == '/')
            home = entry->pw_dir;
    }
    if (home.empty()) return std::filesystem::temp_directory_path();
    return home / ".local" / "share";
}

} // namespace

std::string App::identifier() {
    std::lock_guard lock(state().mutex);
    return identifierLocked();
}

bool App::setIdentifier(std::string_view identifier) {
    if (!isPlainName(identifier)) {
        Log::platform("Refusing the application identifier \"" + std::string(identifier) +
                      "\": it must be a plain name");
        return false;
    }
    std::lock_guard lock(state().mutex);
    state().identifier = identifier;
    return true;
}

std::filesystem::path App::resourceFolder() {
    std::lock_guard lock(state().mutex);
    if (!state().resources.empty()) return state().resources;
    if (auto folder = environmentFolder("MORVANE_RESOURCE_DIR"); !folder.empty()) return folder;
    std::error_code error;
    auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    if (error) return std::filesystem::current_path(error) / "resources";
    return program.parent_path() / "resources";
}

std::filesystem::path App::documentsFolder() {
    std::lock_guard lock(state().mutex);
    if (!state().documents.empty()) return state().documents;
    if (auto folder = environmentFolder("MORVANE_DOCUMENTS_DIR"); !folder.empty()) return folder;
    return xdgDataHome() / identifierLocked() / "Documents";
}

std::filesystem::path App::dataFolder() {
    std::lock_guard lock(state().mutex);
    if (!state().data.empty()) return state().data;
    if (auto folder = environmentFolder("MORVANE_DATA_DIR"); !folder.empty()) return folder;
    return xdgDataHome() / identifierLocked();
}

void App::setResourceFolder(std::filesystem::path folder) {
    std::lock_guard lock(state().mutex);
    state().resources = std::move(folder);
}

void App::setDocumentsFolder(std::filesystem::path folder) {
    std::lock_guard lock(state().mutex);
    state().documents = std::move(folder);
}

void App::setDataFolder(std::filesystem::path folder) {
    std::lock_guard lock(state().mutex);
    state().data = std::move(folder);
}

} // namespace morvane::sys
