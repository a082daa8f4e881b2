#pragma once
// How long the resource probe may take before it gives up: a product
// setting, so a site with slow links can allow more.
#include <chrono>

namespace braxcfg::visa {

// Value below the product key, in milliseconds (REG_DWORD or decimal text).
inline constexpr const char* kProbeTimeoutValue = "ResourceTestTimeout";
inline constexpr std::chrono::milliseconds kDefaultProbeTimeout{3000};
// Longer than this and the user would think the dialog hangs.
inline constexpr std::chrono::milliseconds kMaxProbeTimeout{60000};

// A requested timeout made usable: zero or negative gives the default, and
// anything above the maximum gives the maximum.
std::chrono::milliseconds clampProbeTimeout(long long milliseconds);

// The product setting, clamped; the default when it is missing.
std::chrono::milliseconds configuredProbeTimeout();

// A caller's own timeout when it gives one (positive), else the setting.
std::chrono::milliseconds effectiveProbeTimeout(std::chrono::milliseconds requested);

}  // namespace braxcfg::visa
