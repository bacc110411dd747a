#include <kyr/ProcessArguments.h>

namespace KyrCoreUtils {

ProcessArguments::ProcessArguments(int count, char** arguments) : values(arguments, arguments + count) {
    values.push_back(nullptr);
}

} // namespace KyrCoreUtils
