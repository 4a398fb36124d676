#pragma once

#include "support/TemporaryFolder.h"

#include <openssl/ssl.h>

#include <filesystem>
#include <memory>

namespace glintar::support {

/// A certificate authority made for one test, and a server's settings with a certificate for localhost and 127.0.0.1
/// that it signed. Its files live in a temporary folder until it is destroyed.
class TestAuthority {
public:
    TestAuthority();

    /// The authority's certificate (PEM), as SSL_CERT_FILE takes it.
    [[nodiscard]] std::filesystem::path file() const { return folder_.path() / "authority.pem"; }

    /// A folder that holds the certificate under the hash of its name, as SSL_CERT_DIR takes it.
    [[nodiscard]] std::filesystem::path directory() const { return folder_.path() / "hashed"; }

    /// The server's certificate and its key (PEM), for servers of another program.
    [[nodiscard]] std::filesystem::path serverCertificate() const { return folder_.path() / "server.pem"; }
    [[nodiscard]] std::filesystem::path serverKey() const { return folder_.path() / "server.key"; }

    [[nodiscard]] SSL_CTX* context() const { return context_.get(); }

private:
    test::TemporaryFolder folder_;
    std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> context_{nullptr, &SSL_CTX_free};
};

}  // namespace glintar::support
