#include "platform/posix/NetworkWatch.h"

#include "platform/DesktopEvents.h"
#include "platform/NotificationCenter.h"

#include <linux/rtnetlink.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>

namespace glintar::platform {

namespace {

constexpr Duration kSettling = std::chrono::seconds{1};

// The kernel makes the parts of a list no larger than this.
constexpr std::size_t kLargestDatagram = 32768;

Descriptor openSocket() {
    Descriptor opened(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE));
    sockaddr_nl address{};
    address.nl_family = AF_NETLINK;
    address.nl_groups = RTMGRP_LINK | RTMGRP_IPV4_ROUTE | RTMGRP_IPV6_ROUTE;
    if (opened.number() < 0 ||
        ::bind(opened.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        return Descriptor();
    }
    return opened;
}

}  // namespace

NetworkWatch::NetworkWatch(RunLoop& loop, NotificationCenter& notifications)
    : loop_(loop), notifications_(notifications), socket_(openSocket()) {
    if (socket_.number() >= 0 && !askForAll()) {
        socket_ = Descriptor();
    }
}

bool NetworkWatch::onReadable() {
    std::array<std::byte, kLargestDatagram> datagram;
    while (true) {
        sockaddr_nl sender{};
        socklen_t senderSize = sizeof sender;
        const ssize_t got = ::recvfrom(socket_.number(), datagram.data(), datagram.size(), MSG_TRUNC,
                                       reinterpret_cast<sockaddr*>(&sender), &senderSize);
        auto outcome = RouteTable::Outcome::Overrun;
        if (got < 0) {
            if (errno == EINTR) {
                continue;
            }
            if (errno != ENOBUFS) {
                return errno == EAGAIN;
            }
        } else if (sender.nl_pid != 0) {
            continue;  // only the kernel is believed
        } else if (static_cast<std::size_t>(got) <= datagram.size()) {
            outcome = routes_.read(std::span(datagram).first(static_cast<std::size_t>(got)));
        }
        mustAskAgain_ = mustAskAgain_ || outcome == RouteTable::Outcome::Overrun;
        if (mustAskAgain_ && !routes_.isReadingAll() && !askForAll()) {
            return false;
        }
        if (outcome == RouteTable::Outcome::NewWay) {
            settled_ = loop_.after(kSettling, [this] {
                if (routes_.leadsOut()) {
                    notifications_.post(kNetworkCameBack);
                }
            });
        }
    }
}

bool NetworkWatch::askForAll() {
    struct {
        nlmsghdr header;
        rtmsg route;
    } request{};
    request.header.nlmsg_len = sizeof request;
    request.header.nlmsg_type = RTM_GETROUTE;
    request.header.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
    request.header.nlmsg_seq = ++sequence_;
    routes_.expectAll(sequence_);
    mustAskAgain_ = false;
    return ::send(socket_.number(), &request, sizeof request, 0) == static_cast<ssize_t>(sizeof request);
}

}  // namespace glintar::platform
