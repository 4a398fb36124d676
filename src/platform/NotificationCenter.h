#pragma once

#include <functional>
#include <list>
#include <memory>
#include <string>
#include <string_view>

namespace glintar::platform {

/// Named notices between subsystems, without contents. Main thread only; observers are called at once, in the order
/// in which they registered, and may add or drop observers while they run.
class NotificationCenter {
public:
    class Observation;

    NotificationCenter();
    ~NotificationCenter();
    NotificationCenter(const NotificationCenter&) = delete;
    NotificationCenter& operator=(const NotificationCenter&) = delete;

    void post(std::string_view name);

    /// Calls `observer` at every post of the name, until the handle is destroyed (it may outlive the centre).
    [[nodiscard]] std::unique_ptr<Observation> observe(std::string_view name, std::function<void()> observer);

    /// How many there are, with those that were dropped since the last post.
    [[nodiscard]] std::size_t observers() const { return entries_.size(); }

private:
    struct Entry;
    std::list<std::shared_ptr<Entry>> entries_;
};

class NotificationCenter::Observation {
public:
    explicit Observation(std::shared_ptr<Entry> entry);
    ~Observation();
    Observation(const Observation&) = delete;
    Observation& operator=(const Observation&) = delete;

private:
    std::shared_ptr<Entry> entry_;
};

}  // namespace glintar::platform
