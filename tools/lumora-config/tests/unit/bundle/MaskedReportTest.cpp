#include "bundle/MaskedReport.h"

#include "output/Failure.h"

#include <gmock/gmock.h>

namespace lumora_config {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace {

const BundleMask& getMask() {
    static const BundleMask mask({{"a<b&c"}, {}, "jdoe", ""});
    return mask;
}

} // namespace

TEST(MaskedReport, IsADocumentWithMaskedValues) {
    const auto report =
        maskReport("<?xml version=\"1.0\"?>\n<AllConfigs>\n<AllMemoryConfigs>\n"
                   "<store name=\"of jdoe\"><note>say a&lt;b&amp;c</note><path>/home/jane</path></store>"
                   "</AllMemoryConfigs>\n<secret>other service</secret></AllConfigs>",
                   getMask());
    EXPECT_THAT(report, AllOf(HasSubstr("name=\"of &lt;user&gt;\""), HasSubstr("<note>say VALUE_HIDDEN</note>"),
                              HasSubstr("<path>/home/&lt;user&gt;</path>"), Not(HasSubstr("other service"))));
}

TEST(MaskedReport, FailsForAnIllFormedReport) {
    EXPECT_THROW(maskReport("<AllMemoryConfigs><1></1></AllMemoryConfigs>", getMask()), Failure);
    EXPECT_THROW(maskReport("no report", getMask()), Failure);
}

} // namespace lumora_config
