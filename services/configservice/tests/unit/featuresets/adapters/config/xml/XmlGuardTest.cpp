#include "featuresets/adapters/config/xml/XmlGuard.h"

#include <gtest/gtest.h>
#include <libxml/parser.h>

#include <cstring>

using ZelUnified::XmlGuard;

namespace {

void countMessage(void* counter, xmlErrorPtr) {
    ++*static_cast<int*>(counter);
}

void parse(const char* text) {
    xmlFreeDoc(xmlReadMemory(text, static_cast<int>(std::strlen(text)), "test", nullptr, 0));
}

} // namespace

TEST(XmlGuard, KeepsTheParserFromQuotingTheDocumentOnStandardError) {
    testing::internal::CaptureStderr();
    {
        const XmlGuard guard;
        parse("<a><connectionpassword>hunter2</oops></a>");
        EXPECT_EQ(xmlGetLastError()->code, XML_ERR_TAG_NAME_MISMATCH); // the text raises an error
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(xmlGetLastError() == nullptr ? XML_ERR_OK : xmlGetLastError()->code, XML_ERR_OK);
}

TEST(XmlGuard, RestoresTheHandlersOfTheProcess) {
    int errors = 0;
    xmlSetStructuredErrorFunc(&errors, reinterpret_cast<xmlStructuredErrorFunc>(&countMessage));
    {
        const XmlGuard guard;
        parse("<a>");
    }
    EXPECT_EQ(errors, 0);
    parse("<a>");
    EXPECT_GT(errors, 0);
    xmlSetStructuredErrorFunc(nullptr, nullptr);
}

TEST(XmlGuard, DisablesTheDefaultsOfTheLibraryUntilItIsDestroyed) {
    xmlSubstituteEntitiesDefaultValue = 1;
    xmlLoadExtDtdDefaultValue = 1;
    xmlDoValidityCheckingDefaultValue = 1;
    xmlKeepBlanksDefaultValue = 0;
    {
        const XmlGuard guard;
        EXPECT_EQ(xmlSubstituteEntitiesDefaultValue, 0);
        EXPECT_EQ(xmlLoadExtDtdDefaultValue, 0);
        EXPECT_EQ(xmlDoValidityCheckingDefaultValue, 0);
        EXPECT_EQ(xmlKeepBlanksDefaultValue, 1);
    }
    EXPECT_EQ(xmlSubstituteEntitiesDefaultValue, 1);
    EXPECT_EQ(xmlLoadExtDtdDefaultValue, 1);
    EXPECT_EQ(xmlDoValidityCheckingDefaultValue, 1);
    EXPECT_EQ(xmlKeepBlanksDefaultValue, 0);
    xmlSubstituteEntitiesDefaultValue = 0;
    xmlLoadExtDtdDefaultValue = 0;
    xmlDoValidityCheckingDefaultValue = 0;
    xmlKeepBlanksDefaultValue = 1;
}

TEST(XmlGuard, AnInnerGuardKeepsTheOuterOneInEffect) {
    testing::internal::CaptureStderr();
    {
        const XmlGuard outer;
        { const XmlGuard inner; }
        parse("<a>");
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}
