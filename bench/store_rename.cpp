// Renaming the entries of an interface whose VISA name changed: every
// device entry (with its INSTR resource entry) carries the old name.
#include <benchmark/benchmark.h>

#include <string>

#include "bench_store.h"
#include "platform/registry.h"
#include "platform/store.h"
#include "store/config_store.h"

namespace {

using namespace braxcfg;
using bench::BenchStore;

// INTF0, now GPIB0, with `count` devices still named after GPIB1.
void putStaleInterface(int count) {
    platform::StoreTransaction transaction;
    const platform::Registry intf("INTF0", platform::kRegOpenOrCreate);
    intf.setString("VISAName", "GPIB0");
    intf.setString("VISAIntfType", "GPIB");
    const platform::Registry devices(intf.handle(), "VISADev", platform::kRegOpenOrCreate);
    for (int i = 0; i < count; ++i) {
        const std::string device = "GPIB1::" + std::to_string(i);
        const platform::Registry resource(devices.handle(), device + "\\" + device + "::INSTR",
                                          platform::kRegOpenOrCreate);
        resource.setString("Driver", "INSTR");
        resource.setString("Prefix", "INSTR");
    }
    const platform::Registry intfResource(intf.handle(), "VISAIntfRsrc\\GPIB1::INTFC", platform::kRegOpenOrCreate);
    intfResource.setString("Driver", "INSTR");
    transaction.commit();
}

void BM_RenameStaleEntries(benchmark::State& state) {
    const BenchStore bench("rename");
    const store::ConfigStore store;
    const int count = static_cast<int>(state.range(0));
    putStaleInterface(count);
    bool toGpib0 = true;
    for (auto _ : state) {
        // Every round renames the whole list back to the other board.
        state.PauseTiming();
        platform::Registry("INTF0", platform::kRegOpenExisting).setString("VISAName", toGpib0 ? "GPIB0" : "GPIB1");
        state.ResumeTiming();
        store.RenameIntfEntries("INTF0");
        toGpib0 = !toGpib0;
    }
    const std::string expected = toGpib0 ? "GPIB1::0" : "GPIB0::0";
    if (store.GetDeviceName("INTF0", 0) != expected) state.SkipWithError("entries were not renamed");
    state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(BM_RenameStaleEntries)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

// The steady state at the end of every pass: nothing to rename.
void BM_RenameNothingStale(benchmark::State& state) {
    const BenchStore bench("rename");
    const store::ConfigStore store;
    putStaleInterface(static_cast<int>(state.range(0)));
    store.RenameIntfEntries("INTF0");
    for (auto _ : state) store.RenameIntfEntries("INTF0");
}
BENCHMARK(BM_RenameNothingStale)->Arg(10000)->Unit(benchmark::kMillisecond);

}  // namespace
