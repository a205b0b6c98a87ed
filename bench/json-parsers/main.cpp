// Which JSON parser should feed the NodeTree? The reader has both: simdjson
// for strict text, RapidJSON's SAX events for lenient text (and for errors).
// Valid strict text read in lenient mode takes the RapidJSON path with the
// same work, so the two modes compare the two parsers building the same Nodes.
// simdjson goes first for strict text because this program says it is faster.

#include <morvane/model/Json.h>
#include <morvane/model/List.h>
#include <morvane/model/Node.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

using namespace morvane;

namespace {

std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream out;
    out << in.rdbuf();
    return out.str();
}

// Best of several runs, in milliseconds, each run at least ~20 ms long.
double bestMs(const std::function<void()>& work) {
    using clock = std::chrono::steady_clock;
    double best = 1e300;
    for (int round = 0; round < 7; ++round) {
        int reps = 0;
        const auto start = clock::now();
        double elapsed = 0;
        do {
            work();
            ++reps;
            elapsed = std::chrono::duration<double, std::milli>(clock::now() - start).count();
        } while (elapsed < 20.0);
        best = std::min(best, elapsed / reps);
    }
    return best;
}

} // namespace

int main() {
    const char* names[] = {"citm_catalog", "twitter", "github_events", "canada"};
    double rapidTotal = 0, simdTotal = 0;
    json::ReadOptions lenient;
    lenient.syntax = json::Syntax::Lenient;
    std::printf("%-16s %12s %12s %8s\n", "file", "rapidjson ms", "simdjson ms", "ratio");
    for (const char* name : names) {
        const std::string text = readFile(std::string(MORVANE_SHARED_DATA_DIR "/json/") + name + ".json");
        // Both must agree before their speed means anything.
        const Value viaRapid = json::parse(text, lenient);
        const Value viaSimd = json::parse(text);
        if (viaRapid.isAbsent() || !(viaRapid == viaSimd)) {
            std::printf("%s: the two parsers disagree\n", name);
            return 1;
        }
        const double rapid = bestMs([&] { json::parse(text, lenient); });
        const double simd = bestMs([&] { json::parse(text); });
        rapidTotal += rapid;
        simdTotal += simd;
        std::printf("%-16s %12.3f %12.3f %7.2fx\n", name, rapid, simd, rapid / simd);
    }
    const double ratio = rapidTotal / simdTotal;
    std::printf("total: rapidjson %.3f ms, simdjson %.3f ms; simdjson is %.2fx as fast\n", rapidTotal,
                simdTotal, ratio);
    std::printf("GOAL strict_reader_simdjson_speedup_over_rapidjson measured=%.2f target=1.00 met=%s\n",
                ratio, ratio >= 1.0 ? "yes" : "no");
    return 0;
}
