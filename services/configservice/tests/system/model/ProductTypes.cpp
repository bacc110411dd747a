#include "ProductTypes.h"

#include "TracedConfigStore.h"

namespace config_model {

std::shared_ptr<ZelUnified::ConfigStore> makeStore(const StoreShape& shape) {
    return std::make_shared<TracedConfigStore>(shape, [](const std::string&) {});
}

ZelUnified::ConfigMap toConfigMap(const Pairs& pairs) {
    ZelUnified::ConfigMap map;
    for (const auto& [key, value] : pairs) {
        map[key] = value;
    }
    return map;
}

std::string toMdmDocument(const Pairs& pairs) {
    std::wstring document = L"<root><group>";
    for (const auto& [key, value] : pairs) {
        document += L"<" + key + L">" + value + L"</" + key + L">";
    }
    return narrow(document + L"</group></root>");
}

RecordView toRecordView(ZelUnified::ConfigValue& record) {
    return {
        record.getKey(),       record.getValue(),          record.getOriginalValue(),         record.getisOverridden(),
        record.getisDefined(), record.getValueStoreName(), record.getOriginalValueStoreName()};
}

} // namespace config_model
