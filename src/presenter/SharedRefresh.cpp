#include "presenter/SharedRefresh.h"

#include <algorithm>
#include <utility>

namespace glintar::presenter {

using namespace std::chrono_literals;
using Lock = platform::Noticeboard::Lock;

namespace {

constexpr auto kGrace = 5s;
constexpr platform::Duration kShortestWait = 100ms;

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

bool SharedRefresh::isPosted(std::string_view wish) const {
    return page_ && board_.isSealOf(page_->wish, wish);
}

void SharedRefresh::giveUpLock() {
    held_ = 0;
    board_.unlock();
}

SharedRefresh::Role SharedRefresh::claim(std::string_view wish) {
    read();
    if (held_ > 0 && !isSuperseded()) {
        return Role::Publishes;
    }
    giveUpLock();
    auto generation = page_ ? page_->generation : 1;
    auto lock = board_.lock(generation);
    if (lock == Lock::Taken && runLoop_.now() >= overdueAt_) {
        lock = board_.lock(++generation);
        overdueAt_ = runLoop_.now() + kGrace;
    }
    if (lock == Lock::Held) {
        held_ = generation;
        read();  // another may have come first, published and given way
        if (!isSuperseded()) {
            return Role::Publishes;
        }
        giveUpLock();
    }
    if (lock == Lock::Impossible) {
        return Role::Alone;
    }
    if (!page_ || isPosted(wish)) {
        aloneAt_.reset();
        return Role::Follows;
    }
    if (!aloneAt_) {
        aloneAt_ = runLoop_.now() + kGrace;  // the publisher may be about to ask for the same
    }
    return runLoop_.now() >= *aloneAt_ ? Role::Alone : Role::Follows;
}

SharedRefresh::Turn SharedRefresh::take(std::string_view wish, bool runsOn) {
    const auto before = held_;
    const auto role = claim(wish);
    const auto untilNext = isPosted(wish) ? page_->nextFetch - runLoop_.bootNow() : -kGrace;
    const auto* const answer = untilNext > -kGrace ? &*page_ : nullptr;  // nobody keeps an older one up to date
    if (role == Role::Follows && runsOn) {
        const auto next = aloneAt_ ? std::min(*aloneAt_, overdueAt_) : overdueAt_;
        return {.answer = answer, .wait = std::max<platform::Duration>(next - runLoop_.now(), kShortestWait)};
    }
    if (untilNext > 0s && (role == Role::Follows || (role == Role::Publishes && held_ != before))) {
        return {.answer = answer, .wait = untilNext};
    }
    return {.asks = true};
}

bool SharedRefresh::hasNews(std::string_view wish) {
    read();
    return held_ > 0 ? isSuperseded() : isPosted(wish);
}

bool SharedRefresh::publish(std::string_view wish, Publication publication) {
    if (held_ == 0) {
        return true;
    }
    read();
    if (isSuperseded()) {
        return false;
    }
    publication.generation = held_;
    publication.wish = board_.seal(wish);
    publication.made = runLoop_.bootNow();
    if (!board_.post(encode(publication))) {
        giveUpLock();
    }
    return true;
}

bool SharedRefresh::askPublisher(std::string_view wish) {
    return claim(wish) == Role::Follows && isPosted(wish) && board_.askForRefresh(page_->generation);
}

void SharedRefresh::leave() {
    if (held_ == 0) {
        return;
    }
    giveUpLock();
    read();
    if (page_) {
        static_cast<void>(board_.post(encode(*page_)));
    }
}

}  // namespace glintar::presenter
