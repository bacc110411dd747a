#pragma once

#include "Service.h"

#include <ConfigMap.h>
#include <ConfigStore.h>
#include <ConfigValue.h>

#include <memory>
#include <string>

namespace config_model {

// Converts the types of a script to those of the product, and back.

std::shared_ptr<ZelUnified::ConfigStore> makeStore(const StoreShape& shape);
/// If a key occurs twice, the last value wins.
ZelUnified::ConfigMap toConfigMap(const Pairs& pairs);
/// Returns the document for ConfigService::setMdmConfig(). The texts must not need escapes.
std::string toMdmDocument(const Pairs& pairs);
RecordView toRecordView(ZelUnified::ConfigValue& record);

} // namespace config_model
