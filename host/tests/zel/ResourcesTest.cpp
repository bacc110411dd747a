#include <zel/Resources.h>

#include <array>
#include <optional>

using zel::CarriedResources;
using zel::Resource;
using zel::Resources;

namespace {

constexpr std::array first{Resource{"TEXT", "A", "first"}, Resource{"IMAGE", "A", std::string_view("\0b", 2)}};
constexpr std::array second{Resource{"TEXT", "B", "second"}};

} // namespace

TEST(Resources, AreFoundByTypeAndName) {
    const CarriedResources library(first);
    const CarriedResources otherLibrary(second);
    EXPECT_EQ(Resources::find("TEXT", "A"), "first");
    EXPECT_EQ(Resources::find("IMAGE", "A"), std::string_view("\0b", 2));
    EXPECT_EQ(Resources::find("TEXT", "B"), "second");
}

TEST(Resources, AreNotFoundByAnotherTypeNameOrCase) {
    const CarriedResources library(first);
    EXPECT_EQ(Resources::find("TEXT", "B"), std::nullopt);
    EXPECT_EQ(Resources::find("SOUND", "A"), std::nullopt);
    EXPECT_EQ(Resources::find("TEXT", "a"), std::nullopt);
    EXPECT_EQ(Resources::find("", ""), std::nullopt);
}

TEST(Resources, AreRemovedWhenTheirLibraryIsUnloaded) {
    std::optional<CarriedResources> library(std::in_place, first);
    const CarriedResources otherLibrary(second);
    library.reset();
    EXPECT_EQ(Resources::find("TEXT", "A"), std::nullopt);
    EXPECT_EQ(Resources::find("TEXT", "B"), "second");
}
