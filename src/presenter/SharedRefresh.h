#pragma once

#include "platform/Noticeboard.h"
#include "platform/RunLoop.h"
#include "presenter/Publication.h"

#include <optional>
#include <string_view>

namespace glintar::presenter {

/// Whose turn it is to ask the services, among the copies of the program that share a noticeboard.
///
/// Who holds the lock of the page's generation asks, and posts what came; the others show that. One that ends gives the
/// lock back and posts once more, so that the others try it. One that is stopped keeps its lock: when its refresh is
/// 5 s overdue, another takes the lock of the next generation, and the stopped one follows once it wakes. Who cannot
/// lock or post, and who wants something else than what is posted, asks for itself. A wish is compared, never posted.
class SharedRefresh {
public:
    struct Turn {
        bool asks = false;                    ///< the services, now
        const Publication* answer = nullptr;  ///< otherwise what to show, if there is anything, until the next call
        platform::Duration wait{};            ///< and when to ask for the turn again
    };

    SharedRefresh(platform::Noticeboard& board, platform::RunLoop& runLoop);
    SharedRefresh(const SharedRefresh&) = delete;
    SharedRefresh& operator=(const SharedRefresh&) = delete;
    ~SharedRefresh() { leave(); }

    /// For one whose refresh is due. One that does not run on (`runsOn`) waits for nobody.
    [[nodiscard]] Turn take(std::string_view wish, bool runsOn);

    /// Whether the page says something new to one who wants this.
    [[nodiscard]] bool hasNews(std::string_view wish);

    /// Posts what came, if this copy is the one to do so. False when another has taken over meanwhile: what came does
    /// not count.
    [[nodiscard]] bool publish(std::string_view wish, Publication publication);

    /// Asks the publisher to refresh; false when this copy has to do so itself.
    [[nodiscard]] bool askPublisher(std::string_view wish);

    /// Hands over: another may publish from now on.
    void leave();

private:
    enum class Role { Publishes, Follows, Alone };

    void read();
    [[nodiscard]] bool isPosted(std::string_view wish) const;
    [[nodiscard]] bool isSuperseded() const { return page_ && page_->generation > held_; }
    Role claim(std::string_view wish);
    void giveUpLock();

    platform::Noticeboard& board_;
    platform::RunLoop& runLoop_;
    std::int64_t held_ = 0;  ///< the generation whose lock is held
    std::optional<Publication> page_;
    platform::Instant overdueAt_;
    std::optional<platform::Instant> aloneAt_;  ///< the page has held something else since 5 s before
};

}  // namespace glintar::presenter
