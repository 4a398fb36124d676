#pragma once

#include "platform/SecretStore.h"

#include <string.h>

#include <memory>
#include <string>
#include <string_view>

namespace glintar::platform {

/// How an item is addressed.
struct SecretKey {
    std::string service;
    std::string account;

    auto operator<=>(const SecretKey&) const = default;
};

/// Bytes that are overwritten when they are let go.
class SecretBytes {
public:
    explicit SecretBytes(std::string_view bytes) : bytes_(bytes) {}
    SecretBytes(const SecretBytes&) = delete;
    SecretBytes& operator=(const SecretBytes&) = delete;
    ~SecretBytes() { explicit_bzero(bytes_.data(), bytes_.size()); }  // unlike a plain fill, never optimised away

    [[nodiscard]] std::string_view view() const { return bytes_; }

private:
    std::string bytes_;
};

/// What is known of an item. Copies share the one secret.
struct SecretAnswer {
    SecretStatus status = SecretStatus::Pending;
    std::shared_ptr<const SecretBytes> bytes;  ///< when `status` is `Done`

    static SecretAnswer found(std::string_view bytes) {
        return {SecretStatus::Done, std::make_shared<SecretBytes>(bytes)};
    }
    [[nodiscard]] std::string_view view() const { return bytes ? bytes->view() : std::string_view(); }

    friend bool operator==(const SecretAnswer& a, const SecretAnswer& b) {
        return a.status == b.status && a.view() == b.view();
    }
};

}  // namespace glintar::platform
