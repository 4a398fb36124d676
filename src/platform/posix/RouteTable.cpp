#include "platform/posix/RouteTable.h"

#include <linux/rtnetlink.h>
#include <net/if.h>

#include <algorithm>
#include <cstring>

namespace glintar::platform {

namespace {

using Bytes = std::span<const std::byte>;

/// The structure at the front, and what follows it where the next one may begin; none where the bytes end before.
template <class Structure>
std::optional<Structure> takeFront(Bytes& bytes) {
    if (bytes.size() < sizeof(Structure)) {
        return std::nullopt;
    }
    Structure structure;
    std::memcpy(&structure, bytes.data(), sizeof structure);
    bytes = bytes.subspan(std::min<std::size_t>(NLMSG_ALIGN(sizeof structure), bytes.size()));
    return structure;
}

/// The attributes after a message's own structure (rtnetlink(7)).
template <class Use>
void forEachAttribute(Bytes bytes, Use use) {
    while (bytes.size() >= sizeof(rtattr)) {
        rtattr attribute;
        std::memcpy(&attribute, bytes.data(), sizeof attribute);
        const std::size_t length = attribute.rta_len;
        if (length < sizeof attribute || length > bytes.size()) {
            return;
        }
        use(attribute.rta_type & NLA_TYPE_MASK, bytes.first(length).subspan(sizeof attribute));
        bytes = bytes.subspan(std::min<std::size_t>(RTA_ALIGN(length), bytes.size()));
    }
}

std::uint32_t numberIn(Bytes bytes) {
    std::uint32_t number = 0;
    std::memcpy(&number, bytes.data(), std::min(bytes.size(), sizeof number));
    return number;
}

std::string textIn(Bytes bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

}  // namespace

RouteTable::Outcome RouteTable::read(Bytes datagram) {
    bool isNews = false;
    while (datagram.size() >= sizeof(nlmsghdr)) {
        nlmsghdr header;
        std::memcpy(&header, datagram.data(), sizeof header);
        if (header.nlmsg_len < sizeof header || header.nlmsg_len > datagram.size()) {
            break;
        }
        const Bytes body = datagram.first(header.nlmsg_len).subspan(sizeof header);
        // What is told of a change bears the number of whoever asked for the change.
        const bool isListed = before_ && header.nlmsg_seq == listed_ && (header.nlmsg_flags & NLM_F_MULTI) != 0;
        switch (header.nlmsg_type) {
            case RTM_NEWROUTE:
            case RTM_DELROUTE:
                isNews |= readRoute(header, body, isListed);
                break;
            case RTM_NEWLINK:
            case RTM_DELLINK:
                isNews |= readLink(header, body);
                break;
            case NLMSG_DONE:
            case NLMSG_ERROR:
                isNews |= before_ && header.nlmsg_seq == listed_ && finishList();
                break;
            case NLMSG_OVERRUN:
                return Outcome::Overrun;
        }
        datagram = datagram.subspan(std::min<std::size_t>(NLMSG_ALIGN(header.nlmsg_len), datagram.size()));
    }
    return isNews ? Outcome::NewWay : Outcome::Nothing;
}

void RouteTable::expectAll(std::uint32_t sequence) {
    before_.emplace(std::exchange(ways_, {}));
    listed_ = sequence;
}

bool RouteTable::leadsOut() const {
    const auto isUsable = [](const auto& way) { return way.second; };
    return std::ranges::any_of(ways_, isUsable) || (before_ && std::ranges::any_of(*before_, isUsable));
}

bool RouteTable::readRoute(const nlmsghdr& header, Bytes body, bool isListed) {
    const auto route = takeFront<rtmsg>(body);
    if (!route || route->rtm_type != RTN_UNICAST || (route->rtm_flags & RTM_F_CLONED) != 0) {
        return false;
    }
    Place place{.family = route->rtm_family, .prefix = route->rtm_dst_len, .service = route->rtm_tos};
    Way way;
    std::uint32_t table = route->rtm_table;
    forEachAttribute(body, [&](int type, Bytes value) {
        switch (type) {
            case RTA_TABLE:
                table = numberIn(value);
                break;
            case RTA_DST:
                place.destination = textIn(value);
                break;
            case RTA_PRIORITY:
                place.metric = numberIn(value);
                break;
            case RTA_OIF:
                way.link = numberIn(value);
                break;
            case RTA_GATEWAY:
            case RTA_VIA:
            case RTA_MULTIPATH:
                way.gateway = textIn(value);
                break;
        }
    });
    if (table != RT_TABLE_MAIN || (route->rtm_dst_len != 0 && way.gateway.empty())) {
        return false;
    }
    if (header.nlmsg_type == RTM_DELROUTE) {
        ways_.erase({place, way});
        return false;
    }
    const bool wasKnown = ways_.contains({place, way}) || (before_ && before_->contains({place, way}));
    if ((header.nlmsg_flags & NLM_F_REPLACE) != 0) {
        std::erase_if(ways_, [&](const auto& known) { return known.first.first == place; });
    }
    const bool hasCarrier = (route->rtm_flags & (RTNH_F_LINKDOWN | RTNH_F_DEAD)) == 0;
    ways_.insert_or_assign({std::move(place), std::move(way)}, hasCarrier);
    // A route that the kernel tells of is not always new: those of IPv6 are told of again each time a router makes
    // itself known. Those of IPv4 are, though they may be known here, since the kernel drops them in silence when their
    // address goes.
    return !isListed && hasCarrier && (route->rtm_family == AF_INET || !wasKnown);
}

bool RouteTable::readLink(const nlmsghdr& header, Bytes body) {
    const auto link = takeFront<ifinfomsg>(body);
    if (!link || link->ifi_family != AF_UNSPEC) {  // bridges tell of their ports in the same words
        return false;
    }
    const auto number = static_cast<std::uint32_t>(link->ifi_index);
    if (header.nlmsg_type == RTM_DELLINK || (link->ifi_flags & IFF_UP) == 0) {
        std::erase_if(ways_, [&](const auto& way) { return way.first.second.link == number; });  // dropped in silence
        return false;
    }
    bool isNews = false;
    const bool hasCarrier = (link->ifi_flags & IFF_RUNNING) != 0;
    for (auto& [way, hadCarrier] : ways_) {
        if (way.second.link == number) {
            isNews |= hasCarrier && !hadCarrier;
            hadCarrier = hasCarrier;
        }
    }
    return isNews;
}

bool RouteTable::finishList() {
    const Ways before = std::move(*before_);
    before_.reset();
    if (!std::exchange(wasRead_, true)) {
        return false;
    }
    return std::ranges::any_of(ways_, [&](const auto& now) {
        const auto known = before.find(now.first);
        return now.second && (known == before.end() || !known->second);
    });
}

}  // namespace glintar::platform
