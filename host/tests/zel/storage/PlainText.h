#pragma once

#include <zel/ProtectedText.h>

#include <memory>
#include <string>
#include <utility>

namespace testing_host {

/// An unprotected content.
class PlainText final : public zel::storage::ProtectedText {
public:
    PlainText() = default;
    explicit PlainText(std::string content) : text(std::move(content)) {}

    bool isEmpty() const override { return text.empty(); }
    void setContent(const char* bytes, std::size_t length) override { text.assign(bytes, length); }
    void withClearText(const std::function<void(std::string_view)>& use) const override {
        if (!text.empty()) {
            use(text);
        }
    }

    std::shared_ptr<const ProtectedText> copy() const override { return std::make_shared<PlainText>(text); }

    std::string text;
};

} // namespace testing_host
