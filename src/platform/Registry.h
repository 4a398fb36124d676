#pragma once

#include <memory>
#include <typeindex>
#include <unordered_map>
#include <utility>
#include <vector>

namespace glintar::platform {

/// Keeps what exists once a process, by type, and knows none of those types. Main thread only.
/// Objects are made on first use and destroyed in the opposite order.
class Registry {
public:
    Registry() = default;
    Registry(const Registry&) = delete;
    Registry& operator=(const Registry&) = delete;
    ~Registry() { clear(); }

    /// The T of this process, made by `make` (which returns a `shared_ptr<T>`) when there is none yet.
    template <class T, class Make>
    T& shared(Make&& make) {
        const std::type_index type(typeid(T));
        if (const auto found = objects_.find(type); found != objects_.end()) {
            return *static_cast<T*>(found->second.get());
        }
        std::shared_ptr<T> made = std::forward<Make>(make)();
        T& object = *made;
        objects_.emplace(type, std::move(made));
        order_.push_back(type);
        return object;
    }

    void clear() {
        while (!order_.empty()) {
            const auto object = std::move(objects_.at(order_.back()));
            objects_.erase(order_.back());
            order_.pop_back();
        }
    }

private:
    std::unordered_map<std::type_index, std::shared_ptr<void>> objects_;
    std::vector<std::type_index> order_;
};

}  // namespace glintar::platform
