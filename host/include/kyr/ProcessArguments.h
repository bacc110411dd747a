#pragma once

#include <zel/HostExport.h>

#include <string>
#include <vector>

namespace KyrCoreUtils {

/// The arguments of this process in UTF-8, on platforms too where main() gets them in another encoding. The first one
/// is the name of the program. Any thread.
class LUMORA_HOST_API ProcessArguments {
public:
    /// Pass what main() got; it must outlive this object.
    ProcessArguments(int count, char** arguments);
    ProcessArguments(const ProcessArguments&) = delete;
    ProcessArguments& operator=(const ProcessArguments&) = delete;

    int getCount() const noexcept { return static_cast<int>(values.size()) - 1; }
    /// Returns the texts, followed by a null pointer. Valid as long as this object.
    char** getValues() noexcept { return values.data(); }

private:
    std::vector<std::string> texts; ///< Empty where main() gets UTF-8.
    std::vector<char*> values;
};

} // namespace KyrCoreUtils
