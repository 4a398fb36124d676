#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>

struct nlmsghdr;

namespace glintar::platform {

/// The ways that lead beyond the networks this machine stands in itself, kept up to date by what the kernel tells of
/// its routes and links (rtnetlink(7)): default routes and those through a gateway, of the main table.
class RouteTable {
public:
    enum class Outcome {
        Nothing,
        NewWay,   ///< a way came, or the link of one has a carrier again
        Overrun,  ///< the kernel had to drop something: read the whole table again
    };

    /// One datagram from the kernel. Nothing in it is relied on but its length.
    Outcome read(std::span<const std::byte> datagram);

    /// The whole table follows, from the request of this sequence number on. Its first reading is never news; of a
    /// later one that is which was not known before. Only when no other is being read.
    void expectAll(std::uint32_t sequence);
    [[nodiscard]] bool isReadingAll() const { return before_.has_value(); }

    /// Whether there is a way that can be used.
    [[nodiscard]] bool leadsOut() const;

private:
    /// Routes with the same one replace each other.
    struct Place {
        std::uint8_t family = 0;
        std::uint8_t prefix = 0;
        std::uint8_t service = 0;
        std::uint32_t metric = 0;
        std::string destination;
        auto operator<=>(const Place&) const = default;
    };
    struct Way {
        std::string gateway;
        std::uint32_t link = 0;
        auto operator<=>(const Way&) const = default;
    };
    using Ways = std::map<std::pair<Place, Way>, bool>;  // whether its link has a carrier

    bool readRoute(const nlmsghdr& header, std::span<const std::byte> body, bool isListed);
    bool readLink(const nlmsghdr& header, std::span<const std::byte> body);
    bool finishList();

    Ways ways_;
    std::optional<Ways> before_;  ///< what was known before the table that is being read
    std::uint32_t listed_ = 0;    ///< the sequence number of that table
    bool wasRead_ = false;
};

}  // namespace glintar::platform
