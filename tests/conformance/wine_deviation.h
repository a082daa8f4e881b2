#pragma once
// Where Wine's registry does not do what Windows does. The suite states
// Windows behaviour, which the SQLite store keeps; under Wine an assertion
// that meets a known deviation expects Wine's answer instead, and the run
// names the deviation, so the same suite passes under Wine and would pass
// on Windows.
#include <gtest/gtest.h>

#include <iostream>

#ifdef _WIN32
#include <windows.h>
#endif

namespace braxcfg::test {

struct WineDeviation {
    const char *name, *what;
};

inline constexpr WineDeviation kWineSubkeyOrder{
    "subkey-order", "Wine sorts subkeys by lower-cased name, Windows by upper-cased name ('_' before letters)"};
inline constexpr WineDeviation kWineValueOrder{
    "value-order", "Wine enumerates values sorted by name, Windows in creation order"};

inline constexpr WineDeviation kWineKeyNameLimit{
    "key-name-limit", "Wine accepts key names of 256 characters, Windows stops at 255"};
inline constexpr WineDeviation kWineNarrowPathLimit{
    "narrow-path-limit",
    "Wine's narrow (A) calls convert a subkey path in a 260-character buffer: a longer path is ERROR_MORE_DATA"};
inline constexpr WineDeviation kWineEnumValueData{
    "enum-value-data",
    "with no room for the name, Wine's RegEnumValueA copies a truncated name and the data; Windows leaves the data "
    "(and, in most versions, the name)"};
inline constexpr WineDeviation kWineValueNameLimit{
    "value-name-limit",
    "Wine checks the value-name limit only when setting: reading or deleting a longer name is ERROR_FILE_NOT_FOUND"};
inline constexpr WineDeviation kWineInvalidParentResult{
    "invalid-parent-result", "with an invalid parent handle Wine clears the opened key, Windows leaves it as it was"};

inline bool runningUnderWine() {
#ifdef _WIN32
    static const bool wine = GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version") != nullptr;
    return wine;
#else
    return false;
#endif
}

// `windows` normally; under Wine `wine`, with the deviation named in the
// output and in the test's recorded properties.
template <typename T>
T expectedAnswer(const T& windows, const WineDeviation& deviation, const T& wine) {
    if (!runningUnderWine()) return windows;
    std::cout << "[ KNOWN WINE DEVIATION ] " << deviation.name << ": " << deviation.what << "\n";
    ::testing::Test::RecordProperty(std::string("wine_deviation_") + deviation.name, deviation.what);
    return wine;
}

}  // namespace braxcfg::test
