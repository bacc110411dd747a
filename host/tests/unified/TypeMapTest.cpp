#include <unified/TypeMap.h>

#include <memory>
#include <thread>
#include <vector>

using ZelUnified::TypeMap;

namespace type_map_test {

struct Item {
    virtual ~Item() = default;
};
struct First : virtual Item {};
struct Second : virtual Item {};
struct Both final : First, Second {};

/// Reads the registry from its destructor.
struct CallingBack final : First {
    explicit CallingBack(const TypeMap<Item>& watched) : map(watched) {}
    ~CallingBack() override {
        map.getItem(1);
        map.getItem<First>();
    }
    const TypeMap<Item>& map;
};

} // namespace type_map_test

using namespace type_map_test;

TEST(TypeMap, FindsAnItemByItsInterfaceAndByItsNumber) {
    TypeMap<Item> map;
    const std::shared_ptr<First> item = std::make_shared<Both>();
    map.registerItem(1300, item);
    EXPECT_EQ(map.getItem<First>(), item);
    EXPECT_EQ(map.getItem(1300), item);
    EXPECT_EQ(map.getAll().size(), 1U);
}

TEST(TypeMap, RegistersAnItemUnderItsInterfaceNotItsClass) {
    TypeMap<Item> map;
    map.registerItem(1, std::shared_ptr<First>(std::make_shared<Both>()));
    EXPECT_EQ(map.getItem<Second>(), nullptr);
    EXPECT_EQ(map.getItem<Both>(), nullptr);
}

TEST(TypeMap, ReturnsNullForAnUnregisteredItem) {
    const TypeMap<Item> map;
    EXPECT_EQ(map.getItem<First>(), nullptr);
    EXPECT_EQ(map.getItem(1), nullptr);
    EXPECT_TRUE(map.getAll().empty());
}

TEST(TypeMap, ASecondItemReplacesTheFirstInBothMaps) {
    TypeMap<Item> map;
    map.registerItem(1, std::make_shared<First>());
    const auto second = std::make_shared<First>();
    map.registerItem(1, second);
    EXPECT_EQ(map.getItem<First>(), second);
    EXPECT_EQ(map.getItem(1), second);
}

TEST(TypeMap, RegisteringNullRemovesTheItem) {
    TypeMap<Item> map;
    map.registerItem(1, std::make_shared<First>());
    map.registerItem(1, std::shared_ptr<First>());
    EXPECT_EQ(map.getItem<First>(), nullptr);
    EXPECT_EQ(map.getItem(1), nullptr);
}

TEST(TypeMap, DestroysReplacedAndClearedItemsWithoutHoldingItsLock) {
    TypeMap<Item> map;
    map.registerItem(1, std::shared_ptr<First>(std::make_shared<CallingBack>(map)));
    map.registerItem(1, std::shared_ptr<First>(std::make_shared<CallingBack>(map)));
    map.clear();
    EXPECT_EQ(map.getItem(1), nullptr);
    EXPECT_EQ(map.getItem<First>(), nullptr);
}

TEST(TypeMap, SeveralThreadsMayRegisterAndFindItems) {
    TypeMap<Item> map;
    std::vector<std::thread> threads;
    for (unsigned int number = 0; number < 8; ++number) {
        threads.emplace_back([&map, number] {
            for (int i = 0; i < 100; ++i) {
                map.registerItem(number, std::make_shared<First>());
                EXPECT_NE(map.getItem<First>(), nullptr);
                EXPECT_NE(map.getItem(number), nullptr);
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(map.getAll().size(), 8U);
}
