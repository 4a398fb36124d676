#include "platform/secret/SecretAnswer.h"

#include <string.h>

namespace glintar::platform {

SecretBytes::~SecretBytes() {
    explicit_bzero(bytes_.data(), bytes_.size());  // unlike a plain fill, never optimised away
}

}  // namespace glintar::platform
