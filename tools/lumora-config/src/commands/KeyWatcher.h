#pragma once

#include "SecretMask.h"
#include "output/Printer.h"

#include <ConfigValue.h>
#include <ConfigValueObserver.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace lumora_config {

/// Observes one record and prints every changed property with its old and new value. Call on the services dispatcher's
/// thread.
class KeyWatcher final : public ZelUnified::ConfigValueObserver {
public:
    /// Returns the name of the calling thread.
    using NameThread = std::function<std::string()>;

    /// The printer and the mask must outlive the watcher. Each change is printed with the current values of the records
    /// in `shownWithIt`.
    KeyWatcher(std::shared_ptr<ZelUnified::ConfigValue> followed,
               std::vector<std::shared_ptr<ZelUnified::ConfigValue>> shownWithIt, Printer& target,
               const SecretMask& secretMask, NameThread threadNamer);

    void OnKeyChanged() override;
    void OnValueChanged() override;
    void OnOriginalValueChanged() override;
    void OnisOverriddenChanged() override;
    void OnisDefinedChanged() override;
    void OnValueStoreNameChanged() override;
    void OnOriginalValueStoreNameChanged() override;

    const std::shared_ptr<ZelUnified::ConfigValue>& getRecord() const { return record; }

private:
    enum class Secrecy { Hidden, Shown };

    void report(const std::string& property, const std::wstring& now, Secrecy secrecy);
    void report(const std::string& property, bool now);

    const std::shared_ptr<ZelUnified::ConfigValue> record;
    const std::vector<std::shared_ptr<ZelUnified::ConfigValue>> companions;
    Printer& printer;
    const SecretMask& mask;
    const NameThread nameThread;
    std::map<std::string, std::wstring> lastSeen; ///< The last printed value of each property.
};

} // namespace lumora_config
