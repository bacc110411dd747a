#pragma once

#include <kyr/FunctionTask.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace unified_test {

inline std::shared_ptr<zel::Task> task(std::function<void()> work, const std::string& name = "test") {
    return std::make_shared<KyrCoreUtils::FunctionTask>(std::move(work), name);
}

} // namespace unified_test
