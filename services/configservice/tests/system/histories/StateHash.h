#pragma once

#include "ModelStore.h"

#include <cstdint>
#include <functional>
#include <string>

namespace config_model {

/// Computes the hash of a state from its parts, added in a fixed order.
class StateHash {
public:
    void add(std::uint64_t number) {
        value = (value ^ number) * 0x9fb21c651e98df25U;
        value ^= value >> 32U;
    }
    void add(const std::string& text) { add(std::hash<std::string>()(text)); }
    void add(const std::wstring& text) { add(std::hash<std::wstring>()(text)); }
    void add(const Pairs& pairs) {
        add(pairs.size());
        for (const auto& [key, itsValue] : pairs) {
            add(key);
            add(itsValue);
        }
    }
    std::uint64_t get() const { return value; }

private:
    std::uint64_t value = 1;
};

} // namespace config_model
