#pragma once

#include "support/TemporaryFolder.h"

#include <filesystem>

namespace glintar::support {

/// A certificate authority made for one test, and a certificate for localhost and 127.0.0.1 that it signed. Its files
/// live in a temporary folder until it is destroyed.
class TestAuthority {
public:
    /// Throws `std::runtime_error` where the openssl program does not do its work.
    TestAuthority();

    /// The authority's certificate (PEM), as SSL_CERT_FILE takes it.
    [[nodiscard]] std::filesystem::path file() const { return folder_.path() / "authority.pem"; }

    /// A folder that holds the certificate under the hash of its name, as SSL_CERT_DIR takes it.
    [[nodiscard]] std::filesystem::path directory() const { return folder_.path() / "hashed"; }

    /// The server's certificate and its key (PEM).
    [[nodiscard]] std::filesystem::path serverCertificate() const { return folder_.path() / "server.pem"; }
    [[nodiscard]] std::filesystem::path serverKey() const { return folder_.path() / "server.key"; }

private:
    test::TemporaryFolder folder_;
};

}  // namespace glintar::support
