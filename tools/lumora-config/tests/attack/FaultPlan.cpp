#include "FaultPlan.h"

#include "LogFile.h"

#include <cstdlib>

namespace attack {

namespace {

std::string textOf(const char* variable) {
    const char* const value = std::getenv(variable);
    return value ? value : "";
}

int numberOf(const char* variable) {
    return std::atoi(textOf(variable).c_str());
}

const char* nameOf(FaultPlan::Outcome outcome) {
    switch (outcome) {
    case FaultPlan::Outcome::Fails:
        return "fails";
    case FaultPlan::Outcome::Kills:
        return "kills";
    default:
        return "proceeds";
    }
}

} // namespace

FaultPlan& FaultPlan::get() {
    static FaultPlan* const plan = new FaultPlan;
    return *plan;
}

FaultPlan::FaultPlan()
    : folder(textOf("LUMORA_FAULT_FOLDER")),
      logFile(textOf("LUMORA_FAULT_LOG")),
      mode(textOf("LUMORA_FAULT_MODE")),
      failing(numberOf("LUMORA_FAULT_AT")),
      error(numberOf("LUMORA_FAULT_ERROR")) {}

FaultPlan::Outcome FaultPlan::next(std::string_view operation, std::string_view path) {
    const int number = ++count;
    const Outcome outcome = decide(number);
    log(number, operation, path, outcome);
    return outcome;
}

bool FaultPlan::covers(std::string_view path) const {
    return !folder.empty() && path.size() > folder.size() && path.starts_with(folder) && path[folder.size()] == '/';
}

FaultPlan::Outcome FaultPlan::decide(int number) const {
    if (failing <= 0 || number < failing) {
        return Outcome::Proceeds;
    }
    if (mode == "always") {
        return Outcome::Fails;
    }
    if (number > failing) {
        return Outcome::Proceeds;
    }
    return mode == "kill" ? Outcome::Kills : Outcome::Fails;
}

void FaultPlan::log(int number, std::string_view operation, std::string_view path, Outcome outcome) const {
    if (logFile.empty()) {
        return;
    }
    std::string line = std::to_string(number);
    line.append(" ").append(operation).append(" ").append(path).append(" ").append(nameOf(outcome)).append("\n");
    appendToLog(logFile, line);
}

} // namespace attack
