#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace glintar::text {

/// The text with every occurrence of `what` replaced, from left to right; replacements are not looked at again.
[[nodiscard]] std::string replaceAll(std::string_view text, std::string_view what, std::string_view with);

/// A web address as it can be sent (RFC 3986): characters that are illegal in an address (blanks, "|", control
/// characters, anything beyond ASCII, a "%" that begins no escape) are percent-encoded, reserved characters and
/// finished escapes stay. None unless the scheme is http or https (in any case) and there is a host.
[[nodiscard]] std::optional<std::string> webAddress(std::string_view text);

/// Whether a host (in lower case, an IPv6 address in its brackets) is this machine: "localhost", 127.0.0.0/8 or [::1].
[[nodiscard]] bool isLoopbackHost(std::string_view host);

}  // namespace glintar::text
