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

    /// Sets the record's value: "1" for Outlook, "2" for Notes, "0" for all else. Nothing is fired, and the record
    /// stays as undefined as it was.
    static void detectCalendarIntegrationType(ZelLogger& logger, const std::shared_ptr<ConfigValueImpl>& record);

    /// The name of the default mail client under that root, UTF-8; empty when there is none, with an error line.
    static std::string GetDefaultMailClientFromRegedit(ZelLogger& logger, zel::registry::HKEY root);
};

} // namespace ZelUnified
