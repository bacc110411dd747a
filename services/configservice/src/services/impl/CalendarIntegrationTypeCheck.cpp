#include "CalendarIntegrationTypeCheck.h"

#include "ConfigValueImpl.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>

namespace ZelUnified {

using namespace zel::registry;

namespace {

std::wstring valueFor(std::string client) {
    std::ranges::transform(client, client.begin(),
                           [](unsigned char byte) { return static_cast<char>(std::tolower(byte)); });
    if (client == "microsoft outlook") {
        return L"1";
    }
    return client == "lotus notes" || client == "ibm notes" ? L"2" : L"0";
}

std::string failure(const char* text, RegistryResult code) {
    return text + std::to_string(static_cast<std::int32_t>(code));
}

/// Opens the registry key of the mail clients; the destructor closes the handle even if opening it failed.
class MailClientsKey {
public:
    explicit MailClientsKey(HKEY root)
        : result(registry->RegOpenKeyExW(root, L"SOFTWARE\\Clients\\Mail", 0, KEY_READ, key)) {}
    ~MailClientsKey() { registry->RegCloseKey(key); }
    MailClientsKey(const MailClientsKey&) = delete;
    MailClientsKey& operator=(const MailClientsKey&) = delete;

    RegistryResult getResult() const { return result; }

    RegistryResult readDefaultValue(std::span<char> buffer) const {
        std::uint32_t type = REG_NONE;
        std::uint32_t length = 0;
        return registry->RegQueryValueExA(key, nullptr, type, buffer, length);
    }

private:
    const std::shared_ptr<Registry> registry = getRegistry();
    HKEY key{};
    RegistryResult result;
};

} // namespace

void CalendarIntegrationTypeCheck::detectCalendarIntegrationType(ZelLogger& logger,
                                                                 const std::shared_ptr<ConfigValueImpl>& record) {
    auto client = GetDefaultMailClientFromRegedit(logger, HKEY_CURRENT_USER);
    if (client.empty()) {
        client = GetDefaultMailClientFromRegedit(logger, HKEY_LOCAL_MACHINE);
    }
    record->setValue(valueFor(std::move(client)));
}

std::string CalendarIntegrationTypeCheck::GetDefaultMailClientFromRegedit(ZelLogger& logger, HKEY root) {
    const MailClientsKey key(root);
    if (key.getResult() != RegistryResult::Success) {
        ZelLog(logger, ZelLogLevel::Error, ZEL_HERE,
               failure("GetDefaultMailClientFromRegedit - RegOpenKeyEx returned error:", key.getResult()));
        return {};
    }
    std::array<char, 260> buffer{};
    if (const auto result = key.readDefaultValue(buffer); result != RegistryResult::Success) {
        ZelLog(logger, ZelLogLevel::Error, ZEL_HERE,
               failure("GetDefaultMailClientFromRegedit - RegQueryValueExA returned error:", result));
        return {};
    }
    return {buffer.begin(), std::ranges::find(buffer, '\0')};
}

} // namespace ZelUnified
