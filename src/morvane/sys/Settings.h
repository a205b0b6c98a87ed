#pragma once
// The settings store of an application (what the kit calls the user defaults):
// texts and NodeTree values under text keys, kept in one SQLite database in
// the application's data folder.
//
// Every save is one committed transaction in write-ahead-log mode, flushed to
// disk before it returns, so a program killed at any moment (or a power cut)
// keeps every value whose save returned; synchronize() has nothing left to do. A missing store is
// created; a damaged one is moved aside (with a logged warning) and replaced
// by a fresh one. A store that cannot be opened at all is kept in memory for
// the run, again with a warning. Safe from any thread.

#include <morvane/model/Value.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace morvane::sys {

class Settings {
  public:
    // The store of the application: App::dataFolder() / "Settings.sqlite",
    // opened on first use (and opened anew if the data folder changes).
    static std::shared_ptr<Settings> standard();

    // Opens (or creates) the store in that file.
    explicit Settings(std::filesystem::path file);
    ~Settings();
    Settings(const Settings&) = delete;
    Settings& operator=(const Settings&) = delete;

    // Store a value under a key; true once it is committed. Storing the
    // absent value removes the key. Nodes, lists, numbers, flags and null are
    // kept as JSON; opaque objects (colours, callbacks) cannot be stored.
    bool setText(std::string_view key, std::string_view text);
    bool setValue(std::string_view key, const Value& value);
    bool remove(std::string_view key);

    // The text stored under the key, or nothing (also when a non-text value is stored there).
    std::optional<std::string> text(std::string_view key) const;
    // The value stored under the key, or the absent value. Nodes and lists come
    // back as new, mutable copies of what was saved.
    Value value(std::string_view key) const;
    std::vector<std::string> keys() const;

    // Every save is already durable.
    bool synchronize() const { return true; }

    const std::filesystem::path& file() const;

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace morvane::sys
