// The profile card at scale 3, in one run: a card filled again and again from
// 20-value guest Nodes (clear, the picture from the cache, name, values,
// translations answered at once) to its first frame; and a card of 500
// values, its frame at the top against its frame scrolled to the end.
// Ends with one GOAL line per goal.

#include "lists/BenchParts.h"

#include <morvane/forms/UIProfile.h>
#include <morvane/model/List.h>
#include <morvane/model/Node.h>

#include <cstdio>
#include <string>
#include <vector>

using namespace morvane;
using namespace morvane::bench;

namespace {

NodePtr guest(int n, int values) {
    NodePtr node = Node::make();
    node->set("name", Value("Front desk-Suite " + std::to_string(n) + "/Guest " + std::to_string(n)));
    node->set("key", Value("guests/" + std::to_string(n)));
    node->set("photo", Value("pic" + std::to_string(n % 5)));
    ListPtr list = List::make();
    for (int i = 0; i < values; ++i) {
        NodePtr value = Node::make();
        value->set("field", Value("field" + std::to_string(i)));
        if (i % 5 == 4)
            value->set("data", Value("Quiet room, late arrival " + std::to_string(n) + "<en>"));
        else if (i % 5 == 3)
            value->set("data", Value(100 + i + n));
        else
            value->set("data",
                       Value("+351 912 345 " + std::to_string(100 + i) + " / guest " + std::to_string(n)));
        list->push(Value(value));
    }
    node->set("values", Value(list));
    return node;
}

void fill(UIProfile& card, const NodePtr& node) {
    card.clear();
    card.addImage(node->get("photo").textOr(), std::nullopt);
    card.addKeyCode(node->get("key").textOr());
    card.addName(node->get("name").textOr());
    for (const Value& entry : *node->get("values").list()) {
        const NodePtr value = entry.node();
        card.addVal(value->get("data"), value->get("field").textOr());
    }
    card.refreshTranslate();
}

} // namespace

int main() {
    PictureFolder folder("morvane-profile-bench");
    ui::HeadlessHost host;
    FrameDrawer frame(3);

    auto card = std::make_shared<UIProfile>(gfx::Rect{0, 0, 390, 844});
    card->setBackgroundColor(gfx::Color(0.08, 0.13, 0.24));
    // A translation service that answers at once (on the calling thread).
    card->watchTranslate([](const std::string& text, TranslateCompletion done) {
        done("FR " + withoutTranslateMarkers(text));
    });
    host.root()->addSubview(card);

    std::vector<NodePtr> guests;
    for (int n = 0; n < 10; ++n)
        guests.push_back(guest(n, 20));
    for (const NodePtr& node : guests) { // the pictures into the cache
        fill(*card, node);
        frame(host);
    }
    std::vector<double> fills;
    for (int i = 0; i < 100; ++i) {
        const auto start = Clock::now();
        fill(*card, guests[std::size_t(i) % guests.size()]);
        frame(host);
        fills.push_back(msSince(start));
    }
    const double fillMs = median(fills);
    std::printf("20-value card filled and drawn at scale 3: median %.3f ms (last note shown: \"%s\")\n",
                fillMs, card->myLbl()[4]->text().c_str());

    // 500 values: the frame at the top against the frame at the end.
    fill(*card, guest(42, 500));
    frame(host);
    auto frames = [&](gfx::Point offset) {
        card->setContentOffset(offset);
        std::vector<double> times;
        for (int i = 0; i < 60; ++i) {
            const auto start = Clock::now();
            frame(host);
            times.push_back(msSince(start));
        }
        return median(times);
    };
    const double top = frames({0, 0});
    const double end = frames({0, card->contentSize().height - card->bounds().height});
    const double ratio = end / top;
    std::printf("500-value card (content %.0f points high): frame at the top %.3f ms, at the end %.3f ms\n",
                card->contentSize().height, top, end);

    std::printf("GOAL profile_fill_20_values_first_frame_ms measured=%.3f target=8 met=%s\n", fillMs,
                fillMs <= 8 ? "yes" : "no");
    std::printf("GOAL profile_500_values_end_vs_top_frame measured=%.3f target=1.2 met=%s\n", ratio,
                ratio <= 1.2 ? "yes" : "no");
    return 0;
}
