#include "support/TestAuthority.h"

#include "support/Child.h"

#include <fmt/format.h>

#include <stdexcept>

namespace glintar::support {

TestAuthority::TestAuthority() {
    // "-x509" brings what an authority needs: CA:TRUE.
    constexpr const char* kScript = R"(set -e; cd {}; mkdir hashed
        new="openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -days 1"
        $new -subj "/CN=Loopback test authority" -keyout authority.key -out authority.pem
        $new -subj /CN=localhost -addext subjectAltName=DNS:localhost,IP:127.0.0.1 \
            -CA authority.pem -CAkey authority.key -addext basicConstraints=CA:FALSE -keyout server.key -out server.pem
        cp authority.pem hashed/; openssl rehash hashed; echo done)";
    if (!test::outputOf({"sh", "-c", fmt::format(kScript, folder_.path().string())}).ends_with("done\n")) {
        throw std::runtime_error("openssl makes no certificates");
    }
}

}  // namespace glintar::support
