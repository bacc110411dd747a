#include "KeyWatcher.h"

#include <kyr/StringUtils.h>

#include <utility>

namespace lumora_config {

KeyWatcher::KeyWatcher(std::shared_ptr<ZelUnified::ConfigValue> followed,
                       std::vector<std::shared_ptr<ZelUnified::ConfigValue>> shownWithIt, Printer& target,
                       const SecretMask& secretMask, NameThread threadNamer)
    : record(std::move(followed)),
      companions(std::move(shownWithIt)),
      printer(target),
      mask(secretMask),
      nameThread(std::move(threadNamer)),
      lastSeen{{"Key", record->getKey()},
               {"Value", record->getValue()},
               {"OriginalValue", record->getOriginalValue()},
               {"isOverridden", KyrCoreUtils::toWideString(record->getisOverridden())},
               {"isDefined", KyrCoreUtils::toWideString(record->getisDefined())},
               {"ValueStoreName", record->getValueStoreName()},
               {"OriginalValueStoreName", record->getOriginalValueStoreName()}} {}

void KeyWatcher::OnKeyChanged() {
    report("Key", record->getKey(), Secrecy::Shown);
}

void KeyWatcher::OnValueChanged() {
    report("Value", record->getValue(), Secrecy::Hidden);
}

void KeyWatcher::OnOriginalValueChanged() {
    report("OriginalValue", record->getOriginalValue(), Secrecy::Hidden);
}

void KeyWatcher::OnisOverriddenChanged() {
    report("isOverridden", record->getisOverridden());
}

void KeyWatcher::OnisDefinedChanged() {
    report("isDefined", record->getisDefined());
}

void KeyWatcher::OnValueStoreNameChanged() {
    report("ValueStoreName", record->getValueStoreName(), Secrecy::Shown);
}

void KeyWatcher::OnOriginalValueStoreNameChanged() {
    report("OriginalValueStoreName", record->getOriginalValueStoreName(), Secrecy::Shown);
}

void KeyWatcher::report(const std::string& property, const std::wstring& now, Secrecy secrecy) {
    const auto key = record->getKey();
    const auto before = std::exchange(lastSeen[property], now);
    const auto shown = [&](const std::wstring& value) {
        return secrecy == Secrecy::Hidden ? mask.show(key, value) : value;
    };
    Notification notification{key, property, shown(before), shown(now), nameThread(), {}};
    for (const auto& companion : companions) {
        notification.companions.emplace_back(companion->getKey(),
                                             mask.show(companion->getKey(), companion->getValue()));
    }
    printer.showNotification(notification);
}

void KeyWatcher::report(const std::string& property, bool now) {
    report(property, KyrCoreUtils::toWideString(now), Secrecy::Shown);
}

} // namespace lumora_config
