#include "Netlink.h"
#include "platform/DesktopEvents.h"
#include "platform/NotificationCenter.h"
#include "platform/posix/NetworkWatch.h"
#include "platform/virtual/VirtualRunLoop.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sched.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstring>

namespace glintar::platform {
namespace {

using namespace std::chrono_literals;
using test::linkMessage;
using test::message;
using test::Route;
using enum RouteTable::Outcome;

constexpr test::Envelope kNew{.type = RTM_NEWROUTE};
constexpr test::Envelope kGone{.type = RTM_DELROUTE};
constexpr test::Envelope kLink{.type = RTM_NEWLINK};
constexpr test::Envelope kListed{.type = RTM_NEWROUTE, .flags = NLM_F_MULTI, .sequence = 7};
constexpr test::Envelope kDone{.type = NLMSG_DONE, .flags = NLM_F_MULTI, .sequence = 7};

const Route kHome{.gateway = "\xc0\xa8\x01\x01"};
const Route kHome6{.family = AF_INET6, .gateway = std::string("\xfe\x80", 2) + std::string(13, '\0') + "\x01"};

class RouteTableTest : public testing::Test {
protected:
    RouteTable::Outcome read(const std::string& bytes) { return table.read(std::as_bytes(std::span(bytes))); }
    RouteTable table;
};

TEST_F(RouteTableTest, KnowsAWayOutFromOtherRoutes) {
    struct Row {
        const char* name;
        Route route;
        RouteTable::Outcome expected;
    };
    const Row rows[] = {
        {"the default route", kHome, NewWay},
        {"that of IPv6", kHome6, NewWay},
        {"a tunnel, which has no gateway", {.gateway = ""}, NewWay},
        {"a network behind a gateway", {.prefix = 8, .destination = "\x0a", .gateway = kHome.gateway}, NewWay},
        {"the network we are in", {.prefix = 24, .destination = "\xc0\xa8\x01"}, Nothing},
        {"a table of its own", {.gateway = kHome.gateway, .table = 51820}, Nothing},
        {"a local address", {.gateway = kHome.gateway, .table = RT_TABLE_LOCAL}, Nothing},
        {"a dead end", {.gateway = kHome.gateway, .type = RTN_UNREACHABLE}, Nothing},
        {"one without a carrier", {.gateway = kHome.gateway, .flags = RTNH_F_LINKDOWN}, Nothing},
    };
    for (const auto& row : rows) {
        table = {};
        EXPECT_EQ(read(message(kNew, row.route)), row.expected) << row.name;
        EXPECT_EQ(table.leadsOut(), row.expected == NewWay) << row.name;
    }
}

TEST_F(RouteTableTest, WhatWasThereAtTheStartIsNoNews) {
    table.expectAll(7);
    EXPECT_EQ(read(message(kListed, kHome) + message(kListed, kHome6)), Nothing);
    EXPECT_EQ(read(message(kDone, "\0\0\0")), Nothing);
    EXPECT_TRUE(table.leadsOut());
    // Routers make themselves known again and again, and the route's time is put on with the one or the other.
    EXPECT_EQ(read(message(kNew, kHome6)), Nothing);
    EXPECT_EQ(read(message({.type = RTM_NEWROUTE, .flags = NLM_F_REPLACE}, kHome6)), Nothing);
}

TEST_F(RouteTableTest, ANetworkThatComesBackOrChangesIsNews) {
    read(message(kNew, kHome) + message(kNew, kHome6));
    EXPECT_EQ(read(message(kGone, kHome) + message(kGone, kHome6)), Nothing);
    EXPECT_FALSE(table.leadsOut());
    EXPECT_EQ(read(message(kNew, kHome6)), NewWay);

    Route elsewhere = kHome6;
    elsewhere.gateway.back() = '\x02';
    const test::Envelope replaced{.type = RTM_NEWROUTE, .flags = NLM_F_REPLACE};
    EXPECT_EQ(read(message(replaced, elsewhere)), NewWay);
    EXPECT_EQ(read(message(replaced, kHome6)), NewWay) << "and back: the one it replaced is forgotten";
    EXPECT_EQ(read(message(kNew, kHome)), NewWay);
    EXPECT_EQ(read(message(kNew, kHome)), NewWay) << "it had gone without a word, with its address";
}

TEST_F(RouteTableTest, ACableThatIsPulledAndPutBackIsNews) {
    read(message(kNew, kHome));
    EXPECT_EQ(read(linkMessage(kLink, 2, IFF_UP)), Nothing);
    EXPECT_FALSE(table.leadsOut());
    EXPECT_EQ(read(linkMessage(kLink, 3, IFF_UP | IFF_RUNNING)), Nothing) << "a link that leads nowhere";
    EXPECT_EQ(read(linkMessage(kLink, 2, IFF_UP | IFF_RUNNING)), NewWay);
    EXPECT_EQ(read(linkMessage(kLink, 2, IFF_UP | IFF_RUNNING)), Nothing);
    EXPECT_EQ(read(linkMessage(kLink, 2, 0)), Nothing);
    EXPECT_FALSE(table.leadsOut()) << "its routes go without a word";
}

TEST_F(RouteTableTest, AfterAnOverrunTheWholeTableTellsWhatWasMissed) {
    table.expectAll(7);
    read(message(kListed, kHome) + message(kDone, "\0\0\0"));
    EXPECT_EQ(read(message({.type = NLMSG_OVERRUN}, "")), Overrun);

    table.expectAll(7);
    EXPECT_TRUE(table.leadsOut()) << "the old one stands until the new one is known";
    EXPECT_EQ(read(message(kListed, kHome) + message(kDone, "\0\0\0")), Nothing) << "nothing was missed";

    table.expectAll(7);
    EXPECT_EQ(read(message(kListed, kHome) + message(kListed, kHome6)), Nothing);
    const Route other{.gateway = kHome.gateway, .metric = 50};
    EXPECT_EQ(read(message({.type = RTM_NEWROUTE, .sequence = 7}, other)), NewWay) << "somebody else counts as we do";
    EXPECT_EQ(read(message(kDone, "\0\0\0")), NewWay);
}

TEST_F(RouteTableTest, WhatIsCutOffIsNotRead) {
    // A way out only with its last attribute.
    const std::string whole = message(kNew, {.prefix = 8, .destination = "\x0a", .gateway = kHome.gateway});
    for (std::size_t length = 0; length < whole.size(); ++length) {
        EXPECT_EQ(read(whole.substr(0, length)), Nothing);
        // The same with a length that fits, so that the attributes are the ones cut.
        std::string cut = whole.substr(0, length);
        const auto size = static_cast<std::uint32_t>(length);
        std::memcpy(cut.data(), &size, std::min(length, sizeof size));
        EXPECT_EQ(read(cut), Nothing);
    }
    EXPECT_EQ(read(whole), NewWay);
}

// The real thing: a network of this process's own. What it says is its exit status.

constexpr int kForbidden = 77;

void require(bool condition, const char* what) {
    if (!condition) {
        [[maybe_unused]] const auto written = ::write(STDERR_FILENO, what, std::string_view(what).size());
        ::_exit(1);
    }
}

/// The kernel does as it is told before it returns.
void tell(const std::string& request) {
    const Descriptor kernel(::socket(AF_NETLINK, SOCK_RAW, NETLINK_ROUTE));
    std::array<char, 4096> answer{};
    require(::send(kernel.number(), request.data(), request.size(), 0) == static_cast<ssize_t>(request.size()) &&
                ::recv(kernel.number(), answer.data(), answer.size(), 0) > 0,
            "no answer\n");
    int error = 0;
    std::memcpy(&error, answer.data() + sizeof(nlmsghdr), sizeof error);
    require(error == 0, "the kernel refused a request\n");
}

void comeAndGo() {
    constexpr int kLoopback = 1;
    constexpr std::uint16_t kAsked = NLM_F_REQUEST | NLM_F_ACK;
    const auto link = [](unsigned flags) {
        tell(linkMessage({.type = RTM_NEWLINK, .flags = kAsked}, kLoopback, flags));
    };
    const Route out{.link = kLoopback};
    const auto route = [&out](std::uint16_t type, const Route& which) {
        tell(message({.type = type, .flags = kAsked | NLM_F_CREATE, .sequence = 1}, which));
    };
    link(IFF_UP);
    route(RTM_NEWROUTE, out);

    VirtualRunLoop loop;
    NotificationCenter notifications;
    NetworkWatch watch(loop, notifications);
    int notices = 0;
    const auto observation = notifications.observe(kNetworkCameBack, [&] { ++notices; });
    const auto settle = [&] {
        for (pollfd ready{watch.descriptor(), POLLIN, 0}; ::poll(&ready, 1, 50) > 0;) {
            require(watch.onReadable(), "the socket gave up\n");
        }
        loop.advance(1s);
        return std::exchange(notices, 0);
    };
    require(settle() == 0, "a notice at the start\n");
    route(RTM_DELROUTE, out);
    require(settle() == 0, "a notice when the network went\n");
    route(RTM_NEWROUTE, out);
    route(RTM_DELROUTE, out);
    route(RTM_NEWROUTE, out);
    require(settle() == 1, "not one notice when the network came\n");
    link(0);
    link(IFF_UP);
    require(settle() == 0, "a notice though the routes have gone with the link\n");
    route(RTM_NEWROUTE, out);
    route(RTM_DELROUTE, out);
    require(settle() == 0, "a notice when the network had gone again at once\n");

    // More than the socket holds while nobody reads.
    const Route near{.prefix = 24, .destination = std::string("\x0a\0\0", 4), .link = kLoopback};
    for (int i = 0; i < 1000; ++i) {
        route(RTM_NEWROUTE, near);
        route(RTM_DELROUTE, near);
    }
    route(RTM_NEWROUTE, out);
    require(settle() == 1, "what an overrun hid was not found\n");
    require(settle() == 0, "a second notice\n");
}

TEST(NetworkWatchTest, TellsWhatHappensInARealNetwork) {
    const pid_t child = ::fork();
    if (child == 0) {
        if (::unshare(CLONE_NEWNET) != 0 && ::unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0) {
            ::_exit(kForbidden);
        }
        comeAndGo();
        ::_exit(0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_NE(WEXITSTATUS(status), kForbidden) << "the kernel allows no network of one's own";
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

}  // namespace
}  // namespace glintar::platform
