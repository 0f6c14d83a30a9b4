// Tests for the running system's version, which pick the look of toolbars, splash and about box. On
// any other system there is no such version to be had, and all of them are false.
#pragma once

#include <optional>

namespace pollarix {

struct SystemVersion {
    int platformId = 0;
    int major = 0;
    int minor = 0;
};

// The version of the running system; none where the question fails, as it does off that system.
std::optional<SystemVersion> DetectedVersion();

bool IsWindows95(std::optional<SystemVersion> version = DetectedVersion());
bool IsWindows98(std::optional<SystemVersion> version = DetectedVersion());
bool IsWindows2000(std::optional<SystemVersion> version = DetectedVersion());
bool IsWindowsXP(std::optional<SystemVersion> version = DetectedVersion());

} // namespace pollarix
