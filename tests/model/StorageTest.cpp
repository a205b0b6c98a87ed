// How Nodes and lists hold their contents: shared ownership, lists that keep
// small contents in their own block, and walks that must see every change.

#include "Trees.h"

#include <morvane/model/Json.h>

#include <gtest/gtest.h>

#include <functional>
#include <random>

using namespace morvane;
using namespace morvane::testing;

namespace {
std::vector<double> numbersOf(const List& l) {
    std::vector<double> out;
    for (const Value& v : l)
        out.push_back(v.number());
    return out;
}
} // namespace

// A list made for two elements keeps them in its own block; growing, inserting
// and erasing past that must keep order and values, and release what goes.
TEST(Storage, list_grows_out_of_its_block_and_keeps_order_and_ownership) {
    ListPtr l = List::withCapacity(2);
    l->push(1);
    l->push(2);
    NodePtr held = node({{"a", "x"}});
    l->push(held);
    l->insert(0, 0);
    for (int i = 3; i < 40; ++i)
        l->push(i);
    ASSERT_EQ(l->size(), 41u);
    EXPECT_EQ(l->at(0).number(), 0);
    EXPECT_EQ(l->at(1).number(), 1);
    EXPECT_EQ(l->at(3).node(), held);
    EXPECT_EQ(l->at(40).number(), 39);
    EXPECT_EQ(held.use_count(), 2);

    l->erase(3);
    EXPECT_EQ(held.use_count(), 1);
    for (std::size_t i = l->size(); i-- > 0;)
        if (static_cast<int>(l->at(i).number()) % 2 == 1) l->erase(i);
    EXPECT_EQ(numbersOf(*l).size(), 20u);
    EXPECT_EQ(l->at(0).number(), 0);
    EXPECT_EQ(l->at(19).number(), 38);

    l->push(held);
    l->clear();
    EXPECT_TRUE(l->empty());
    EXPECT_EQ(held.use_count(), 1);
    l->push(7);
    EXPECT_EQ(numbersOf(*l), std::vector<double>{7});
}

// Copies of Values share texts, Nodes and lists; the count follows them.
// A Node that no NodePtr owns (on the stack) is never taken over: operations
// that return the receiver give a copy of it instead.
TEST(Storage, shared_containers_are_counted_and_a_stack_node_is_never_adopted) {
    NodePtr n = node({{"t", "text"}});
    {
        Value a(n);
        Value b = a;
        Value c = std::move(b);
        EXPECT_TRUE(b.isAbsent());
        EXPECT_EQ(n.use_count(), 3);
        EXPECT_EQ(c.node(), n);
        EXPECT_EQ(n->copyObj(Value()), n);
    }
    EXPECT_EQ(n.use_count(), 1);

    Node onStack{{"k", "v"}};
    NodePtr fromStack = onStack.copyObj(Value());
    ASSERT_TRUE(fromStack);
    EXPECT_NE(fromStack.get(), &onStack);
    EXPECT_EQ(fromStack->get("k").textOr(), "v");

    Value text("shared");
    Value copy = text;
    EXPECT_EQ(text.text(), copy.text()); // one block, not two strings
}

// The reader's small number lists are passed by; one that gains a Node later
// must be entered again, by the searches and by purging.
TEST(Storage, walks_enter_a_parsed_number_list_that_gained_a_node_later) {
    Value parsed = json::parse(R"({"shape": [[1, 2], [3, 4]]})");
    NodePtr root = parsed.node();
    EXPECT_FALSE(root->valKey("late"));

    root->get("shape").list()->at(1).list()->push(node({{"late", "found"}, {"$x", "y"}}));
    EXPECT_EQ(root->valKey("late").textOr(), "found");
    root->mutablePurge();
    EXPECT_FALSE(root->valKey("$x"));
}

// A small list of numbers that gets a Node later, by any of the list's
// changing operations, must be entered by every walk through any Value that
// holds it, including Values made before the change.
TEST(Storage, every_way_of_putting_a_node_into_a_number_list_is_seen) {
    auto found = [](const Value& holder) {
        NodePtr root = node({{"entry", holder}, {"inList", list({holder})}});
        // The key search, the gathering (once from the entry, once from the
        // list) and the Node search.
        return root->valKey("k").textOr() + "|" + root->gatherTxt("k", "", "") + "|" +
               (root->nodeKey("k") ? "node" : "");
    };
    auto hit = [] { return Value(node({{"k", "x"}})); };

    // Each change, seen through the Value that holds the list and through a
    // copy of it made before the change.
    const std::pair<const char*, std::function<void(List&)>> changes[] = {
        {"replace", [&](List& l) { l.replace(1, hit()); }},
        {"insert", [&](List& l) { l.insert(1, hit()); }},
        {"clear then push", [&](List& l) { l.clear(), l.push(2), l.push(hit()); }},
    };
    for (const auto& [name, change] : changes) {
        ListPtr l = List::make({1, 2});
        Value holder(l);
        Value copy = holder;
        change(*l);
        EXPECT_EQ(found(holder), "x|xx|") << name;
        EXPECT_EQ(found(copy), "x|xx|") << name;
    }
    ListPtr l = List::make({"a"});
    Value holder(l);
    l->copyAll(list({node({{"k", node({{"inner", "y"}})}})}));
    EXPECT_EQ(found(holder), "||node");
    // A list search gives the element that holds the hit.
    EXPECT_EQ(node({{"entry", holder}})->nodeKey("k")->get("k").node()->get("inner").textOr(), "y");
}

namespace {
// A random tree whose keys now and then hold "$" or "key", with Nodes that
// appear in two places and read-only branches. The same seed gives the same
// tree, sharing included.
NodePtr randomTree(unsigned seed) {
    std::mt19937 random(seed);
    const char* keys[] = {"a", "b$", "key", "monkey$", "$k", "c", "d", "keys"};
    std::vector<NodePtr> made;
    auto pickKey = [&] {
        return std::string(keys[random() % std::size(keys)]) + std::to_string(random() % 3);
    };
    std::function<NodePtr(int)> build = [&](int depth) {
        NodePtr n = Node::make();
        const int entries = 1 + static_cast<int>(random() % 4);
        for (int i = 0; i < entries; ++i) {
            const unsigned kind = depth > 3 ? 0 : random() % 5;
            if (kind == 0 || kind == 1) {
                n->set(pickKey(), "t");
            } else if (kind == 2 && !made.empty()) {
                n->set(pickKey(), made[random() % made.size()]); // shared
            } else if (kind == 3) {
                n->set(pickKey(), list({build(depth + 1), 5, build(depth + 1)}));
            } else {
                n->set(pickKey(), build(depth + 1));
            }
        }
        if (random() % 7 == 0) n->setReadOnly(true);
        made.push_back(n);
        return n;
    };
    return build(0);
}
} // namespace

// Purging all words in one walk must leave exactly what purging word by word
// leaves, shared and read-only Nodes included.
TEST(Storage, purging_all_words_at_once_equals_purging_word_by_word) {
    for (unsigned seed = 1; seed <= 300; ++seed) {
        NodePtr together = randomTree(seed);
        NodePtr apart = randomTree(seed);
        ASSERT_EQ(json::write(Value(together)), json::write(Value(apart)));
        together->mutablePurge();
        apart->mutablePurge("$");
        apart->mutablePurge("key");
        ASSERT_EQ(json::write(Value(together)), json::write(Value(apart))) << "seed " << seed;
    }
}
