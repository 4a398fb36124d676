#pragma once

#include <curl/curl.h>

#include <string>
#include <vector>

namespace glintar::platform {

/// Which certificate authorities are asked, and in which order. Reads the environment and the disk at first use.
///
/// A hashed folder costs 1.4 ms a connection, the bundle of all authorities up to 20 ms, and both at once 20 ms each
/// time, since curl then keeps no copy in memory. So they are tried one after the other: first the folder, then the
/// file. A file that the user named (SSL_CERT_FILE) comes before the folder. Both variables mean what they mean to
/// OpenSSL.
class CurlTrust {
public:
    /// How many stores there are to try; at least one.
    [[nodiscard]] std::size_t count() { return stores().size(); }

    void apply(CURL* handle, std::size_t store);

private:
    struct Store {
        std::string file;
        std::string directory;
    };
    const std::vector<Store>& stores();
    std::vector<Store> stores_;
};

}  // namespace glintar::platform
