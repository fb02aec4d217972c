// HostileModes.h -- how a test chooses what the Hostile*.dll modules do
#pragma once

#include <atomic>
#include <cstdint>
#include <cstdlib>

// Bits of the exported variable HostileMode of HostileControls.dll; read at each build of an instance.
enum HostileControlsMode : uint32_t {
    HOSTILE_MANY = 1,       // asks for 200 controls
    HOSTILE_COUNT = 2,      // writes garbage into the control count, between two controls and at the end
    HOSTILE_TYPE = 4,       // control types that do not exist
    HOSTILE_NAME = 8,       // name, description and rows without a 0 anywhere, a name without its second 0, no name
    HOSTILE_ITEMS = 16,     // item selects: no rows behind a count, a count of 0, a huge one, rows without text
    HOSTILE_RANGES = 32,    // NaN and infinite floats, reversed and extreme integers
    HOSTILE_SOURCE = 64,    // sources, waves, periods and smoothing lengths out of every range
    HOSTILE_DEPENDS = 128,  // a dependency on itself, a circle of two, an unknown comparison
    HOSTILE_POINTERS = 256, // garbage in the pointers and counts that are the host's to fill
    HOSTILE_LATER = 512     // a control of each type, in order while it builds; every later call spoils them all
};

// HostileSlow.dll exports HostileSleepMs: how long each draw sleeps; looked at while it sleeps, too.
constexpr uint32_t HOSTILE_SLEEP_MS = 5000;

// HostileWriter.dll exports HostileReach: how many pixels beyond the end of its bitmap it writes.

// The start value of an exported variable, a std::atomic<uint32_t>: from the environment, for programs that a test
// starts as a child.
inline uint32_t HostileSetting(const char *pszVariable, uint32_t dwDefault)
{
    const char *psz = std::getenv(pszVariable);
    return psz ? static_cast<uint32_t>(std::strtoul(psz, nullptr, 0)) : dwDefault;
}
