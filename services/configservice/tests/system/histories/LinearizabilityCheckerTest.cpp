#include "LinearizabilityChecker.h"

#include "ModelHistory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>

namespace config_model {

namespace {

const Call readZed{.kind = Call::Kind::GetConfig, .key = L"Zed"};
const Call readRecordOfZed{.kind = Call::Kind::GetRecord, .key = L"Zed"};
const Call report{.kind = Call::Kind::Report};
const Call addAlpha{.kind = Call::Kind::AddStore,
                    .store = {.name = "Alpha", .priority = 10, .pairs = {{L"Zed", L"one"}, {L"_mark", L"one"}}}};
const Call removeAlpha{.kind = Call::Kind::RemoveStore, .name = "Alpha"};

Call writeZed(const std::wstring& value) {
    return {.kind = Call::Kind::SetConfig, .key = L"Zed", .value = value};
}

bool isAccepted(const History& history) {
    return LinearizabilityChecker(history).check().empty();
}

/// Makes both events last from the earlier start to the later end.
void overlap(History& history, std::size_t first, std::size_t second) {
    history.events[second].start = history.events[first].start;
    history.events[first].end = history.events[second].end;
}

} // namespace

TEST(LinearizabilityChecker, AcceptsWhatTheModelDidInOrder) {
    ModelHistory made({addAlpha});
    made.run(1, writeZed(L"two"));
    made.run(2, removeAlpha);
    made.run(0, readRecordOfZed);
    made.run(1, report);
    EXPECT_TRUE(isAccepted(made.finish()));
}

TEST(LinearizabilityChecker, AcceptsTheOldValueWhileAWriteRuns) {
    ModelHistory made({});
    const auto reading = made.run(2, readZed);
    const auto writing = made.run(1, writeZed(L"one"));
    auto history = made.finish();
    overlap(history, reading, writing);
    EXPECT_TRUE(isAccepted(history));
}

TEST(LinearizabilityChecker, RefusesTheOldValueAfterTheWriteHasEnded) {
    ModelHistory made({});
    const auto reading = made.run(2, readZed);
    const auto writing = made.run(1, writeZed(L"one"));
    auto history = made.finish();
    std::swap(history.events[reading].start, history.events[writing].start);
    std::swap(history.events[reading].end, history.events[writing].end);
    EXPECT_FALSE(isAccepted(history));
}

TEST(LinearizabilityChecker, RefusesAnOldValueBehindANewOneWhileAWriteRuns) {
    ModelHistory made({});
    const auto first = made.run(2, readZed);
    const auto writing = made.begin(1, writeZed(L"one"));
    made.step(writing);
    const auto second = made.run(2, readZed);
    auto history = made.finish();
    history.events[writing].start = history.events[first].start;
    history.events[writing].end = history.events[second].end;
    EXPECT_TRUE(isAccepted(history));
    std::swap(history.events[first].answer, history.events[second].answer);
    EXPECT_FALSE(isAccepted(history));
}

TEST(LinearizabilityChecker, RefusesAWrongAnswer) {
    ModelHistory made({addAlpha});
    const auto first = made.run(1, removeAlpha);
    const auto second = made.run(2, removeAlpha);
    auto history = made.finish();
    overlap(history, first, second);
    EXPECT_TRUE(isAccepted(history));
    history.events[second].answer = "true";
    EXPECT_FALSE(isAccepted(history)) << "one store was removed twice";
}

TEST(LinearizabilityChecker, RefusesAnnouncementsInAnotherOrderThanTheWrites) {
    ModelHistory made({});
    const auto first = made.run(1, writeZed(L"one"));
    const auto second = made.run(2, writeZed(L"two"));
    auto history = made.finish();
    overlap(history, first, second);
    EXPECT_TRUE(isAccepted(history));
    std::swap(history.posted[0].event, history.posted[1].event);
    EXPECT_FALSE(isAccepted(history));
}

TEST(LinearizabilityChecker, RefusesAPostedTaskThatNoCallExplains) {
    ModelHistory made({});
    const auto writing = made.run(1, writeZed(L"one"));
    auto history = made.finish();
    history.posted.push_back({writing, "ConfigServiceImpl::OnConfigChanged"});
    EXPECT_FALSE(isAccepted(history));
}

TEST(LinearizabilityChecker, ReportsATaskThatNoCallPosted) {
    ModelHistory made({});
    made.run(1, writeZed(L"one"));
    const auto history = made.finish();
    auto posted = history;
    posted.posted.push_back({.name = "ConfigServiceImpl::OnConfigChanged"});
    EXPECT_THAT(LinearizabilityChecker(posted).check(),
                testing::StartsWith("No call posted the task ConfigServiceImpl::OnConfigChanged"));
    auto background = history;
    background.background.push_back({.name = "ConfigStore::persistValues"});
    EXPECT_THAT(LinearizabilityChecker(background).check(),
                testing::StartsWith("No call posted the task ConfigStore::persistValues"));
}

TEST(LinearizabilityChecker, RefusesATaskOfTheBackgroundThatIsMissing) {
    ModelHistory made({});
    made.run(1, writeZed(L"one"));
    auto history = made.finish();
    history.background.clear();
    EXPECT_FALSE(isAccepted(history));
}

TEST(LinearizabilityChecker, RefusesAPropertyThatDidNotFire) {
    ModelHistory made({});
    made.run(0, writeZed(L"one"));
    auto history = made.finish();
    ASSERT_FALSE(history.events[0].fired.empty());
    history.events[0].fired.pop_back();
    EXPECT_FALSE(isAccepted(history));
}

TEST(LinearizabilityChecker, RefusesAReportWithHalfOfAStore) {
    ModelHistory made({});
    const auto adding = made.run(1, addAlpha);
    const auto reporting = made.run(2, report);
    auto history = made.finish();
    overlap(history, adding, reporting);
    EXPECT_TRUE(isAccepted(history));
    auto& answer = history.events[reporting].answer;
    const auto key = answer.find(" _mark=one");
    ASSERT_NE(key, std::string::npos);
    answer.erase(key, std::string(" _mark=one").size());
    EXPECT_FALSE(isAccepted(history));
}

TEST(LinearizabilityChecker, RefusesARecordThatMissesAChange) {
    ModelHistory made({});
    made.run(1, writeZed(L"one"));
    auto history = made.finish();
    History unchanged = ModelHistory({}).finish();
    history.end = unchanged.end;
    EXPECT_FALSE(isAccepted(history));
}

TEST(LinearizabilityChecker, AcceptsACallBetweenTwoStepsOfAnotherOne) {
    const std::wstring key = L"AllowUrlProvisioning";
    ModelHistory made({{.kind = Call::Kind::SetConfig, .key = key, .value = L"false"}});
    const auto allowing = made.begin(1, {.kind = Call::Kind::ResetProvisioning});
    made.step(allowing);
    const auto writing = made.run(2, {.kind = Call::Kind::SetConfig, .key = key, .value = L"maybe"});
    made.step(allowing);
    auto history = made.finish();
    // As whole calls, the second one would either keep its value or let the first one answer false.
    EXPECT_EQ(history.events[allowing].answer, "true");
    EXPECT_TRUE(isAccepted(history));
    history.events[allowing].end = history.events[writing].start + 1;
    history.events[writing].start = history.events[allowing].end + 1;
    EXPECT_FALSE(isAccepted(history)) << "the calls no longer overlap";
}

/// A store is written while a stop removes it and `rebuild` makes a new one from its file. Then the key is read.
struct OverlappingWrite {
    explicit OverlappingWrite(Call::Kind rebuild) {
        ModelHistory made({});
        made.run(1, writeZed(L"one"));
        const auto writing = made.run(1, {.kind = Call::Kind::RunBackground});
        made.run(0, {.kind = Call::Kind::Stop});
        rebuilding = made.run(0, {.kind = rebuild});
        reading = made.run(2, readZed);
        history = made.finish();
        history.events[writing].end = history.events[rebuilding].end;
    }

    History history;
    std::size_t rebuilding = 0;
    std::size_t reading = 0;
};

TEST(LinearizabilityChecker, AcceptsAResetThatOverlapsTheWriteOfARemovedStore) {
    const OverlappingWrite overlapping(Call::Kind::ResetAllData);
    EXPECT_TRUE(isAccepted(overlapping.history));
}

TEST(LinearizabilityChecker, RefusesOldSettingsAfterAResetThatOverlapsTheWriteOfARemovedStore) {
    OverlappingWrite overlapping(Call::Kind::Refresh);
    auto& events = overlapping.history.events;
    ASSERT_THAT(events[overlapping.reading].answer, testing::HasSubstr("one [LocalFileConfigStore]"));
    EXPECT_TRUE(isAccepted(overlapping.history));
    events[overlapping.rebuilding].call.kind = Call::Kind::ResetAllData;
    EXPECT_FALSE(isAccepted(overlapping.history));
}

} // namespace config_model
