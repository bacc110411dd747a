#include "stores/StoreSpec.h"

#include "output/Failure.h"

#include <gtest/gtest.h>

namespace lumora_config {

namespace {

ExitCode codeOf(const std::string& text) {
    try {
        StoreSpec::parse(text);
    } catch (const Failure& failure) {
        return failure.getCode();
    }
    return ExitCode::Done;
}

} // namespace

TEST(StoreSpec, ReadsFileNameAndPriority) {
    const auto spec = StoreSpec::parse("tftp.xml:TFTPConfigStore:40");
    EXPECT_EQ(spec.file, "tftp.xml");
    EXPECT_EQ(spec.name, "TFTPConfigStore");
    EXPECT_EQ(spec.priority, 40);
    EXPECT_FALSE(spec.cached);
}

TEST(StoreSpec, ParsesTheRequestForACachedCopy) {
    EXPECT_TRUE(StoreSpec::parse("a.xml:A:40:cache").cached);
}

TEST(StoreSpec, AcceptsColonsInThePath) {
    const auto spec = StoreSpec::parse("C:/a:b.xml:A:-7:cache");
    EXPECT_EQ(spec.file, "C:/a:b.xml");
    EXPECT_EQ(spec.name, "A");
    EXPECT_EQ(spec.priority, -7);
}

TEST(StoreSpec, RefusesAnIncompleteDescription) {
    for (const auto* text : {"", "a.xml", "a.xml:A", "a.xml::40", ":A:40", "A:40:cache", "a.xml:A:4x",
                             "a.xml:A:", "a.xml:A:99999999999", "a.xml:A:40:cached"}) {
        EXPECT_EQ(codeOf(text), ExitCode::Usage) << text;
    }
}

TEST(BootstrapSpec, ReadsFileAndPriority) {
    const auto spec = BootstrapSpec::parse("C:/boot.properties:700");
    EXPECT_EQ(spec.file, "C:/boot.properties");
    EXPECT_EQ(spec.priority, 700);
}

TEST(BootstrapSpec, RefusesAnIncompleteDescription) {
    for (const auto* text : {"", "boot", "boot:", ":7", "boot:seven"}) {
        EXPECT_THROW(BootstrapSpec::parse(text), Failure) << text;
    }
}

} // namespace lumora_config
