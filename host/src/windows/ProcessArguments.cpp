#include <kyr/ProcessArguments.h>
#include <kyr/StringUtils.h>

// The others need the system's header.
// clang-format off
#include <windows.h>
#include <shellapi.h>
// clang-format on

#include <memory>

namespace KyrCoreUtils {

ProcessArguments::ProcessArguments(int count, char** arguments) {
    int wideCount = 0;
    const std::unique_ptr<LPWSTR, decltype(&::LocalFree)> wide(::CommandLineToArgvW(::GetCommandLineW(), &wideCount),
                                                               &::LocalFree);
    if (wide) {
        for (int i = 0; i < wideCount; ++i) {
            texts.push_back(toString(wide.get()[i]));
        }
    } else {
        texts.assign(arguments, arguments + count);
    }
    for (std::string& text : texts) {
        values.push_back(text.data());
    }
    values.push_back(nullptr);
}

} // namespace KyrCoreUtils
