// Store backend costs: a typical read and writing device-like keys with and without one transaction around them.
#include <benchmark/benchmark.h>

#include <string>

#include "bench_store.h"
#include "platform/store.h"

namespace {

using namespace braxcfg::platform;

using braxcfg::bench::BenchStore;

HKey create(const std::string& path, HKey parent = kLocalMachine) {
    HKey key = kNoKey;
    currentStore().createKey(parent, path.c_str(), kKeyAllAccess, &key, nullptr);
    return key;
}

void setString(HKey key, const char* name, const std::string& text) {
    currentStore().setValue(key, name, kRegSz, reinterpret_cast<const std::uint8_t*>(text.c_str()),
                            static_cast<std::uint32_t>(text.size() + 1));
}

void BM_OpenKeyAndReadValue(benchmark::State& state) {
    BenchStore bench;
    StoreBackend& store = currentStore();
    const HKey device = create("SOFTWARE\\Tolvane\\Linkbase\\CurrentVersion\\Devices\\GPIB0");
    setString(device, "Resource", "GPIB0::22::INSTR");
    store.closeKey(device);
    char buffer[256];
    for (auto _ : state) {
        HKey key = kNoKey;
        store.openKey(kLocalMachine, "SOFTWARE\\Tolvane\\Linkbase\\CurrentVersion\\Devices\\GPIB0", kKeyQueryValue,
                      &key);
        std::uint32_t size = sizeof buffer;
        benchmark::DoNotOptimize(
            store.queryValue(key, "Resource", nullptr, reinterpret_cast<std::uint8_t*>(buffer), &size));
        store.closeKey(key);
    }
}
BENCHMARK(BM_OpenKeyAndReadValue);

void writeDevices(const std::string& parentPath, int count) {
    const HKey parent = create(parentPath);
    for (int i = 0; i < count; ++i) {
        const HKey device = create("Device" + std::to_string(i), parent);
        setString(device, "Resource", "TCPIP0::10.0.0." + std::to_string(i % 250) + "::inst0::INSTR");
        setString(device, "Alias", "bench" + std::to_string(i));
        currentStore().closeKey(device);
    }
    currentStore().closeKey(parent);
}

void BM_Write1000DevicesInOneTransaction(benchmark::State& state) {
    BenchStore bench;
    int run = 0;
    for (auto _ : state) {
        StoreTransaction scope;
        writeDevices("Run" + std::to_string(run++), 1000);
        if (!scope.commit()) state.SkipWithError("commit failed");
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * 1000);
}
BENCHMARK(BM_Write1000DevicesInOneTransaction)->Unit(benchmark::kMillisecond);

void BM_Write1000DevicesOneByOne(benchmark::State& state) {
    BenchStore bench;
    int run = 0;
    for (auto _ : state) writeDevices("Run" + std::to_string(run++), 1000);
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * 1000);
}
BENCHMARK(BM_Write1000DevicesOneByOne)->Unit(benchmark::kMillisecond);

}  // namespace
