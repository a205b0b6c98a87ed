// The NodeTree against nlohmann::json's DOM on the kinds of documents apps
// receive: a product catalogue (citm_catalog), social feeds (twitter,
// github_events) and a geometry file (canada). For every file it measures,
// side by side in this one run:
// - reading JSON text into a tree,
// - a full-tree key search that finds nothing (valKey),
// - the two deep copies (mutableChange, deepCopyDictionary),
// - text gathering (gatherTxt) and purging in place (mutablePurge),
// each against the same walk or copy written by hand over nlohmann::json, and
// - the heap bytes each tree holds, counted by this program's own global
//   operator new/delete (malloc_usable_size of every block, both libraries
//   alike).
// Times are the best of several alternating rounds. It ends with one GOAL line per goal;
// a goal counts as met only when every file meets it.

#include <morvane/model/Json.h>
#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/model/detail/BlockPool.h>

#include <nlohmann/json.hpp>

#include <malloc.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <new>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

// ---- Heap accounting -----------------------------------------------------------

namespace {
std::atomic<long long> gHeapBytes{0};
}

void* operator new(std::size_t size) {
    void* p = std::malloc(size ? size : 1);
    if (!p) throw std::bad_alloc();
    gHeapBytes.fetch_add(static_cast<long long>(malloc_usable_size(p)), std::memory_order_relaxed);
    return p;
}
void* operator new[](std::size_t size) {
    return operator new(size);
}
void operator delete(void* p) noexcept {
    if (!p) return;
    gHeapBytes.fetch_sub(static_cast<long long>(malloc_usable_size(p)), std::memory_order_relaxed);
    std::free(p);
}
void operator delete[](void* p) noexcept {
    operator delete(p);
}
void operator delete(void* p, std::size_t) noexcept {
    operator delete(p);
}
void operator delete[](void* p, std::size_t) noexcept {
    operator delete(p);
}

using namespace morvane;
using njson = nlohmann::json;

namespace {

std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream out;
    out << in.rdbuf();
    return out.str();
}

// Times two ways of doing the same work: rounds of one and of the other
// alternate, so that a change in the machine's load hits both alike. Each
// round repeats the work for at least `roundMs`; the result is the best mean
// round of each, in milliseconds.
struct Pair {
    double ours;
    double theirs;
    double ratio() const { return theirs / ours; }
};

Pair timePair(const std::function<void()>& ours, const std::function<void()>& theirs, int rounds = 7,
              double roundMs = 15.0) {
    using clock = std::chrono::steady_clock;
    auto round = [roundMs](const std::function<void()>& work) {
        int reps = 0;
        double elapsed = 0;
        const auto start = clock::now();
        do {
            work();
            ++reps;
            elapsed = std::chrono::duration<double, std::milli>(clock::now() - start).count();
        } while (elapsed < roundMs);
        return elapsed / reps;
    };
    Pair best{1e300, 1e300};
    for (int i = 0; i < rounds; ++i) {
        best.ours = std::min(best.ours, round(ours));
        best.theirs = std::min(best.theirs, round(theirs));
    }
    return best;
}

template <typename T> void keep(const T& value) {
    asm volatile("" : : "g"(&value) : "memory");
}

// ---- The same walks and copies over nlohmann::json -----------------------------

// valKey: own text entries first, then nested objects and arrays, skipping
// keys that contain '>'.
const njson* searchKeys(const njson& node, const std::string& key);

const njson* searchKeysInArray(const njson& array, const std::string& key) {
    for (const njson& element : array) {
        if (element.is_object()) {
            if (const njson* found = searchKeys(element, key)) return found;
        } else if (element.is_array()) {
            if (const njson* found = searchKeysInArray(element, key)) return found;
        }
    }
    return nullptr;
}

const njson* searchKeys(const njson& node, const std::string& key) {
    for (auto it = node.begin(); it != node.end(); ++it)
        if (it->is_string() && it.key() == key) return &*it;
    for (auto it = node.begin(); it != node.end(); ++it) {
        if (it.key().find('>') != std::string::npos) continue;
        if (it->is_object()) {
            if (const njson* found = searchKeys(*it, key)) return found;
        } else if (it->is_array()) {
            if (const njson* found = searchKeysInArray(*it, key)) return found;
        }
    }
    return nullptr;
}

// mutableChange: texts, objects and arrays; everything else dropped.
njson changeArray(const njson& array);

njson changeObject(const njson& node) {
    njson copy = njson::object();
    for (auto it = node.begin(); it != node.end(); ++it) {
        if (it->is_object())
            copy.emplace(it.key(), changeObject(*it));
        else if (it->is_array())
            copy.emplace(it.key(), changeArray(*it));
        else if (it->is_string())
            copy.emplace(it.key(), *it);
    }
    return copy;
}

