#pragma once
// CallbackRegistry: callbacks stored under names that their registrants
// choose. Registering again under a name replaces that entry where it stands;
// an event calls every entry in registration order.
//
//   registry.set("admin", [](const Value& key, const NodePtr& row) { ... });
//   for (auto& callback : registry.snapshot()) callback(key, row);
//
// Dispatch goes over a snapshot (a copy of the callbacks), so a callback may
// register, replace or remove entries, or destroy the registry's owner,
// while the event is being delivered.

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace morvane {

template <class Callback> class CallbackRegistry {
  public:
    using Entry = std::pair<std::string, Callback>;

    // Stores the callback under the name, replacing an earlier one in place.
    void set(std::string_view name, Callback callback) {
        auto found = std::find_if(entries_.begin(), entries_.end(),
                                  [name](const Entry& entry) { return entry.first == name; });
        if (found != entries_.end())
            found->second = std::move(callback);
        else
            entries_.emplace_back(std::string(name), std::move(callback));
    }
    // The callback under the name, or null when there is none.
    const Callback* find(std::string_view name) const {
        for (const Entry& entry : entries_)
            if (entry.first == name) return &entry.second;
        return nullptr;
    }
    // Takes the entry of that name out (nothing when there is none).
    void remove(std::string_view name) {
        std::erase_if(entries_, [name](const Entry& entry) { return entry.first == name; });
    }
    void clear() { entries_.clear(); }

    std::size_t size() const { return entries_.size(); }
    bool empty() const { return entries_.empty(); }
    const std::vector<Entry>& entries() const { return entries_; }
    // Copies of the callbacks in registration order, for dispatch.
    std::vector<Callback> snapshot() const {
        std::vector<Callback> callbacks;
        callbacks.reserve(entries_.size());
        for (const Entry& entry : entries_)
            callbacks.push_back(entry.second);
        return callbacks;
    }

  private:
    std::vector<Entry> entries_;
};

} // namespace morvane
