#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace bench {

/// A key, folded and hashed once for all tables in which it is looked up.
struct FoldedProbe {
    std::wstring_view folded;
    std::size_t hash;
};

/// Folds one probe after another into one buffer. Folds ASCII letters only.
class Folder {
public:
    FoldedProbe operator()(std::wstring_view key) {
        buffer.resize(key.size());
        for (std::size_t i = 0; i < key.size(); ++i) {
            const bool upper = key[i] >= L'A' && key[i] <= L'Z';
            buffer[i] = upper ? static_cast<wchar_t>(key[i] + (L'a' - L'A')) : key[i];
        }
        return {buffer, std::hash<std::wstring_view>{}(buffer)};
    }

private:
    std::wstring buffer;
};

// Not noexcept: the library then stores the hash in each entry and does not compute it again during a search.
struct FoldedHash {
    using is_transparent = void;
    std::size_t operator()(const std::wstring& key) const { return std::hash<std::wstring>{}(key); }
    std::size_t operator()(const FoldedProbe& probe) const { return probe.hash; }
};

struct FoldedEqual {
    using is_transparent = void;
    bool operator()(const std::wstring& a, const std::wstring& b) const { return a == b; }
    bool operator()(const FoldedProbe& probe, const std::wstring& key) const { return probe.folded == key; }
};

/// The limit of a lookup: the standard library's hash map of folded keys, with a probe that is folded and hashed once.
/// The product adds the chain, the records, the locks and the guards.
using BareTable = std::unordered_map<std::wstring, std::wstring, FoldedHash, FoldedEqual>;

} // namespace bench
