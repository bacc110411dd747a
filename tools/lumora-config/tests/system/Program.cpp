#include "Program.h"

#include <kyr/Paths.h>

#include <TemporaryProfile.h>

#include <fstream>
#include <random>
#include <sstream>

namespace program_test {

namespace fs = std::filesystem;

std::vector<nlohmann::json> Outcome::lines() const {
    std::vector<nlohmann::json> objects;
    std::istringstream stream(out);
    for (std::string line; std::getline(stream, line);) {
        objects.push_back(nlohmann::json::parse(line));
    }
    return objects;
}

std::size_t lineOf(const std::filesystem::path& file, std::string_view text) {
    std::ifstream stream(file);
    std::string line;
    for (std::size_t number = 1; std::getline(stream, line); ++number) {
        if (line.find(text) != std::string::npos) {
            return number;
        }
    }
    return 0;
}

std::vector<std::string> storeNames(const nlohmann::json& answer) {
    std::vector<std::string> names;
    for (const auto& store : answer.at("stores")) {
        names.push_back(store.at("name"));
    }
    return names;
}

Profile::Profile() {
    std::random_device random;
    do {
        base = fs::temp_directory_path() / ("lumora-program-" + std::to_string(random()));
    } while (!fs::create_directory(base));
    fs::create_directory(base / "resources");
    fs::copy_file(fs::path(LUMORA_SOURCE_FOLDER) / "examples/profile/resources/lumora-config-defaults.xml",
                  defaultsFile());
}

Profile::~Profile() {
    std::error_code ignored;
    fs::remove_all(base, ignored);
}

std::string Profile::write(const std::string& name, std::string_view content) const {
    const auto path = base / KyrCoreUtils::toPath(name);
    testing_host::writeFile(path, content);
    return KyrCoreUtils::toGenericText(path);
}

std::string Profile::writeDocument(const std::string& name, std::string_view elements) const {
    return write(name, "<Config><Group>" + std::string(elements) + "</Group></Config>");
}

Outcome Profile::run(const Arguments& arguments, const std::string& input) const {
    Arguments all{"--profile", base.string()};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return runProcess(LUMORA_CONFIG_PROGRAM, all, input);
}

Outcome Profile::shell(const Arguments& lines, const Arguments& options) const {
    std::string input;
    for (const auto& line : lines) {
        input += line + '\n';
    }
    auto arguments = options;
    arguments.emplace_back("shell");
    return run(arguments, input);
}

} // namespace program_test
