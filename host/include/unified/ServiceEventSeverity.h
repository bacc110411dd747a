#pragma once

namespace ZelUnified::ServiceEventSeverityEnum {

/// How the user is told of a service event.
enum ServiceEventSeverity { Info = 0, Warning = 1, Error = 2, Critical = 3 };

} // namespace ZelUnified::ServiceEventSeverityEnum
