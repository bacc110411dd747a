#include "EtcdMessages.h"
#include "FleetKeys.h"

#include <ConfigCatalogue.h>
#include <FleetAdministration.h>
#include <WipedText.h>
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>
#include <utility>

namespace fleet_test {
namespace {

using ZelUnified::WipedText;

/// Room for an object whose bytes are examined after its end. Short texts are within the object.
template <class Object>
class Room {
public:
    template <class... Arguments>
    Object& make(Arguments&&... arguments) {
        return *new (bytes.data()) Object(std::forward<Arguments>(arguments)...);
    }
    bool contains(std::string_view text) const {
        const std::string_view held(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        return held.find(text) != std::string_view::npos;
    }

private:
    alignas(Object) std::array<std::byte, sizeof(Object)> bytes{};
};

TEST(FleetWipedText, LeavesNothingInItsMemory) {
    Room<WipedText> room;
    auto& text = room.make("secret5dc1");
    ASSERT_TRUE(room.contains("secret5dc1"));
    std::destroy_at(&text);
    EXPECT_FALSE(room.contains("5dc1"));
}

TEST(FleetWipedText, LeavesNothingWhereItWasMovedFrom) {
    Room<WipedText> room;
    auto& text = room.make("secret5dc1");
    const WipedText moved(std::move(text));
    EXPECT_EQ(moved.view(), "secret5dc1");
    EXPECT_FALSE(room.contains("5dc1"));
    std::destroy_at(&text);
}

TEST(FleetAccess, LeavesNoPasswordInItsMemory) {
    Room<ZelUnified::FleetAccess> room;
    auto& access = room.make();
    access.password = "secret5dc1";
    ASSERT_TRUE(room.contains("secret5dc1"));
    std::destroy_at(&access);
    EXPECT_FALSE(room.contains("5dc1"));
}

TEST(FleetMessages, EscapesUserAndPassword) {
    EXPECT_EQ(fleet::etcd::makeAuthenticate("a\"b", "c\\d\n\u00E9").view(),
              "{\"name\":\"a\\\"b\",\"password\":\"c\\\\d\\u000a\u00E9\"}");
}

TEST(FleetKeys, OwnKeysAreInTheCatalogue) {
    namespace ConfigKeys = ZelUnified::ConfigKeys;
    for (const auto key : fleet::FleetKeys::administratorsKeys) {
        EXPECT_NE(ConfigKeys::findKey(key), nullptr);
    }
    for (const auto key : fleet::FleetKeys::credentialKeys) {
        ASSERT_NE(ConfigKeys::findKey(key), nullptr);
        EXPECT_TRUE(ConfigKeys::findKey(key)->isSensitive());
        EXPECT_TRUE(fleet::FleetKeys::isOwnKey(key));
    }
}

} // namespace
} // namespace fleet_test
