#pragma once

#include <cstddef>
#include <string_view>

namespace zel::logging {

/// Returns the end of the operator name that begins at `at`, which is the position of its parameter list.
constexpr std::size_t endOfOperatorName(std::string_view pretty, std::size_t at) {
    at += std::string_view("operator").size();
    const std::size_t call = pretty.find("()", at);
    if (call == at || (call == at + 1 && pretty[at] == ' ')) {
        return call + 2;
    }
    const std::size_t parameters = pretty.find('(', at);
    return parameters == pretty.npos ? pretty.size() : parameters;
}

/// Returns true if the word "operator" begins at `at`.
constexpr bool isOperatorName(std::string_view pretty, std::size_t at) {
    constexpr std::string_view word = "operator";
    constexpr std::string_view inNames = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_";
    return pretty.substr(at, word.size()) == word && (at == 0 || inNames.find(pretty[at - 1]) == inNames.npos) &&
           (at + word.size() == pretty.size() || inNames.find(pretty[at + word.size()]) == inNames.npos);
}

/// Returns the position after a parenthesis at `at` that is not a parameter list; returns `at` if it is one.
constexpr std::size_t endOfNamedParenthesis(std::string_view pretty, std::size_t at) {
    const bool isUnnamedScope = pretty.substr(at).starts_with("(anonymous ");
    if (isUnnamedScope || pretty.substr(0, at).ends_with("decltype") || pretty.substr(0, at).ends_with("decltype ")) {
        return pretty.find(')', at) + 1;
    }
    return at;
}

/// Reduces the compiler's description of a function to its qualified name: removes the result type, the parameters, the
/// function's own template arguments and a lambda suffix. The arguments of an enclosing class template stay. Not
/// consteval because clang 14 rejects that inside templates.
constexpr std::string_view functionName(std::string_view pretty) {
    std::size_t begin = 0;
    std::size_t arguments = 0;
    std::size_t end = 0;
    for (int depth = 0; end < pretty.size(); ++end) {
        const char c = pretty[end];
        if (depth == 0 && isOperatorName(pretty, end)) {
            end = endOfOperatorName(pretty, end);
            return pretty.substr(begin, end - begin);
        }
        if (c == '<') {
            if (depth == 0 && pretty.substr(end).starts_with("<lambda") && pretty.substr(0, end).ends_with("::")) {
                end -= 2;
                break;
            }
            arguments = depth == 0 ? end : arguments;
            ++depth;
        } else if (c == '>') {
            --depth;
        } else if (depth == 0 && c == '(') {
            const std::size_t behind = endOfNamedParenthesis(pretty, end);
            if (behind > end) {
                end = behind - 1;
            } else if (pretty.substr(end + 1).starts_with('*') || pretty.substr(end + 1).starts_with('&')) {
                begin = end + 1; // the result type is a pointer or reference to a function or an array
            } else {
                break;
            }
        } else if (depth == 0 && (c == ' ' || c == '*' || c == '&')) {
            begin = end + 1;
        }
    }
    if (end > begin && pretty[end - 1] == '>' && arguments > begin) {
        end = arguments;
    }
    return pretty.substr(begin, end - begin);
}

} // namespace zel::logging
