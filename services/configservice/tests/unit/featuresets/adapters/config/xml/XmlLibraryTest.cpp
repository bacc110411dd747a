#include "featuresets/adapters/config/xml/XmlLibrary.h"

#include "featuresets/adapters/config/xml/XmlBuffer.h"
#include "featuresets/adapters/config/xml/XmlGuard.h"

#include <gtest/gtest.h>

#include <thread>

// Each case runs in a separate process, so the library has not been used before.
TEST(XmlLibrary, SeveralThreadsMayInitialiseItConcurrently) {
    const auto use = [] {
        const ZelUnified::XmlGuard guard;
        EXPECT_NE(ZelUnified::makeXmlBuffer(xmlNode{}), nullptr);
    };
    std::thread other(use);
    use();
    other.join();
}
