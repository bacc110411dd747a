#pragma once

#include "output/Findings.h"

#include <ConfigFeatureSet.h>

#include <memory>
#include <string>
#include <vector>

namespace lumora_config {

/// Decides whether a value may be shown; nothing else in the program does. A key is sensitive if the service reports
/// its old name or its new name as sensitive. Any thread.
class SecretMask {
public:
    SecretMask(std::shared_ptr<ZelUnified::ConfigFeatureSet> adapter, bool showAll);

    /// Returns "VALUE_HIDDEN" if the key is sensitive and secrets are not shown, otherwise the value.
    std::wstring show(const std::wstring& key, const std::wstring& value) const;
    /// Sets `sensitive`, and masks all values of a sensitive key unless secrets are shown.
    void hide(Explanation& explanation) const;
    void hide(std::vector<ListedValue>& values) const;

    /// Returns true if the key is sensitive.
    bool hides(const std::wstring& key) const { return isSensitive(key); }

    bool showsSecrets() const { return showSecrets; }

private:
    bool isSensitive(const std::wstring& key) const;

    const std::shared_ptr<ZelUnified::ConfigFeatureSet> featureSet;
    const bool showSecrets;
};

} // namespace lumora_config