njson changeArray(const njson& array) {
    njson copy = njson::array();
    // Like the NodeTree's copy, reserve only what is kept (a list of numbers
    // becomes an empty list without a buffer).
    const auto kept = std::count_if(array.begin(), array.end(), [](const njson& element) {
        return element.is_object() || element.is_array() || element.is_string();
    });
    if (kept > 0) copy.get_ref<njson::array_t&>().reserve(static_cast<std::size_t>(kept));
    for (const njson& element : array) {
        if (element.is_object())
            copy.push_back(changeObject(element));
        else if (element.is_array())
            copy.push_back(changeArray(element));
        else if (element.is_string())
            copy.push_back(element);
    }
    return copy;
}

// deepCopyDictionary: every value kept.
njson copyValue(const njson& value) {
    if (value.is_object()) {
        njson copy = njson::object();
        for (auto it = value.begin(); it != value.end(); ++it)
            copy.emplace(it.key(), copyValue(*it));
        return copy;
    }
    if (value.is_array()) {
        njson copy = njson::array();
        copy.get_ref<njson::array_t&>().reserve(value.size());
        for (const njson& element : value)
            copy.push_back(copyValue(element));
        return copy;
    }
    return value;
}

// gatherTxt: front + text under the key, run together within an object,
// joined by back between the non-empty pieces of an array.
void gatherArray(const njson& array, const std::string& key, const std::string& front,
                 const std::string& back, std::string& out);

void gatherObject(const njson& node, const std::string& key, const std::string& front,
                  const std::string& back, std::string& out) {
    for (auto it = node.begin(); it != node.end(); ++it) {
        if (it->is_object()) {
            gatherObject(*it, key, front, back, out);
        } else if (it->is_array()) {
            gatherArray(*it, key, front, back, out);
        } else if (it->is_string() && it.key() == key) {
            out += front;
            out += it->get_ref<const std::string&>();
        }
    }
}

void gatherArray(const njson& array, const std::string& key, const std::string& front,
                 const std::string& back, std::string& out) {
    const std::size_t start = out.size();
    for (const njson& element : array) {
        if (!element.is_object() && !element.is_array()) continue;
        const std::size_t before = out.size();
        if (before > start) out += back;
        const std::size_t pieceStart = out.size();
        if (element.is_object())
            gatherObject(element, key, front, back, out);
        else
            gatherArray(element, key, front, back, out);
        if (out.size() == pieceStart) out.resize(before);
    }
}

// mutablePurge: objects and texts under a key containing the word go, arrays
// are entered; "$" first, then "key".
void purgeArray(njson& array, const std::string& word);

void purgeObject(njson& node, const std::string& word) {
    // Like the NodeTree's walk, only the keys of objects and texts are searched.
    auto hit = [&](const auto& it) { return it.key().find(word) != std::string::npos; };
    for (auto it = node.begin(); it != node.end();) {
        if (it->is_object()) {
            if (hit(it)) {
                it = node.erase(it);
                continue;
            }
            purgeObject(*it, word);
        } else if (it->is_array()) {
            purgeArray(*it, word);
        } else if (it->is_string() && hit(it)) {
            it = node.erase(it);
            continue;
        }
        ++it;
    }
}

void purgeArray(njson& array, const std::string& word) {
    for (njson& element : array) {
        if (element.is_object())
            purgeObject(element, word);
        else if (element.is_array())
            purgeArray(element, word);
    }
}

void purgeAll(njson& node) {
    purgeObject(node, "$");
    purgeObject(node, "key");
}

// ---- Reporting -------------------------------------------------------------------

struct Goal {
    std::string name;
    bool higherIsBetter; // speed-ups: at least the target; memory: at most
    double target;
    double worst;
    bool any = false;

    void add(double value) {
        worst = !any ? value : higherIsBetter ? std::min(worst, value) : std::max(worst, value);
        any = true;
    }
    bool met() const { return higherIsBetter ? worst >= target : worst <= target; }
};

} // namespace

