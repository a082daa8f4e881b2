// A second process for the store tests.
//
//   store_helper write PATH ID COUNT
//       COUNT times: a key Writers\W<ID>\K<i> with two values, each its own
//       operation, then one transaction adding 1 to the DWORD
//       Writers\Counter. A write the store refuses (busy too long) is
//       retried a few times and counted; any other failure exits 1.
//   store_helper read-only PATH
//       As an unprivileged user when run by root: opens the store and prints
//       "state=<n> writable=<0|1> read=<text> write=<result>" for the
//       string SOFTWARE\Probe "v" and an attempt to overwrite it.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/store.h"

using namespace braxcfg::platform;

namespace {

constexpr int kRetries = 3;
int refusedWrites = 0;

bool attempt(const char* what, RegResult (*operation)(void*), void* context) {
    for (int i = 0; i <= kRetries; ++i) {
        const RegResult rc = operation(context);
        if (rc == kErrorSuccess) return true;
        if (rc != kErrorCantWrite) {
            std::fprintf(stderr, "%s failed: %ld\n", what, rc);
            return false;
        }
        ++refusedWrites;
    }
    std::fprintf(stderr, "%s refused %d times\n", what, kRetries + 1);
    return false;
}

struct KeyWrite {
    std::string path;
    std::uint32_t index;
};

RegResult writeKey(void* context) {
    auto* write = static_cast<KeyWrite*>(context);
    StoreBackend& store = currentStore();
    HKey key = kNoKey;
    RegResult rc = store.createKey(kLocalMachine, write->path.c_str(), kKeyAllAccess, &key, nullptr);
    if (rc != kErrorSuccess) return rc;
    const std::string text = std::to_string(write->index);
    rc = store.setValue(key, "a", kRegSz, reinterpret_cast<const std::uint8_t*>(text.c_str()),
                        static_cast<std::uint32_t>(text.size() + 1));
    if (rc == kErrorSuccess)
        rc = store.setValue(key, "b", kRegDword, reinterpret_cast<const std::uint8_t*>(&write->index), 4);
    store.closeKey(key);
    return rc;
}

RegResult incrementCounter(void*) {
    StoreBackend& store = currentStore();
    StoreTransaction scope;
    if (!scope.active()) return kErrorCantWrite;
    HKey key = kNoKey;
    RegResult rc = store.createKey(kLocalMachine, "Writers", kKeyAllAccess, &key, nullptr);
    if (rc != kErrorSuccess) return rc;
    std::uint32_t counter = 0;
    std::uint32_t size = sizeof counter;
    rc = store.queryValue(key, "Counter", nullptr, reinterpret_cast<std::uint8_t*>(&counter), &size);
    if (rc == kErrorSuccess || rc == kErrorFileNotFound) {
        ++counter;
        rc = store.setValue(key, "Counter", kRegDword, reinterpret_cast<const std::uint8_t*>(&counter), 4);
    }
    store.closeKey(key);
    if (rc != kErrorSuccess) return rc;
    return scope.commit() ? kErrorSuccess : kErrorCantWrite;
}

int write(const char* path, const char* id, int count) {
    if (openStore(path).state != StoreOpenState::Open) return 1;
    for (int i = 0; i < count; ++i) {
        KeyWrite keyWrite{std::string("Writers\\W") + id + "\\K" + std::to_string(i),
                          static_cast<std::uint32_t>(i)};
        if (!attempt("key", writeKey, &keyWrite) || !attempt("counter", incrementCounter, nullptr)) return 1;
    }
    std::printf("refused=%d\n", refusedWrites);
    return 0;
}

int readOnly(const char* path) {
    if (::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0)) return 1;
    const StoreStatus status = openStore(path);
    StoreBackend& store = currentStore();
    HKey key = kNoKey;
    store.openKey(kLocalMachine, "SOFTWARE\\Probe", kKeyAllAccess, &key);
    char text[32] = "<none>";
    std::uint32_t size = sizeof text;
    store.queryValue(key, "v", nullptr, reinterpret_cast<std::uint8_t*>(text), &size);
    const RegResult written = store.setValue(key, "v", kRegSz, reinterpret_cast<const std::uint8_t*>("new"), 4);
    std::printf("state=%d writable=%d read=%s write=%ld\n", static_cast<int>(status.state), status.writable ? 1 : 0,
                text, written);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 5 && std::strcmp(argv[1], "write") == 0) return write(argv[2], argv[3], std::atoi(argv[4]));
    if (argc == 3 && std::strcmp(argv[1], "read-only") == 0) return readOnly(argv[2]);
    std::fprintf(stderr, "usage: store_helper write PATH ID COUNT | read-only PATH\n");
    return 2;
}
