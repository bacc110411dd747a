#pragma once

namespace ZelUnified::ServiceEventSeverityEnum {

/// The severity with which a service event is reported to the user.
enum ServiceEventSeverity { Info = 0, Warning = 1, Error = 2, Critical = 3 };

} // namespace ZelUnified::ServiceEventSeverityEnum
