#include "support/TestAuthority.h"

#include <fmt/format.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <stdexcept>
#include <string>

namespace glintar::support {
namespace {

using Key = std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)>;
using Certificate = std::unique_ptr<X509, decltype(&X509_free)>;

void check(bool good, const char* what) {
    if (!good) {
        throw std::runtime_error(fmt::format("test authority: {}", what));
    }
}

void extend(X509& certificate, X509& issuer, int kind, const char* value) {
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, &issuer, &certificate, nullptr, nullptr, 0);
    const std::unique_ptr<X509_EXTENSION, decltype(&X509_EXTENSION_free)> extension(
        X509V3_EXT_conf_nid(nullptr, &context, kind, value), &X509_EXTENSION_free);
    check(extension && X509_add_ext(&certificate, extension.get(), -1) == 1, "extension");
}

/// Signed by the issuer; by itself without one.
Certificate certify(const char* name, EVP_PKEY& key, long serial, X509* issuer, EVP_PKEY& issuerKey) {
    constexpr long kDay = 24L * 60 * 60;
    Certificate certificate(X509_new(), &X509_free);
    X509_set_version(certificate.get(), X509_VERSION_3);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate.get()), serial);
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -kDay);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), kDay);
    X509_set_pubkey(certificate.get(), &key);
    X509_NAME_add_entry_by_txt(X509_get_subject_name(certificate.get()), "CN", MBSTRING_ASC,
                               reinterpret_cast<const unsigned char*>(name), -1, -1, 0);
    X509& signer = issuer != nullptr ? *issuer : *certificate;
    X509_set_issuer_name(certificate.get(), X509_get_subject_name(&signer));
    if (issuer == nullptr) {
        extend(*certificate, signer, NID_basic_constraints, "critical,CA:TRUE");
        extend(*certificate, signer, NID_key_usage, "critical,keyCertSign");
    } else {
        extend(*certificate, signer, NID_subject_alt_name, "DNS:localhost,IP:127.0.0.1");
    }
    check(X509_sign(certificate.get(), &issuerKey, EVP_sha256()) != 0, "signature");
    return certificate;
}

void writePem(const std::filesystem::path& path, X509& certificate) {
    const std::unique_ptr<BIO, decltype(&BIO_free)> file(BIO_new_file(path.c_str(), "w"), &BIO_free);
    check(file && PEM_write_bio_X509(file.get(), &certificate) == 1, "writing a certificate");
}

void writeKey(const std::filesystem::path& path, EVP_PKEY& key) {
    const std::unique_ptr<BIO, decltype(&BIO_free)> file(BIO_new_file(path.c_str(), "w"), &BIO_free);
    check(file && PEM_write_bio_PrivateKey(file.get(), &key, nullptr, nullptr, 0, nullptr, nullptr) == 1,
          "writing a key");
}

}  // namespace

TestAuthority::TestAuthority() {
    std::filesystem::create_directory(directory());

    const Key authorityKey(EVP_EC_gen("P-256"), &EVP_PKEY_free);
    const Key key(EVP_EC_gen("P-256"), &EVP_PKEY_free);
    check(authorityKey && key, "keys");
    const Certificate authority = certify("Loopback test authority", *authorityKey, 1, nullptr, *authorityKey);
    const Certificate server = certify("localhost", *key, 2, authority.get(), *authorityKey);
    writePem(file(), *authority);
    writePem(serverCertificate(), *server);
    writeKey(serverKey(), *key);
    writePem(directory() / fmt::format("{:08x}.0", X509_subject_name_hash(authority.get())), *authority);

    context_.reset(SSL_CTX_new(TLS_server_method()));
    check(context_ && SSL_CTX_use_certificate(context_.get(), server.get()) == 1 &&
              SSL_CTX_use_PrivateKey(context_.get(), key.get()) == 1,
          "server certificate");
}

}  // namespace glintar::support
