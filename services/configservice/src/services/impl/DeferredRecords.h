#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace ZelUnified {

class ConfigValueImpl;

/// The records of a batch whose changes are to be shown later, as they were announced. They are asked for in the same
/// order, and who takes the next one from here need not search for it.
class DeferredRecords {
public:
    /// Begins another batch once a record was taken.
    void add(const std::shared_ptr<ConfigValueImpl>& record);
    /// Lets go of the next record and gives it, if it is that of the key. Else gives none, and forgets the batch.
    std::shared_ptr<ConfigValueImpl> take(const std::wstring& key);
    void clear() noexcept;

private:
    std::vector<std::shared_ptr<ConfigValueImpl>> records;
    std::size_t taken = 0;
};

} // namespace ZelUnified
