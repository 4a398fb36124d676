#pragma once

#include <linux/rtnetlink.h>
#include <net/if.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

// Messages about routes and links, as programs and the kernel exchange them (rtnetlink(7)).
namespace glintar::test {

struct Route {
    std::uint8_t family = AF_INET;
    std::uint8_t prefix = 0;
    std::string destination = {};
    std::string gateway = {};
    std::uint32_t link = 2;
    std::uint32_t metric = 100;
    std::uint32_t table = RT_TABLE_MAIN;
    std::uint8_t type = RTN_UNICAST;
    unsigned flags = 0;
};

/// What comes before the message's own part.
struct Envelope {
    std::uint16_t type = RTM_NEWROUTE;
    std::uint16_t flags = 0;
    std::uint32_t sequence = 0;
};

template <class Structure>
std::string bytesOf(const Structure& structure) {
    return {reinterpret_cast<const char*>(&structure), sizeof structure};
}

inline std::string attribute(std::uint16_t type, std::string_view value) {
    const rtattr header{static_cast<std::uint16_t>(sizeof(rtattr) + value.size()), type};
    std::string bytes = bytesOf(header).append(value);
    bytes.resize(RTA_ALIGN(bytes.size()));
    return bytes;
}

inline std::string message(const Envelope& envelope, std::string_view body) {
    nlmsghdr header{};
    header.nlmsg_len = static_cast<std::uint32_t>(sizeof header + body.size());
    header.nlmsg_type = envelope.type;
    header.nlmsg_flags = envelope.flags;
    header.nlmsg_seq = envelope.sequence;
    return bytesOf(header).append(body);
}

inline std::string message(const Envelope& envelope, const Route& route) {
    rtmsg parts{};
    parts.rtm_family = route.family;
    parts.rtm_dst_len = route.prefix;
    parts.rtm_table = static_cast<unsigned char>(route.table < 256 ? route.table : std::uint32_t{RT_TABLE_UNSPEC});
    parts.rtm_protocol = RTPROT_BOOT;
    parts.rtm_scope = route.gateway.empty() ? RT_SCOPE_LINK : RT_SCOPE_UNIVERSE;
    parts.rtm_type = route.type;
    parts.rtm_flags = route.flags;
    std::string body = bytesOf(parts) + attribute(RTA_TABLE, bytesOf(route.table)) +
                       attribute(RTA_PRIORITY, bytesOf(route.metric)) + attribute(RTA_OIF, bytesOf(route.link));
    if (!route.destination.empty()) {
        body += attribute(RTA_DST, route.destination);
    }
    if (!route.gateway.empty()) {
        body += attribute(RTA_GATEWAY, route.gateway);
    }
    return message(envelope, body);
}

inline std::string linkMessage(const Envelope& envelope, int link, unsigned flags) {
    ifinfomsg parts{};
    parts.ifi_index = link;
    parts.ifi_flags = flags;
    parts.ifi_change = IFF_UP;
    return message(envelope, bytesOf(parts));
}

}  // namespace glintar::test
