#pragma once

namespace glintar::bench {

/// Makes one TLS request, with the authorities of $SSL_CERT_DIR, and one key look-up; whether both were answered.
extern "C" bool makePeerRequests(const char* url);

}  // namespace glintar::bench
