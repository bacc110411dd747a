#include <unified/TypeName.h>

using ZelUnified::readableTypeName;

namespace type_name_test {
struct Plain {};
template <class T>
struct Holder {};
} // namespace type_name_test

TEST(TypeName, IsReadable) {
    EXPECT_EQ(readableTypeName<type_name_test::Plain>(), "type_name_test::Plain");
    EXPECT_EQ(readableTypeName<type_name_test::Holder<int>>(), "type_name_test::Holder<int>");
}

TEST(TypeName, TheNameOfANullTypeIsNull) {
    EXPECT_EQ(readableTypeName(nullptr), "NULL");
}
