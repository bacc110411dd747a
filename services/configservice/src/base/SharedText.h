#pragma once

#include <memory>
#include <string>
#include <utility>

namespace ZelUnified {

/// An immutable text; copies share one allocation. Copies may be used on any thread.
class SharedText {
public:
    SharedText() = default;
    SharedText(std::wstring held) // NOLINT(google-explicit-constructor): converts like a string
        : text(held.empty() ? nullptr : std::make_shared<const std::wstring>(std::move(held))) {}
    SharedText(const wchar_t* held) : SharedText(std::wstring(held)) {} // NOLINT(google-explicit-constructor)

    const std::wstring& get() const noexcept {
        static const std::wstring empty;
        return text ? *text : empty;
    }

    friend bool operator==(const SharedText& a, const SharedText& b) noexcept {
        return a.text == b.text || a.get() == b.get();
    }
    /// Makes no holder of `other`.
    friend bool operator==(const SharedText& a, const std::wstring& other) noexcept { return a.get() == other; }

private:
    std::shared_ptr<const std::wstring> text;
};

} // namespace ZelUnified
