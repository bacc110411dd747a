#include <ProcessUsage.h>
#include <Signal.h>
#include <TemporaryProfile.h>

#include <fstream>
#include <thread>
#include <vector>

using testing_host::ProcessUsage;

TEST(ProcessUsageTest, MeasuresHeapAndResidentMemory) {
    constexpr std::size_t megabytes = std::size_t{8} << 20;
    const auto before = ProcessUsage::measure();
    const std::vector<char> taken(megabytes, 'x');
    const auto after = ProcessUsage::measure();
    EXPECT_GE(after.heapBytes, before.heapBytes + megabytes);
    EXPECT_GE(after.residentBytes, before.residentBytes + megabytes / 2);
    EXPECT_EQ(taken.back(), 'x');
}

TEST(ProcessUsageTest, CountsDescriptorsAndThreads) {
    std::thread([] {}).join(); // a sanitizer may start a thread of its own with the first one
    const testing_host::TemporaryProfile profile;
    testing_host::Signal end;
    const auto before = ProcessUsage::measure();
    const std::ofstream file(profile.root() / "file");
    std::thread thread([&end] { end.wait(); });
    const auto after = ProcessUsage::measure();
    end.set();
    thread.join();
    EXPECT_EQ(after.fileDescriptors, before.fileDescriptors + 1);
    EXPECT_EQ(after.threads, before.threads + 1);
    EXPECT_EQ(ProcessUsage::measure().threads, before.threads);
}
