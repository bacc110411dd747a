#pragma once

#include <limits>

/// Where the stores that this library makes stand in the chain; a lower number comes first and wins. Stores of other
/// services bring their own priority, and their cached copies the recorded one.
namespace ZelUnified::StorePriorities {

inline constexpr int localFile = 20;
inline constexpr int registry = 33;
/// Of a cached copy whose recorded priority is no number.
inline constexpr int cachedCopy = 240;
/// The same for a record that is handed in as text; differs by tradition.
inline constexpr int cachedCopyOfGivenRecord = 40;
inline constexpr int urlProvisioning = 499;
inline constexpr int mdm = 500;
inline constexpr int inMemory = 600;
inline constexpr int defaults = std::numeric_limits<int>::max();

} // namespace ZelUnified::StorePriorities
