#pragma once

#include "SettingsDump.h"

namespace lumora_config {

/// What counts as a difference of two keys that both sides contain.
enum class Compared { Values, ValuesAndStores };

/// Compares by key, ignoring case. The result contains secrets.
Comparison compareSettings(const SettingsDump& left, const SettingsDump& right, Compared compared);

/// Leaves out the values of keys that one of the sides marks as sensitive.
void hideSecrets(Comparison& comparison);

} // namespace lumora_config
