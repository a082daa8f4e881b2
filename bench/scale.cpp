// Large lists through the system's own call patterns: listing 10,000
// devices with the tool, the end of a pass over thousands of interfaces,
// a [-key] import over 30,000 keys, and enumerating 10,000 subkeys by
// index next to one plain SQLite query over the same rows.
#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <sys/resource.h>

#include <cstdlib>
#include <string>

#include "bench_store.h"
#include "platform/registry.h"
#include "platform/regfile/reg_import.h"
#include "platform/store.h"
#include "store/config_store.h"
#include "store/interface_setup.h"

namespace {

using namespace braxcfg;
using bench::BenchStore;
using platform::kRegOpenOrCreate;
using platform::Registry;

void putInterface(int number, int devices) {
    const std::string board = "GPIB" + std::to_string(number);
    const Registry intf("INTF" + std::to_string(number), kRegOpenOrCreate);
    intf.setString("VISAName", board);
    intf.setString("VISAIntfType", "GPIB");
    const Registry list(intf.handle(), "VISADev", kRegOpenOrCreate);
    for (int i = 0; i < devices; ++i) {
        const std::string device = board + "::" + std::to_string(i);
        const Registry entry(list.handle(), device + "\\" + device + "::INSTR", kRegOpenOrCreate);
        entry.setString("Driver", "INSTR");
        entry.setString("Prefix", "INSTR");
    }
}

void putInterfaces(int count, int devicesEach) {
    platform::StoreTransaction transaction;
    for (int n = 0; n < count; ++n) putInterface(n, devicesEach);
    transaction.commit();
}

double childCpuSeconds() {
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    const auto seconds = [](const timeval& t) { return static_cast<double>(t.tv_sec) + t.tv_usec / 1e6; };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

// Runs the tool on the bench store with its output thrown away; the time
// reported is the CPU time of the tool's process (the shell's included).
void runTool(benchmark::State& state, const BenchStore& bench, const std::string& arguments) {
    const std::string command =
        std::string(BRAXCFG_TOOL_PATH) + " --store " + bench.path() + " " + arguments + " >/dev/null";
    for (auto _ : state) {
        const double before = childCpuSeconds();
        if (std::system(command.c_str()) != 0) state.SkipWithError("the tool failed");
        state.SetIterationTime(childCpuSeconds() - before);
    }
}

void BM_ToolListsDevices(benchmark::State& state) {
    const BenchStore bench("scale");
    putInterfaces(1, static_cast<int>(state.range(0)));
    runTool(state, bench, "devices INTF0");
}
BENCHMARK(BM_ToolListsDevices)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond)->UseManualTime();

void BM_ToolInterfacesJson(benchmark::State& state) {
    const BenchStore bench("scale");
    putInterfaces(1, static_cast<int>(state.range(0)));
    runTool(state, bench, "interfaces --json");
}
BENCHMARK(BM_ToolInterfacesJson)->Arg(10000)->Unit(benchmark::kMillisecond)->UseManualTime();

// The first pass over interfaces nobody has set up (each gets its entries)
// and the pass after it (nothing left to do but look).
void BM_EndPass(benchmark::State& state) {
    const store::ConfigStore store;
    const bool first = state.range(1) != 0;
    for (auto _ : state) {
        state.PauseTiming();
        {
            const BenchStore bench("scale");
            putInterfaces(static_cast<int>(state.range(0)), 1);
            if (!first) store::doVisaEndStuff(store);
            state.ResumeTiming();
            store::doVisaEndStuff(store);
            state.PauseTiming();
        }
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_EndPass)
    ->ArgsProduct({{100, 1000, 3000, 10000}, {1, 0}})
    ->ArgNames({"interfaces", "first"})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(2);

// [-key] deletes a key with its whole tree: `count` device keys, each with
// one resource entry below it.
void BM_ImportDeleteKey(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0));
    const std::string reg = "REGEDIT4\n\n[-HKEY_LOCAL_MACHINE\\Big]\n";
    for (auto _ : state) {
        state.PauseTiming();
        {
            const BenchStore bench("scale");
            {
                platform::StoreTransaction transaction;
                const Registry big(platform::kLocalMachine, "Big", kRegOpenOrCreate);
                for (int i = 0; i < count; ++i)
                    Registry(big.handle(), "Device" + std::to_string(i) + "\\INSTR", kRegOpenOrCreate)
                        .setString("Driver", "INSTR");
                transaction.commit();
            }
            state.ResumeTiming();
            if (platform::regfile::importRegFile(platform::currentStore(), reg)) state.SkipWithError("import failed");
            state.PauseTiming();
        }
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * count * 2);
}
BENCHMARK(BM_ImportDeleteKey)->Arg(3000)->Arg(30000)->Unit(benchmark::kMillisecond)->Iterations(2);

