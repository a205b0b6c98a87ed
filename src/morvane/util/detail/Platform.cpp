#include <morvane/util/detail/Platform.h>

#include <cstdio>
#include <map>
#include <mutex>

namespace morvane::detail {

std::chrono::system_clock::time_point now() {
    return std::chrono::system_clock::now();
}

void writeStandardError(std::string_view line) {
    std::fwrite(line.data(), 1, line.size(), stderr);
    std::fflush(stderr);
}

void writeLog(std::string_view line) {
    std::fprintf(stderr, "%.*s\n", static_cast<int>(line.size()), line.data());
    std::fflush(stderr);
}

namespace {
std::mutex settingsMutex;
std::map<std::string, std::string, std::less<>> settings;
} // namespace

std::optional<std::string> settingText(std::string_view key) {
    std::lock_guard lock(settingsMutex);
    auto it = settings.find(key);
    if (it == settings.end()) return std::nullopt;
    return it->second;
}

void setSettingText(std::string_view key, std::string_view value) {
    std::lock_guard lock(settingsMutex);
    settings.insert_or_assign(std::string(key), std::string(value));
}

} // namespace morvane::detail
