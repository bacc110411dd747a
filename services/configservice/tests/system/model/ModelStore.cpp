#include "ModelStore.h"

#include <algorithm>
#include <iterator>
#include <limits>

namespace config_model {

namespace {

using Kind = StoreShape::Kind;

template <class Text>
bool equal(Text a, Text b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](auto x, auto y) { return fold(x) == fold(y); });
}

bool takesFipsOverride(const StoreShape& shape, bool found) {
    return shape.kind == Kind::DeviceManagement || (found && shape.kind != Kind::Foreign);
}

} // namespace

bool isSame(std::wstring_view a, std::wstring_view b) {
    return equal(a, b);
}

bool isSame(std::string_view a, std::string_view b) {
    return equal(a, b);
}

bool isBefore(std::wstring_view a, std::wstring_view b) {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                        [](auto x, auto y) { return fold(x) < fold(y); });
}

std::wstring toSmallLetters(std::wstring_view text) {
    std::wstring result;
    std::transform(text.begin(), text.end(), std::back_inserter(result), fold<wchar_t>);
    return result;
}

std::string narrow(std::wstring_view text) {
    std::string result;
    for (const auto character : text) {
        result += static_cast<char>(character);
    }
    return result;
}

std::wstring widen(std::string_view text) {
    return {text.begin(), text.end()};
}

ModelStore::ModelStore(const StoreShape& form) : shape(form) {
    shape.pairs.clear();
    for (const auto& [key, value] : form.pairs) {
        put(key, value);
    }
}

bool ModelStore::getValue(const std::wstring& key, std::wstring& value, bool fips) const {
    value.clear();
    bool found = false;
    for (const auto& [held, itsValue] : shape.pairs) {
        if (isSame(held, key)) {
            value = itsValue;
            found = true;
        }
    }
    if ((shape.kind == Kind::Copy || shape.kind == Kind::Registry) && isSame(key, L"CertificateValidationEnabled")) {
        value.clear();
        return false;
    }
    if (fips && takesFipsOverride(shape, found) && isSame(key, L"Telephony_P2P_Enabled")) {
        value = L"false";
    }
    return found;
}

bool ModelStore::storeValue(const std::wstring& key, const std::wstring& value) {
    if (shape.refusesWrites) {
        return false;
    }
    const bool oldName = shape.kind == Kind::UserFile && isSame(key, L"VVM_Mailstore_Server_0");
    put(oldName ? L"VoicemailPrimaryServer" : key, value);
    return true;
}

bool ModelStore::removeValue(const std::wstring& key) {
    return std::erase_if(shape.pairs, [&](const auto& pair) { return isSame(pair.first, key); }) > 0;
}

void ModelStore::removeAllValues() {
    if (shape.kind == Kind::Foreign || shape.kind == Kind::Memory || shape.kind == Kind::UserFile ||
        shape.kind == Kind::Defaults) {
        shape.pairs.clear();
    }
}

std::vector<std::wstring> ModelStore::getKeys() const {
    std::vector<std::wstring> keys;
    for (const auto& [key, value] : shape.pairs) {
        keys.push_back(key);
    }
    return keys;
}

int ModelStore::getCachedPriority() const {
    return shape.priority == std::numeric_limits<int>::max() ? shape.priority : shape.priority + 1;
}

void ModelStore::put(const std::wstring& key, const std::wstring& value) {
    for (auto& [held, itsValue] : shape.pairs) {
        if (isSame(held, key)) {
            itsValue = value;
            return;
        }
    }
    shape.pairs.emplace_back(key, value);
    std::sort(shape.pairs.begin(), shape.pairs.end(),
              [](const auto& a, const auto& b) { return isBefore(a.first, b.first); });
}

} // namespace config_model
