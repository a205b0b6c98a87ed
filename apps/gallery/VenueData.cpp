#include "VenueData.h"

#include <morvane/model/Json.h>
#include <morvane/model/List.h>
#include <morvane/model/Node.h>

#include <fstream>
#include <sstream>

namespace gallery {

using morvane::ListPtr;
using morvane::NodePtr;
using morvane::Value;

namespace {

void replaceAll(std::string& text, std::string_view what, std::string_view with) {
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size()))
        text.replace(at, what.size(), with);
}

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
    std::ifstream in(file_, std::ios::binary);
    if (!in) return fail("cannot be read");
    std::ostringstream text;
    text << in.rdbuf();
    text_ = text.str();
    replaceAll(text_, "{server}", serverBase_);

    auto result = morvane::json::read(text_);
    if (!result) return fail(result.error->describe());
    const NodePtr& root = result.value.node();
    if (!root) return fail("the top level is not an object");
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
    replaceAll(name, "<en>", "");
    const std::size_t cut = name.find_last_of("/-");
    return cut == std::string::npos ? name : name.substr(cut + 1);
}

} // namespace gallery
