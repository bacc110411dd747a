#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lumora_config {

/// Removes secrets and personal data from the texts of a bundle. All texts are UTF-8. Any thread.
class BundleMask {
public:
    /// What the texts must not contain.
    struct Hidden {
        std::vector<std::string> secrets;       ///< The values of sensitive keys.
        std::vector<std::string> sensitiveKeys; ///< Their names, whose values a log may contain from earlier runs.
        std::string user;
        std::string host;
    };

    explicit BundleMask(const Hidden& hidden);

    /// Replaces secrets of at least four characters by "VALUE_HIDDEN", and masks personal data as the log does, the
    /// name of the user and the name of the machine. A name is replaced as a whole word, ignoring case.
    std::string mask(std::string_view text) const;
    std::wstring mask(const std::wstring& text) const;
    /// Like mask(), for log files. Also removes what follows the name of a sensitive key, a word such as "password:" or
    /// the announcement of a damaged file's contents, up to the end of the log line and the lines that continue it.
    std::string maskLog(std::string_view log) const;

private:
    void addSecret(const std::string& form);
    void addName(const std::string& name, const std::string& marker);
    std::string cutSecrets(std::string_view record) const;

    struct Name {
        std::string text; ///< In lower case.
        std::string marker;
    };

    std::vector<std::string> secrets;       ///< In all forms in which a text may contain them; the longest first.
    std::vector<std::string> sensitiveKeys; ///< In lower case.
    std::vector<Name> names;
};

} // namespace lumora_config
