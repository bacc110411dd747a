#include "ServiceFixture.h"

#include <unified/UpdateAccessError.h>

#include <LogRecorder.h>

#include <stdexcept>
#include <utility>

namespace ZelUnified {
namespace {

using configservice_test::RecordingValueObserver;
using testing::_;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Return;
using testing::Throw;

struct ConfigValueImplTest : configservice_test::ServiceFixture {
    ConfigValueImplTest() { record->addObserver(observer); }

    std::shared_ptr<ConfigValueImpl> record = std::make_shared<ConfigValueImpl>(factory, L"Phone_Mode");
    std::shared_ptr<RecordingValueObserver> observer = std::make_shared<RecordingValueObserver>();
};

TEST_F(ConfigValueImplTest, ARecordConstructedWithValuesIsDefinedAndHasNoPendingChange) {
    ConfigValueImpl made(factory, L"k", L"v", L"ov", true, L"vs", L"ovs");
    made.addObserver(observer);
    EXPECT_EQ(made.getKey(), L"k");
    EXPECT_EQ(made.getValue(), L"v");
    EXPECT_EQ(made.getOriginalValue(), L"ov");
    EXPECT_TRUE(made.getisOverridden());
    EXPECT_TRUE(made.getisDefined());
    EXPECT_EQ(made.getValueStoreName(), L"vs");
    EXPECT_EQ(made.getOriginalValueStoreName(), L"ovs");
    made.fireChanged();
    EXPECT_THAT(observer->received, IsEmpty());
}

TEST_F(ConfigValueImplTest, FiresOneChangePerPropertyInFixedOrder) {
    record->applyValuesAndFire(L"v", L"ov", true, true, L"vs", L"ovs");
    EXPECT_THAT(observer->received, ElementsAre("Value", "OriginalValue", "isOverridden", "isDefined", "ValueStoreName",
                                                "OriginalValueStoreName"));
    EXPECT_EQ(record->getValue(), L"v");
    EXPECT_EQ(record->getOriginalValue(), L"ov");
    EXPECT_TRUE(record->getisOverridden());
    EXPECT_TRUE(record->getisDefined());
    EXPECT_EQ(record->getValueStoreName(), L"vs");
    EXPECT_EQ(record->getOriginalValueStoreName(), L"ovs");
}

TEST_F(ConfigValueImplTest, EqualValuesFireNothing) {
    record->applyValuesAndFire(L"v", L"ov", true, true, L"vs", L"ovs");
    observer->received.clear();
    record->applyValuesAndFire(L"v", L"ov", true, true, L"vs", L"ovs");
    EXPECT_THAT(observer->received, IsEmpty());
}

TEST_F(ConfigValueImplTest, ValuesThatDifferOnlyInCaseKeepTheirOldSpelling) {
    record->applyValues(L"Value", L"Original", false, true, L"vs", L"ovs");
    record->fireChanged();
    observer->received.clear();
    record->applyValuesAndFire(L"VALUE", L"ORIGINAL", false, true, L"vs", L"ovs");
    EXPECT_THAT(observer->received, IsEmpty());
    EXPECT_EQ(record->getValue(), L"Value");
    EXPECT_EQ(record->getOriginalValue(), L"Original");
}

TEST_F(ConfigValueImplTest, StoreNamesThatDifferInCaseAreAChange) {
    record->applyValuesAndFire(L"v", L"", false, true, L"vs", L"ovs");
    observer->received.clear();
    record->applyValuesAndFire(L"V", L"", false, true, L"VS", L"ovs");
    EXPECT_THAT(observer->received, ElementsAre("ValueStoreName"));
    EXPECT_EQ(record->getValueStoreName(), L"VS");
    observer->received.clear();
    record->applyValuesAndFire(L"v", L"", false, true, L"VS", L"OVS");
    EXPECT_THAT(observer->received, ElementsAre("OriginalValueStoreName"));
    EXPECT_EQ(record->getOriginalValueStoreName(), L"OVS");
}

TEST_F(ConfigValueImplTest, DeferredChangesAccumulateAndFireOnce) {
    record->applyValues(L"one", L"", false, true, L"s", L"");
    record->applyValues(L"two", L"", true, true, L"s", L"");
    EXPECT_THAT(observer->received, IsEmpty());
    EXPECT_EQ(record->getValue(), L"two");
    record->fireChanged();
    EXPECT_THAT(observer->received, ElementsAre("Value", "isOverridden", "isDefined", "ValueStoreName"));
    record->fireChanged();
    EXPECT_EQ(observer->received.size(), 4U);
}

TEST_F(ConfigValueImplTest, APropertyThatIsChangedAndChangedBackFires) {
    record->applyValues(L"v", L"", false, false, L"", L"");
    record->applyValues(L"", L"", false, false, L"", L"");
    record->fireChanged();
    EXPECT_THAT(observer->received, ElementsAre("Value"));
}

TEST_F(ConfigValueImplTest, AfterAnObserverThrewItsPropertyAndTheLaterOnesFireAgain) {
    bool refuse = true;
    observer->reaction = [&](const std::string& property) {
        if (refuse && property == "OriginalValue") {
            throw std::runtime_error("refused");
        }
    };
    EXPECT_THROW(record->applyValuesAndFire(L"v", L"ov", true, false, L"", L""), std::runtime_error);
    EXPECT_THAT(observer->received, ElementsAre("Value", "OriginalValue"));
    refuse = false;
    record->fireChanged();
    EXPECT_THAT(observer->received, ElementsAre("Value", "OriginalValue", "OriginalValue", "isOverridden"));
}

TEST_F(ConfigValueImplTest, ANestedFiringFiresTheRemainingPropertiesOnce) {
    bool nested = false;
    observer->reaction = [&](const std::string&) {
        if (!std::exchange(nested, true)) {
            record->fireChanged();
        }
    };
    record->applyValuesAndFire(L"v", L"ov", false, false, L"", L"");
    EXPECT_THAT(observer->received, ElementsAre("Value", "Value", "OriginalValue"));
}

TEST_F(ConfigValueImplTest, ComparesValuesIgnoringCase) {
    record->setValue(L"Straße");
    EXPECT_TRUE(record->isValueEqual(L"sTRAßE"));
    EXPECT_FALSE(record->isValueEqual(L"Strasse"));
    EXPECT_FALSE(record->isValueEqual(L""));
}

TEST_F(ConfigValueImplTest, DiffersFromTheOriginalByValueOrStoreExactly) {
    EXPECT_FALSE(record->differsFromOriginal());
    record->setValue(L"a");
    record->setOriginalValue(L"a");
    EXPECT_FALSE(record->differsFromOriginal());
    record->setValueStoreName(L"LocalFileConfigStore");
    EXPECT_TRUE(record->differsFromOriginal()) << "equal values from different stores";
    record->setOriginalValueStoreName(L"LocalFileConfigStore");
    EXPECT_FALSE(record->differsFromOriginal());
    record->setOriginalValueStoreName(L"localfileconfigstore");
    EXPECT_TRUE(record->differsFromOriginal());
    record->setOriginalValueStoreName(L"LocalFileConfigStore");
    record->setValue(L"A");
    EXPECT_TRUE(record->differsFromOriginal());
}

TEST_F(ConfigValueImplTest, AWriteCallsTheFeatureSetAndDoesNotChangeTheRecord) {
    const auto featureSet = fileFeatureSet();
    EXPECT_CALL(*featureSet, setConfig(std::wstring(L"Phone_Mode"), std::wstring(L"softphone")))
        .WillOnce(Return(false));
    record->storeValueAndNotify(L"softphone");
    EXPECT_EQ(record->getValue(), L"");
    EXPECT_THAT(observer->received, IsEmpty());
}

TEST_F(ConfigValueImplTest, AResetCallsTheFeatureSetAndDoesNotChangeTheRecord) {
    record->setValue(L"v");
    const auto featureSet = fileFeatureSet();
    EXPECT_CALL(*featureSet, resetConfig(std::wstring(L"Phone_Mode")));
    record->resetToDefault();
    EXPECT_EQ(record->getValue(), L"v");
}

TEST_F(ConfigValueImplTest, AnExceptionOfTheFeatureSetReachesTheCaller) {
    const auto featureSet = fileFeatureSet();
    EXPECT_CALL(*featureSet, setConfig(_, _)).WillOnce(Throw(std::runtime_error("refused")));
    EXPECT_CALL(*featureSet, resetConfig(_)).WillOnce(Throw(std::runtime_error("refused")));
    EXPECT_THROW(record->storeValueAndNotify(L"v"), std::runtime_error);
    EXPECT_THROW(record->resetToDefault(), std::runtime_error);
}

TEST_F(ConfigValueImplTest, WithoutAFeatureSetWritesAndResetsAreIgnoredWithoutALine) {
    record->setValue(L"v");
    const testing_host::LogRecorder log;
    EXPECT_NO_THROW(record->storeValueAndNotify(L"w"));
    EXPECT_NO_THROW(record->resetToDefault());
    EXPECT_THAT(log.getRecords(), IsEmpty());
    EXPECT_EQ(record->getValue(), L"v");
    EXPECT_THAT(observer->received, IsEmpty());
}

TEST_F(ConfigValueImplTest, EachRecordHoldsAReferenceToTheFactory) {
    const auto before = factory.use_count();
    const ConfigValueImpl another(factory, L"k");
    EXPECT_EQ(factory.use_count(), before + 1);
}

TEST_F(ConfigValueImplTest, FipsModeHidesTheStoredValueOfOneKeyInAnyCase) {
    const auto forced = std::make_shared<ConfigValueImpl>(factory, L"TELEPHONY_p2p_ENABLED");
    forced->setValue(L"true");
    forced->setOriginalValue(L"true");
    record->setValue(L"true");
    zel::common::FipsUtils::overrideFipsMode(true);
    EXPECT_EQ(forced->getValue(), L"false");
    EXPECT_EQ(forced->getOriginalValue(), L"true");
    EXPECT_EQ(forced->ConfigValueBaseImpl::getValue(), L"true");
    EXPECT_EQ(record->getValue(), L"true");
    EXPECT_TRUE(forced->isValueEqual(L"FALSE"));
    EXPECT_TRUE(forced->differsFromOriginal());
    zel::common::FipsUtils::overrideFipsMode(false);
    EXPECT_EQ(forced->getValue(), L"true");
    EXPECT_FALSE(forced->differsFromOriginal());
}

TEST_F(ConfigValueImplTest, InFipsModeAnyValueButFalseIsAChangeEachTime) {
    const auto forced = std::make_shared<ConfigValueImpl>(factory, L"Telephony_P2P_Enabled");
    forced->addObserver(observer);
    zel::common::FipsUtils::overrideFipsMode(true);
    forced->applyValuesAndFire(L"false", L"", false, false, L"", L"");
    EXPECT_THAT(observer->received, IsEmpty());
    EXPECT_EQ(forced->ConfigValueBaseImpl::getValue(), L"") << "an equal value is not stored";
    forced->applyValuesAndFire(L"true", L"", false, false, L"", L"");
    forced->applyValuesAndFire(L"true", L"", false, false, L"", L"");
    EXPECT_THAT(observer->received, ElementsAre("Value", "Value"));
}

TEST_F(ConfigValueImplTest, CallsOnAnotherThreadThrowAndChangeNothing) {
    const auto featureSet = fileFeatureSet();
    factory->servicesDispatcher->disown();
    EXPECT_THROW(record->getValue(), UpdateAccessError);
    EXPECT_THROW(record->storeValueAndNotify(L"x"), UpdateAccessError);
    EXPECT_THROW(record->resetToDefault(), UpdateAccessError);
    EXPECT_THROW(record->isValueEqual(L"x"), UpdateAccessError);
    EXPECT_THROW(record->differsFromOriginal(), UpdateAccessError);
    EXPECT_THROW(record->applyValues(L"x", L"x", true, true, L"x", L"x"), UpdateAccessError);
    EXPECT_THROW(record->applyValuesAndFire(L"x", L"x", true, true, L"x", L"x"), UpdateAccessError);
    factory->servicesDispatcher->claim();
    EXPECT_EQ(record->getValue(), L"");
    EXPECT_FALSE(record->getisDefined());
    record->fireChanged();
    EXPECT_THAT(observer->received, IsEmpty());
}

} // namespace
} // namespace ZelUnified
