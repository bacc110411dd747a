#include "KeyProcesses.h"

#include "zel/storage/FileKeyProvider.h"

#include <sys/wait.h>
#include <unistd.h>

namespace testing_host {

using zel::storage::FileKeyProvider;
using zel::storage::FileLayer;
using zel::storage::KeyResult;
using zel::storage::MasterKey;

std::vector<std::string> makeKeysInProcesses(const std::string& dataDirectory, std::size_t count) {
    int start[2];
    int answers[2];
    if (::pipe(start) != 0 || ::pipe(answers) != 0) {
        return {};
    }
    FileKeyProvider provider(FileLayer::platform(), dataDirectory);
    std::vector<pid_t> children;
    for (std::size_t i = 0; i < count; ++i) {
        const pid_t child = ::fork();
        if (child == 0) {
            ::close(start[1]);
            char ignored = 0;
            MasterKey mine;
            const bool done = ::read(start[0], &ignored, 1) == 0 &&
                              provider.findOrMake(zel::storage::FileCategoryType::UserData, mine) == KeyResult::Found &&
                              ::write(answers[1], mine.data(), MasterKey::length) == MasterKey::length;
            ::_exit(done ? 0 : 1);
        }
        children.push_back(child);
    }
    ::close(start[0]);
    ::close(start[1]);
    ::close(answers[1]);
    std::vector<std::string> seen;
    std::string answer(MasterKey::length, '\0');
    while (::read(answers[0], answer.data(), answer.size()) == static_cast<ssize_t>(answer.size())) {
        seen.push_back(answer);
    }
    ::close(answers[0]);
    for (const pid_t child : children) {
        ::waitpid(child, nullptr, 0);
    }
    return seen;
}

} // namespace testing_host
