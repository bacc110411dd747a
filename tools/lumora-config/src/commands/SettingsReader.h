#pragma once

#include "Session.h"
#include "output/SettingsDump.h"

#include <string>

/// Reads settings from the chain, in key order, with secrets: the caller masks them. Main thread.
namespace lumora_config {

/// Returns the content of the user's file in memory, without the record of cached copies, which belongs to the profile.
/// Throws Failure (NotFound) if the chain has no such store.
SettingsDump readUsersValues(Session& session);
/// Returns the content of one store. Throws Failure (NotFound) if there is no such store.
SettingsDump readStoreValues(Session& session, const std::string& storeName);
/// Returns the values in force.
SettingsDump readEffectiveValues(Session& session);
/// Returns the values in force without the user's own settings.
SettingsDump readAdministratorsValues(Session& session);

/// Returns the values that SettingsDump names `source`; an empty text means the user's.
SettingsDump readSource(Session& session, const std::string& source);

/// Leaves out the values of sensitive keys.
void hideSecrets(SettingsDump& dump);

/// Returns true for a key that describes other files of the profile and has no meaning in another one.
bool belongsToProfile(const std::wstring& key);

} // namespace lumora_config