// A store with `count` subkeys below "Many", and a second connection to it
// that stands for another process.
class ManySubkeys {
public:
    explicit ManySubkeys(int count) : bench_("enum") {
        platform::StoreTransaction transaction;
        const Registry many(platform::kLocalMachine, "Many", kRegOpenOrCreate);
        for (int i = 0; i < count; ++i) Registry(many.handle(), "Key" + std::to_string(i), kRegOpenOrCreate);
        transaction.commit();
        sqlite3_open(bench_.path().c_str(), &other_);
    }
    ~ManySubkeys() { sqlite3_close(other_); }
    ManySubkeys(const ManySubkeys&) = delete;
    ManySubkeys& operator=(const ManySubkeys&) = delete;
    sqlite3* other() const { return other_; }

private:
    BenchStore bench_;
    sqlite3* other_ = nullptr;
};

// Every round after another process's commit, so the list is read from the
// file again: the cost of one full enumeration, not of a kept list.
void BM_EnumerateSubkeysByIndex(benchmark::State& state) {
    const auto count = static_cast<std::uint32_t>(state.range(0));
    const ManySubkeys fixture(static_cast<int>(count));
    platform::StoreBackend& store = platform::currentStore();
    char name[80];
    for (auto _ : state) {
        state.PauseTiming();
        sqlite3_exec(fixture.other(), "CREATE TABLE IF NOT EXISTS touch (x); INSERT INTO touch VALUES (1)", nullptr,
                     nullptr, nullptr);
        state.ResumeTiming();
        platform::HKey key = platform::kNoKey;
        store.openKey(platform::kLocalMachine, "Many", platform::kKeyQueryValue, &key);
        std::uint32_t seen = 0;
        while (store.enumKey(key, seen, name, sizeof name) == platform::kErrorSuccess) ++seen;
        store.closeKey(key);
        if (seen != count) state.SkipWithError("enumeration ended early");
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * count);
}
BENCHMARK(BM_EnumerateSubkeysByIndex)->Arg(10000)->Unit(benchmark::kMillisecond);

// The yardstick: the same rows in the same order by one query.
void BM_PlainSqliteQuery(benchmark::State& state) {
    const auto count = static_cast<std::uint32_t>(state.range(0));
    const ManySubkeys fixture(static_cast<int>(count));
    sqlite3_stmt* stmt = nullptr;
    sqlite3_prepare_v2(fixture.other(),
                       "SELECT name FROM keys WHERE parent = (SELECT id FROM keys WHERE name = CAST('Many' AS BLOB)) "
                       "ORDER BY folded",
                       -1, &stmt, nullptr);
    for (auto _ : state) {
        std::uint32_t seen = 0;
        std::string name;
        while (sqlite3_step(stmt) == SQLITE_ROW) {
            name.assign(static_cast<const char*>(sqlite3_column_blob(stmt, 0)),
                        static_cast<std::size_t>(sqlite3_column_bytes(stmt, 0)));
            ++seen;
        }
        sqlite3_reset(stmt);
        if (seen != count) state.SkipWithError("query ended early");
    }
    sqlite3_finalize(stmt);
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * count);
}
BENCHMARK(BM_PlainSqliteQuery)->Arg(10000)->Unit(benchmark::kMillisecond);

}  // namespace
