#pragma once

#include <zel/Task.h>

#include <functional>
#include <utility>

namespace KyrCoreUtils {

/// A task that calls a function.
class FunctionTask final : public zel::Task {
public:
    FunctionTask(std::function<void()> function, std::string label)
        : work(std::move(function)), name(std::move(label)) {}

    void run() override { work(); }
    std::string getName() const override { return name; }

private:
    std::function<void()> work;
    std::string name;
};

} // namespace KyrCoreUtils
