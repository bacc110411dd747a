#pragma once

#include <limits>

/// The priorities of the stores that this library creates; the lowest number comes first in the chain and wins. Stores
/// of other services have their own priority, and their cached copies have the recorded one.
namespace ZelUnified::StorePriorities {

inline constexpr int localFile = 20;
inline constexpr int registry = 33;
/// For a cached copy whose recorded priority is not a number.
inline constexpr int cachedCopy = 240;
/// The same for a record passed as text. The difference is historical.
inline constexpr int cachedCopyOfGivenRecord = 40;
inline constexpr int urlProvisioning = 499;
inline constexpr int mdm = 500;
inline constexpr int inMemory = 600;
inline constexpr int defaults = std::numeric_limits<int>::max();

} // namespace ZelUnified::StorePriorities
