// Purging: removes in place the working entries the kit adds to a tree (the
// "key" stamps, the "$" entries of choice lists) before it is stored or
// handed on. Lists themselves are never removed, only entered.

#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/model/detail/Walk.h>

#include <cstdint>
#include <initializer_list>
#include <span>
#include <vector>

namespace morvane {

namespace {

// Purging word after word means one walk of the whole tree per word. One walk
// can do all of them and leave exactly what the word-by-word passes leave:
// - an entry matched by a word is removed when the walk reaches it (a later
//   pass would not find it), but the passes for the earlier words, which did
//   not match, still went into it first, and a shared Node can be reached
//   again elsewhere, so the walk enters it with those earlier words;
// - in a read-only Node nothing is removed, and a matched Node is entered
//   with the words that did not match it, as the separate passes do.
// `active` says which of the words (bit i for words[i]) a walk still applies.
// The walk keeps its own stack, so a tree of any depth is purged.
using Active = std::uint32_t;

class Purge {
  public:
    explicit Purge(std::span<const std::string_view> words) : words_(words) {
        for (std::string_view word : words)
            if (!word.empty()) firstBytes_[byte(word[0]) >> 6] |= std::uint64_t{1} << (byte(word[0]) & 63);
    }

    void node(Node& root, Active active) const { run({&root, nullptr, 0, active}); }
    void list(const List& root, Active active) const { run({nullptr, &root, 0, active}); }

  private:
    static unsigned byte(char c) { return static_cast<unsigned char>(c); }

    // The active words that `key` contains. Keys are short and rarely hold
    // the first byte of any word, so one scan against those bytes rules out
    // nearly every key before a word is compared.
    Active matchedWords(std::string_view key, Active active) const {
        bool candidate = false;
        for (char c : key)
            candidate |= (firstBytes_[byte(c) >> 6] >> (byte(c) & 63)) & 1;
        if (!candidate) return 0;
        Active matched = 0;
        for (std::size_t w = 0; w < words_.size(); ++w)
            if ((active >> w & 1) && !words_[w].empty() && key.find(words_[w]) != std::string_view::npos)
                matched |= Active{1} << w;
        return matched;
    }

    // A level of the walk's own stack: a Node whose entries may go, or a
    // list that is only entered.
    struct PurgeLevel {
        Node* node;
        const List* list;
        std::size_t next;
        Active active;
        Active matched = 0;    // the words the entry at `next` matched
        bool resuming = false; // back from inside that entry
    };

    void run(PurgeLevel root) const {
        std::vector<PurgeLevel> stack;
        stack.reserve(detail::kUsualDepth);
        stack.push_back(root);
        while (!stack.empty()) {
            PurgeLevel& level = stack.back();
            if (level.list) {
                // Only Nodes and lists holding containers are entered.
                std::string_view none;
                detail::Level elements{nullptr, level.list, level.next};
                const Value* element = detail::stepToContainer(elements, none);
                level.next = elements.next;
                if (!element) {
                    stack.pop_back();
                    continue;
                }
                const Active active = level.active;
                if (element->isNode())
                    stack.push_back({element->node().get(), nullptr, 0, active});
                else
                    stack.push_back({nullptr, element->list().get(), 0, active});
                continue;
            }
            Node& node = *level.node;
            if (level.resuming) {
                level.resuming = false;
                removeMatched(level);
                continue;
            }
            if (level.next >= node.size()) {
                stack.pop_back();
                continue;
            }
            const auto& [key, value] = node.entries()[level.next];
            // Only Node and text entries can go, so only their keys are
            // searched: most entries of a feed or catalogue are numbers,
            // flags and nulls.
            if (value.isList()) {
                ++level.next;
                if (detail::isListOfContainers(value))
                    stack.push_back({nullptr, value.list().get(), 0, level.active});
                continue;
            }
            if (!value.isNode() && !value.isText()) {
                ++level.next;
                continue;
            }
            const Active matched = matchedWords(key, level.active);
            Active enter = level.active & ~matched;
            if (matched != 0 && !node.isReadOnly()) {
                // Only the passes before the first matching word entered it.
                const Active first = matched & (~matched + 1);
                enter &= first - 1;
            }
            level.matched = matched;
            if (value.isNode() && enter != 0) {
                // The entry is removed (if it matched) once the walk is back.
                level.resuming = true;
                stack.push_back({value.node().get(), nullptr, 0, enter});
                continue;
            }
            removeMatched(level);
        }
    }

    static void removeMatched(PurgeLevel& level) {
        Node& node = *level.node;
        if (level.matched != 0 && level.next < node.size() && node.remove(node.entries()[level.next].first))
            return; // the next entry moved here
        ++level.next;
    }

    std::span<const std::string_view> words_;
    std::uint64_t firstBytes_[4] = {};
};

constexpr std::string_view kPurgeList[] = {"$", "key"};
constexpr Active kAllPurgeWords = (Active{1} << std::size(kPurgeList)) - 1;

} // namespace

void Node::mutablePurge() {
    Purge(kPurgeList).node(*this, kAllPurgeWords);
}

void Node::mutablePurge(std::string_view word) {
    const std::string_view words[] = {word};
    Purge(words).node(*this, 1);
}

void Node::mutablePurgeArray(const ListPtr& list, std::string_view word) {
    if (!list) return;
    const std::string_view words[] = {word};
    Purge(words).list(*list, 1);
}

} // namespace morvane
