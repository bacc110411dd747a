#pragma once

namespace ZelUnified {

/// The number under which the service and its feature set are registered with the factory.
inline constexpr unsigned int configServiceId = 1300;

namespace ConfigServiceIdsEnum {

/// The event codes of the service.
enum ConfigServiceIds { TFTPDownloadFailed = 1 };

} // namespace ConfigServiceIdsEnum

} // namespace ZelUnified
