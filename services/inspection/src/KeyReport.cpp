#include "KeyReport.h"

namespace inspection {

namespace ConfigKeys = ZelUnified::ConfigKeys;
using KyrCoreUtils::toString;

Json showKey(const ConfigKeys::KeyRow& row) {
    auto values = Json::array();
    for (const auto value : ConfigKeys::getPermittedValues(row)) {
        values.push_back(toString(value));
    }
    return {{"key", toString(row.name)},
            {"oldName", row.isRenamed() ? Json(toString(row.oldName)) : Json()},
            {"sensitive", row.isSensitive()},
            {"kind", ConfigKeys::describeKind(row.kind)},
            {"values", std::move(values)},
            {"permitted", ConfigKeys::describePermittedValues(row)},
            {"provisioning", row.isProvisionable()},
            {"meaning", row.meaning},
            {"rule", row.rule},
            {"use", row.use}};
}

} // namespace inspection