int main() {
    struct Sample {
        const char* file;
        const char* gatherKey; // a key the document holds many texts under
    };
    const Sample samples[] = {
        {"citm_catalog", "name"}, {"twitter", "text"}, {"github_events", "url"}, {"canada", "type"}};

    Goal parseGoal{"parse_speedup_vs_nlohmann", true, 3.0, 0};
    Goal searchGoal{"valKey_miss_speedup", true, 2.0, 0};
    Goal changeGoal{"mutableChange_speedup", true, 2.0, 0};
    Goal copyGoal{"deepCopyDictionary_speedup", true, 2.0, 0};
    Goal gatherGoal{"gatherTxt_speedup", true, 2.0, 0};
    Goal purgeGoal{"mutablePurge_speedup", true, 2.0, 0};
    Goal memoryGoal{"memory_ratio_vs_nlohmann", false, 1.0, 0};

    std::printf("%-14s %-20s %12s %12s %9s\n", "file", "measure", "NodeTree", "nlohmann", "ratio");
    auto row = [](const char* file, const char* what, double ours, double theirs, const char* unit,
                  double ratio) {
        std::printf("%-14s %-20s %10.3f%s %10.3f%s %8.2fx\n", file, what, ours, unit, theirs, unit, ratio);
    };

    for (const Sample& sample : samples) {
        const std::string text =
            readFile(std::string(MORVANE_SHARED_DATA_DIR "/json/") + sample.file + ".json");
        if (text.empty()) {
            std::printf("cannot read %s\n", sample.file);
            return 1;
        }

        // Memory first, from a quiet heap. The NodeTree is read in a thread of
        // its own: the kit reuses freed tree blocks per thread, and a new
        // thread has none, so every block of this tree is counted (in whole
        // slabs of blocks). A single text of the same length, read first,
        // lets the reader set up its parser buffers (which it keeps for small
        // texts and which belong to the reader, not the tree) without making
        // any tree blocks. The slabs the pool carves its blocks from are not
        // counted as such: the tree's pooled blocks are, each at the size the
        // pool carves it (the pool may hand this thread blocks freed earlier
        // elsewhere, which the heap would not see again).
        Value rootValue;
        long long treeBytes = 0;
        std::thread([&] {
            keep(json::parse("\"" + std::string(text.size() - 2, 'x') + "\""));
            const long long start = gHeapBytes.load();
            const long long slabStart = static_cast<long long>(detail::slabBytes());
            const long long blockStart = detail::threadBlockBytes();
            rootValue = json::parse(text);
            treeBytes = gHeapBytes.load() - start -
                        (static_cast<long long>(detail::slabBytes()) - slabStart) +
                        (detail::threadBlockBytes() - blockStart);
        }).join();
        long long before = gHeapBytes.load();
        njson doc = njson::parse(text);
        const long long domBytes = gHeapBytes.load() - before;
        if (rootValue.isAbsent()) {
            std::printf("%s did not read\n", sample.file);
            return 1;
        }
        // The operations are hosted on a Node: a document that is an array
        // (a feed) hangs under one key in both trees.
        NodePtr root = rootValue.node();
        if (!root) {
            root = Node::make({{"items", rootValue}});
            doc = njson{{"items", std::move(doc)}};
        }

        // Reading.
        const Pair parse = timePair([&] { keep(json::parse(text)); }, [&] { keep(njson::parse(text)); });
        row(sample.file, "parse", parse.ours, parse.theirs, "ms", parse.ratio());
        parseGoal.add(parse.ratio());

        // A key search that finds nothing walks the whole tree.
        const std::string missing = "noSuchKeyAnywhere";
        if (root->valKey(missing) || searchKeys(doc, missing)) return 1;
        const Pair search =
            timePair([&] { keep(root->valKey(missing)); }, [&] { keep(searchKeys(doc, missing)); });
        row(sample.file, "valKey (miss)", search.ours, search.theirs, "ms", search.ratio());
        searchGoal.add(search.ratio());

        const Pair change = timePair([&] { keep(root->mutableChange()); }, [&] { keep(changeObject(doc)); });
        row(sample.file, "mutableChange", change.ours, change.theirs, "ms", change.ratio());
        changeGoal.add(change.ratio());

        const Pair copy = timePair([&] { keep(root->deepCopyDictionary()); }, [&] { keep(copyValue(doc)); });
        row(sample.file, "deepCopyDictionary", copy.ours, copy.theirs, "ms", copy.ratio());
        copyGoal.add(copy.ratio());

        // Both gather the same pieces (in another order: nlohmann sorts keys).
        std::string theirGathered;
        gatherObject(doc, sample.gatherKey, "  ", "\n", theirGathered);
        if (root->gatherTxt(sample.gatherKey, "  ", "\n").size() != theirGathered.size()) {
            std::printf("%s: gathered texts differ\n", sample.file);
            return 1;
        }
        const Pair gather = timePair([&] { keep(root->gatherTxt(sample.gatherKey, "  ", "\n")); },
                                     [&] {
                                         std::string out;
                                         gatherObject(doc, sample.gatherKey, "  ", "\n", out);
                                         keep(out);
                                     });
        row(sample.file, "gatherTxt", gather.ours, gather.theirs, "ms", gather.ratio());
        gatherGoal.add(gather.ratio());

        // Purging changes the tree only the first time; the timed rounds walk
        // the purged trees, which is what every later purge costs.
        root->mutablePurge();
        purgeAll(doc);
        const Pair purge = timePair([&] { root->mutablePurge(); }, [&] { purgeAll(doc); });
        row(sample.file, "mutablePurge", purge.ours, purge.theirs, "ms", purge.ratio());
        purgeGoal.add(purge.ratio());

        row(sample.file, "memory", treeBytes / 1048576.0, domBytes / 1048576.0, "MB",
            static_cast<double>(treeBytes) / static_cast<double>(domBytes));
        memoryGoal.add(static_cast<double>(treeBytes) / static_cast<double>(domBytes));
    }

    std::printf(
        "\nSpeed ratios are nlohmann time / NodeTree time; memory ratios NodeTree bytes / nlohmann bytes.\n"
        "Each GOAL value is the worst file.\n");
    for (const Goal* goal :
         {&parseGoal, &searchGoal, &changeGoal, &copyGoal, &gatherGoal, &purgeGoal, &memoryGoal})
        std::printf("GOAL %s measured=%.2f target=%.2f met=%s\n", goal->name.c_str(), goal->worst,
                    goal->target, goal->met() ? "yes" : "no");
    return 0;
}
