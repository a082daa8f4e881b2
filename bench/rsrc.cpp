// Resource-string parsing speed: parse plus canonical name over a mixed
// corpus of realistic strings (bench/rsrc_corpus.txt, one per line, every
// interface type, a few invalid ones). Reported per string.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "platform/store.h"
#include "rsrc/io_parms.h"

namespace {

using braxcfg::rsrc::IoParms;

std::vector<std::string> loadCorpus() {
    std::vector<std::string> corpus;
    std::ifstream file(std::filesystem::path(__FILE__).parent_path() / "rsrc_corpus.txt");
    for (std::string line; std::getline(file, line);) corpus.push_back(line);
    return corpus;
}

// A store of its own, so the cached PXI naming is read from a known
// (default) configuration and no user's store is touched.
void openScratchStore() {
    static const bool opened = [] {
        char dir[] = "/tmp/bench_rsrc.XXXXXX";
        if (mkdtemp(dir) == nullptr) std::abort();
        braxcfg::platform::openStore(std::string(dir) + "/store.db");
        return true;
    }();
    (void)opened;
}

// Each string in a buffer of its own that parse may trim.
struct Workload {
    std::vector<std::string> corpus = loadCorpus();
    std::vector<std::vector<char>> buffers;
    void refill() {
        buffers.resize(corpus.size());
        for (std::size_t i = 0; i < corpus.size(); ++i)
            buffers[i].assign(corpus[i].c_str(), corpus[i].c_str() + corpus[i].size() + 1);
    }
};

// items_per_second, and time_per_string in seconds ("330n" is 330 ns).
void reportPerString(benchmark::State& state, std::size_t strings) {
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * strings));
    state.counters["time_per_string"] = benchmark::Counter(
        static_cast<double>(strings), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

template <bool kWithAltName>
void BM_ParseAndName(benchmark::State& state) {
    openScratchStore();
    Workload work;
    if (work.corpus.size() < 200) {
        state.SkipWithError("the corpus has fewer than 200 strings");
        return;
    }
    work.refill();
    IoParms parms;
    char canonical[IoParms::kNameBufferSize];
    char alternate[IoParms::kNameBufferSize];
    for (auto _ : state) {
        for (auto& buffer : work.buffers) {
            benchmark::DoNotOptimize(parms.parse(buffer.data(), false));
            benchmark::DoNotOptimize(parms.getCanonicalName(canonical, sizeof canonical));
            if constexpr (kWithAltName) benchmark::DoNotOptimize(parms.getAltName(alternate, sizeof alternate));
        }
    }
    reportPerString(state, work.buffers.size());
}

BENCHMARK_TEMPLATE(BM_ParseAndName, false)->Name("ParseAndCanonicalName");
BENCHMARK_TEMPLATE(BM_ParseAndName, true)->Name("ParseCanonicalAndAltName");

}  // namespace
