#include "VenueData.h"

#include "SampleFile.h"

#include <morvane/model/Json.h>
#include <morvane/model/List.h>
#include <morvane/model/Node.h>

namespace gallery {

using morvane::ListPtr;
using morvane::NodePtr;
using morvane::Value;

namespace {

bool endsWith(std::string_view text, std::string_view tail) {
    return text.size() >= tail.size() && text.substr(text.size() - tail.size()) == tail;
}

} // namespace

VenueData::VenueData(std::filesystem::path file, std::string serverBase)
    : file_(std::move(file)), serverBase_(std::move(serverBase)) {}

bool VenueData::load(std::string* error) {
    auto fail = [&](const std::string& why) {
        if (error) *error = file_.string() + ": " + why;
        return false;
    };
    const NodePtr root = readSampleFile(file_, serverBase_, &text_, error);
    if (!root) return false;
    const ListPtr& venues = root->get("venues").list();
    if (!venues || venues.get()->empty()) return fail("no \"venues\" list");
    for (const Value& venue : *venues)
        if (!venue.node() || !venue.node()->get("key").isText())
            return fail("every venue needs to be an object with a \"key\" text");
    city_ = root->get("city").textOr();
    tagline_ = root->get("tagline").textOr();
    return true;
}

ListPtr VenueData::rows(int edition, const std::vector<std::string>& updatedPictures,
                        const std::string& stamp) const {
    ListPtr rows = morvane::List::make();
    const NodePtr root = morvane::json::parseNode(text_);
    if (!root) return rows;
    auto take = [&](const char* section) {
        const ListPtr& list = root->get(section).list();
        if (!list) return;
        for (const Value& venue : *list) {
            const NodePtr& row = venue.node();
            if (!row) continue;
            if (edition > 0)
                for (const std::string& picture : updatedPictures)
                    if (endsWith(row->get("picture").textOr(), picture)) row->set("imaged", stamp);
            rows->push(row);
        }
    };
    take("venues");
    if (edition > 0) take("added");
    return rows;
}

std::string displayName(const NodePtr& row) {
    std::string name = row ? row->get("name").textOr() : std::string();
    for (std::size_t at = name.find("<en>"); at != std::string::npos; at = name.find("<en>", at))
        name.erase(at, 4);
    const std::size_t cut = name.find_last_of("/-");
    return cut == std::string::npos ? name : name.substr(cut + 1);
}

} // namespace gallery
