// The device list dialog on a large interface: opening it (offscreen) with
// every stored device listed, and its OK rewriting the whole list.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <cstdlib>
#include <string>
#include <vector>

#include "bench_store.h"
#include "dialogs/show_devices.h"
#include "platform/registry.h"
#include "platform/store.h"
#include "store/config_store.h"
#include "store/device_list_write.h"
#include "ui/modal.h"

namespace {

using namespace braxcfg;

void ensureApplication() {
    static int argc = 1;
    static char name[] = "bench_device_list";
    static char* argv[] = {name, nullptr};
    if (QApplication::instance() != nullptr) return;
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    static QApplication application(argc, argv);
}

std::vector<std::string> deviceNames(int count) {
    std::vector<std::string> names;
    for (int i = 0; i < count; ++i) names.push_back("GPIB0::" + std::to_string(i + 1) + "::" + std::to_string(i % 31));
    return names;
}

// GPIB0 as INTF0 with `devices` device keys, and one resource class.
void prepareInterface(const std::vector<std::string>& devices) {
    platform::StoreTransaction transaction;
    const platform::Registry intf("INTF0", platform::kRegOpenOrCreate);
    intf.setString("VISAName", "GPIB0");
    intf.setString("VISAIntfType", "GPIB");
    intf.setBool("VISAAutoConfig", true);
    const platform::Registry list(intf.handle(), "VISADev", platform::kRegOpenOrCreate);
    for (const std::string& device : devices) platform::Registry(list.handle(), device, platform::kRegOpenOrCreate);
    const platform::Registry instr("VISAInfo\\DefaultRsrcs\\INSTR", platform::kRegOpenOrCreate);
    instr.setString("DrvrName", "INSTR");
    instr.setString("PrefixName", "INSTR");
    instr.setBool("GPIB", true);
    transaction.commit();
}

void BM_OpenDeviceList(benchmark::State& state) {
    ensureApplication();
    bench::BenchStore bench("device-list-open");
    prepareInterface(deviceNames(static_cast<int>(state.range(0))));
    // The run shows the dialog, lets it paint once, and ends it.
    const ui::ModalHandler previous = ui::setModalHandler([](QDialog& dialog) {
        dialog.show();
        QApplication::processEvents();
        dialog.hide();
        return ui::kIdCancel;
    });
    const store::ConfigStore store;
    for (auto _ : state) {
        dialogs::CShowDevices dialog(nullptr);
        dialog.Init(store, "INTF0", "GPIB0", "INSTR", true, true);
        dialog.doModal();
        benchmark::DoNotOptimize(dialog.m_deviceList.count());
    }
    ui::setModalHandler(previous);
}
BENCHMARK(BM_OpenDeviceList)->Arg(10000)->Unit(benchmark::kMillisecond);

void BM_RewriteDeviceList(benchmark::State& state) {
    bench::BenchStore bench("device-list-write");
    const std::vector<std::string> devices = deviceNames(static_cast<int>(state.range(0)));
    prepareInterface(devices);
    const store::ConfigStore store;
    const store::DeviceListWrite plan{"INTF0", 0, devices, "INSTR"};
    for (auto _ : state) benchmark::DoNotOptimize(store::writeDeviceList(store, plan));
}
BENCHMARK(BM_RewriteDeviceList)->Arg(1000)->Unit(benchmark::kMillisecond);

}  // namespace
