#pragma once

#include "ModelStore.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace config_model {

/// One call on the feature set or the service with all its arguments, or one task of a dispatcher. Members that a kind
/// does not use are empty.
struct Call {
    enum class Kind {
        // Any thread.
        AddStore,
        RemoveStore,
        IsStorePresent,
        RemoveAllCachedStores,
        SetMdmConfig,
        GetConfig,
        GetValueOfStore,
        SetConfig,
        SetConfigMap,
        SetInMemoryConfig,
        ResetConfig,
        Provision,
        ResetProvisioning,
        SetKeySensitive,
        IsKeySensitive,
        RegisterObserver,
        UnregisterObserver,
        Report,
        // The thread that makes the lifecycle calls.
        Start,
        Stop,
        Refresh,
        PowerDown,
        ResetAllData,
        IsStarted,
        // The services thread.
        GetRecord,
        IsRecordSensitive,
        RunPosted,
        // The background thread.
        RunBackground,
    };

    Kind kind = Kind::GetConfig;
    StoreShape store{};
    std::string name{};
    std::wstring key{};
    std::wstring value{};
    Pairs pairs{};
    bool skipLocal = false;
    std::size_t observer = 0; ///< The number of a store-added observer.
    std::size_t position = 0; ///< Of a posted task in the queue.
};

std::string describe(const Call& call);

/// Returns the answer of an operation that returns `yes`.
inline std::string toText(bool yes) {
    return yes ? "true" : "false";
}

/// The calls of all threads of one history, determined by a seed.
struct Script {
    Pairs policy;
    std::vector<Call> before; ///< Made on the services thread before the other threads start.
    /// The first thread is the services thread. The second one also runs the background tasks.
    std::vector<std::vector<Call>> threads;
};

Script makeScript(std::uint32_t seed);

} // namespace config_model
