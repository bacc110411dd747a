#pragma once

#include "ByteSource.h"
#include "ServiceModel.h"

#include <filesystem>
#include <string>

namespace simulated_year {

/// A way in which a protected file can be damaged.
enum class FileDamage { FlippedBits, Truncated, Emptied, OtherKey, OtherVersion };

FileDamage pickDamage(config_model::ByteSource& bytes);
std::string describe(FileDamage damage);
/// Returns what the host does with such a file when it starts.
config_model::ServiceModel::Files::Damage effectOf(FileDamage damage);

/// Damages a protected file that can be read. Returns its new content.
std::string damageFile(const std::filesystem::path& path, FileDamage damage, config_model::ByteSource& bytes);

} // namespace simulated_year
