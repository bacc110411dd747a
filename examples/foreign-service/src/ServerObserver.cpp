#include "ServerObserver.h"

#include <utility>

namespace example {

ServerObserver::ServerObserver(std::function<void()> valueChanged) : callback(std::move(valueChanged)) {}

void ServerObserver::OnValueChanged() {
    callback();
}

} // namespace example
