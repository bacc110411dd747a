#pragma once

#include "output/Findings.h"

#include <ConfigFeatureSet.h>

#include <memory>
#include <string>
#include <vector>

namespace lumora_config {

/// The one place that decides whether a value may be shown. A key is sensitive when the service says so of either of
/// its names. Any thread.
class SecretMask {
public:
    SecretMask(std::shared_ptr<ZelUnified::ConfigFeatureSet> adapter, bool showAll);

    /// The value, or "VALUE_HIDDEN".
    std::wstring show(const std::wstring& key, const std::wstring& value) const;
    /// Marks a sensitive key as such, too.
    void hide(Explanation& explanation) const;
    void hide(std::vector<ListedValue>& values) const;

    bool showsSecrets() const { return showSecrets; }

private:
    bool isSensitive(const std::wstring& key) const;

    const std::shared_ptr<ZelUnified::ConfigFeatureSet> featureSet;
    const bool showSecrets;
};

} // namespace lumora_config
