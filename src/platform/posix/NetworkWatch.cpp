#include "platform/posix/NetworkWatch.h"

#include "platform/DesktopEvents.h"
#include "platform/NotificationCenter.h"

#include <linux/rtnetlink.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace glintar::platform {

namespace {

constexpr Duration kSettling = std::chrono::seconds{1};
constexpr Duration kBetweenNotices = std::chrono::seconds{30};

Descriptor openSocket() {
    Descriptor opened(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE));
    sockaddr_nl address{};
    address.nl_family = AF_NETLINK;
    address.nl_groups = RTMGRP_IPV4_ROUTE | RTMGRP_IPV6_ROUTE;
    const bool isBound = opened.number() >= 0 &&
                         ::bind(opened.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    return isBound ? std::move(opened) : Descriptor();
}

/// Whether the message tells of a way to all other machines that can be used. Tunnels lay theirs in two halves.
bool isNewWay(const nlmsghdr& message) {
    if (message.nlmsg_type != RTM_NEWROUTE || message.nlmsg_len < NLMSG_LENGTH(sizeof(rtmsg))) {
        return false;
    }
    const auto& route = *static_cast<const rtmsg*>(NLMSG_DATA(&message));
    return route.rtm_table == RT_TABLE_MAIN && route.rtm_type == RTN_UNICAST && route.rtm_dst_len <= 1 &&
           (route.rtm_flags & (RTM_F_CLONED | RTNH_F_LINKDOWN | RTNH_F_DEAD)) == 0;
}

}  // namespace

NetworkWatch::NetworkWatch(RunLoop& loop, NotificationCenter& notifications)
    : loop_(loop), notifications_(notifications), socket_(openSocket()) {}

bool NetworkWatch::onReadable() {
    alignas(nlmsghdr) std::array<std::byte, 8192> datagram;  // the kernel makes no larger ones of routes
    while (true) {
        const ssize_t got = ::recv(socket_.number(), datagram.data(), datagram.size(), 0);
        if (got < 0 && errno == ENOBUFS) {
            tellSoon();  // it had more to tell than we could take, and the new route may have been among it
        } else if (got < 0 && errno != EINTR) {
            return errno == EAGAIN;
        }
        auto left = static_cast<std::size_t>(std::max<ssize_t>(got, 0));
        for (auto* message = reinterpret_cast<const nlmsghdr*>(datagram.data()); NLMSG_OK(message, left);
             message = NLMSG_NEXT(message, left)) {
            if (isNewWay(*message)) {
                tellSoon();
            }
        }
    }
}

void NetworkWatch::tellSoon() {
    const auto earliest = told_ ? *told_ + kBetweenNotices - loop_.now() : Duration::zero();
    settled_ = loop_.after(std::max(kSettling, earliest), [this] {
        told_ = loop_.now();
        notifications_.post(kNetworkCameBack);
    });
}

}  // namespace glintar::platform
