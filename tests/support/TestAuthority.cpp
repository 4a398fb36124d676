#include "support/TestAuthority.h"

#include <cstdlib>
#include <stdexcept>
#include <string>

namespace glintar::support {

TestAuthority::TestAuthority() {
    const std::string commands = "cd '" + folder_.path().string() + R"('
        exec 2>openssl.log; set -e
        make="openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes"
        $make -keyout authority.key -out authority.pem -subj "/CN=Loopback test authority"
        $make -keyout server.key -out server.pem -subj /CN=localhost -CA authority.pem -CAkey authority.key \
            -addext subjectAltName=DNS:localhost,IP:127.0.0.1 -addext basicConstraints=CA:FALSE
        mkdir hashed; cp authority.pem hashed; openssl rehash hashed)";
    context_.reset(SSL_CTX_new(TLS_server_method()));
    if (std::system(commands.c_str()) != 0 ||
        SSL_CTX_use_certificate_file(context_.get(), serverCertificate().c_str(), SSL_FILETYPE_PEM) != 1 ||
        SSL_CTX_use_PrivateKey_file(context_.get(), serverKey().c_str(), SSL_FILETYPE_PEM) != 1) {
        throw std::runtime_error("openssl made no authority");
    }
}

}  // namespace glintar::support
