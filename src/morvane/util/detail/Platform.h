#pragma once
// What the util layer needs from the platform: the kit's clock, standard error,
// the platform log and the application's settings. Kept behind these few
// functions so the operations do not care where each one comes from.

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace morvane::detail {

std::chrono::system_clock::time_point now();
// Writes the line as it stands (the caller adds the line break it wants).
void writeStandardError(std::string_view line);
// Writes one line to the platform log, which adds its own time stamp.
void writeLog(std::string_view line);

std::optional<std::string> settingText(std::string_view key);
void setSettingText(std::string_view key, std::string_view value);

} // namespace morvane::detail
