#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace ZelUnified {

/// A text that never changes and may have many holders, who then hold it once. Copies may go to any thread.
class SharedText {
public:
    SharedText() = default;
    SharedText(std::wstring held) // NOLINT(google-explicit-constructor): stands where a text is expected
        : text(held.empty() ? nullptr : std::make_shared<const std::wstring>(std::move(held))) {}
    SharedText(const wchar_t* held) : SharedText(std::wstring(held)) {} // NOLINT(google-explicit-constructor)

    const std::wstring& get() const noexcept {
        static const std::wstring empty;
        return text ? *text : empty;
    }

private:
    std::shared_ptr<const std::wstring> text;
};

/// Gives equal texts as one. For texts of which there are few, as the names of stores; it forgets none, and beyond a
/// limit it takes up no more. Has no lock.
class SharedTexts {
public:
    SharedText share(std::wstring text) {
        for (const auto& known : texts) {
            if (known.get() == text) {
                return known;
            }
        }
        SharedText added(std::move(text));
        if (texts.size() < limit) {
            texts.push_back(added);
        }
        return added;
    }

private:
    static constexpr std::size_t limit = 64;

    std::vector<SharedText> texts;
};

} // namespace ZelUnified
