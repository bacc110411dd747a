#pragma once

#include <registry/Registry.h>
#include <zel/ZelLog.h>

#include <memory>
#include <string>

namespace ZelUnified {

class ConfigValueImpl;

/// Derives the kind of calendar integration from the machine's default mail client. Services dispatcher's thread.
class CalendarIntegrationTypeCheck {
public:
    CalendarIntegrationTypeCheck() = delete;

    /// Sets the record's value: "1" for Outlook, "2" for Notes, "0" otherwise. Notifies no observer and does not change
    /// whether the record is defined.
    static void detectCalendarIntegrationType(ZelLogger& logger, const std::shared_ptr<ConfigValueImpl>& record);

    /// Returns the name of the default mail client under `root`, in UTF-8. If there is none, logs an error and returns
    /// an empty string.
    static std::string GetDefaultMailClientFromRegedit(ZelLogger& logger, zel::registry::HKEY root);
};

} // namespace ZelUnified
