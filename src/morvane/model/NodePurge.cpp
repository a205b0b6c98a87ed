// Purging: removes in place the working entries the kit adds to a tree (the
// "key" stamps, the "$" entries of choice lists) before it is stored or
// handed on. Lists themselves are never removed, only entered.

#include <morvane/model/List.h>
#include <morvane/model/Node.h>

#include <cstdint>
#include <initializer_list>
#include <span>

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
using Active = std::uint32_t;

class Purge {
  public:
    explicit Purge(std::span<const std::string_view> words) : words_(words) {
        for (std::string_view word : words)
            if (!word.empty()) firstBytes_[byte(word[0]) >> 6] |= std::uint64_t{1} << (byte(word[0]) & 63);
    }

    void node(Node& node, Active active) const {
        std::size_t i = 0;
        while (i < node.size()) {
            const auto& [key, value] = node.entries()[i];
            // Only Node and text entries can go, so only their keys are
            // searched: most entries of a feed or catalogue are numbers,
            // flags and nulls.
            if (value.isList()) {
                if (value.listMayHoldContainers()) list(*value.list(), active);
                ++i;
                continue;
            }
            if (!value.isNode() && !value.isText()) {
                ++i;
                continue;
            }
            const Active matched = matchedWords(key, active);
            Active enter = active & ~matched;
            if (matched != 0 && !node.isReadOnly()) {
                // Only the passes before the first matching word entered it.
                const Active first = matched & (~matched + 1);
                enter &= first - 1;
            }
            if (value.isNode() && enter != 0) this->node(*value.node(), enter);
            if (matched != 0 && node.remove(key)) continue; // the next entry moved here
            ++i;
        }
    }

    void list(const List& list, Active active) const {
        for (const Value& element : list) {
            if (element.isNode())
                node(*element.node(), active);
            else if (element.listMayHoldContainers())
                this->list(*element.list(), active);
        }
    }

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
