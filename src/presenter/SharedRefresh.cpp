#include "presenter/SharedRefresh.h"

#include <algorithm>
#include <utility>

namespace glintar::presenter {

using namespace std::chrono_literals;
using Lock = platform::Noticeboard::Lock;

namespace {

constexpr auto kGrace = 5s;

}  // namespace

SharedRefresh::SharedRefresh(platform::Noticeboard& board, platform::RunLoop& runLoop)
    : board_(board), runLoop_(runLoop), overdueAt_(runLoop.now() + kGrace) {}

/// The deadline counts on the clock that stands still during sleep: whoever publishes has slept as well.
void SharedRefresh::read() {
    auto text = board_.read();
    auto page = text ? decodePublication(*std::move(text)) : std::nullopt;
    const auto untilNext = page ? page->nextFetch - runLoop_.bootNow() : 0s;
    if (page && untilNext > page->interval + kGrace) {
        page.reset();  // of another run of the machine
    }
    if (page && (!page_ || page->made != page_->made || page->generation != page_->generation)) {
        overdueAt_ = runLoop_.now() + std::max<platform::Duration>(untilNext, 0s) + kGrace;
    }
    page_ = std::move(page);
}

SharedRefresh::Role SharedRefresh::claim(std::string_view wish) {
    read();
    if (held_ > 0 && page_ && page_->generation > held_) {
        held_ = 0;
        board_.unlock();
    }
    if (held_ > 0) {
        return Role::Publishes;
    }
    auto generation = page_ ? page_->generation : 1;
    auto lock = board_.lock(generation);
    if (lock == Lock::Taken && runLoop_.now() >= overdueAt_) {
        lock = board_.lock(++generation);
        overdueAt_ = runLoop_.now() + kGrace;
    }
    if (lock == Lock::Held) {
        read();  // another may have come first, published and given way
        if (!page_ || page_->generation <= generation) {
            held_ = generation;
            return Role::Publishes;
        }
        board_.unlock();
    }
    if (lock == Lock::Impossible) {
        return Role::Alone;
    }
    if (!page_ || page_->wish == wish) {
        aloneAt_.reset();
        return Role::Follows;
    }
    if (!aloneAt_) {
        aloneAt_ = runLoop_.now() + kGrace;  // the publisher may be about to ask for the same
    }
    return runLoop_.now() >= *aloneAt_ ? Role::Alone : Role::Follows;
}

const Publication* SharedRefresh::answer(std::string_view wish) const {
    return page_ && page_->wish == wish ? &*page_ : nullptr;
}

const Publication* SharedRefresh::freshAnswer(std::string_view wish) const {
    const auto* page = answer(wish);
    return page && runLoop_.bootNow() < page->nextFetch ? page : nullptr;
}

platform::Duration SharedRefresh::untilNextClaim() const {
    const auto next = aloneAt_ ? std::min(*aloneAt_, overdueAt_) : overdueAt_;
    return std::max<platform::Duration>(next - runLoop_.now(), 100ms);
}

bool SharedRefresh::hasNews(std::string_view wish) {
    read();
    if (held_ > 0) {
        return page_ && page_->generation > held_;
    }
    return page_ && (page_->wish == wish || page_->process == 0);
}

bool SharedRefresh::publish(Publication publication) {
    read();
    if (page_ && page_->generation > held_) {
        return false;
    }
    publication.made = runLoop_.bootNow();
    page_ = std::move(publication);
    takeOver();
    return true;
}

void SharedRefresh::takeOver() {
    page_->process = board_.self();
    page_->generation = held_;
    if (!board_.post(encode(*page_))) {
        held_ = 0;
        board_.unlock();
    }
}

bool SharedRefresh::askPublisher(std::string_view wish) {
    // Only while somebody holds the lock is the process on the page the one that is meant.
    if (claim(wish) != Role::Follows || !answer(wish) || page_->process == 0) {
        return false;
    }
    board_.askForRefresh(page_->process);
    return true;
}

void SharedRefresh::leave() {
    if (std::exchange(held_, 0) == 0) {
        return;
    }
    read();
    board_.unlock();  // first, since the page makes others try the lock
    if (page_ && page_->process == board_.self()) {
        page_->process = 0;
        static_cast<void>(board_.post(encode(*page_)));
    }
}

}  // namespace glintar::presenter
