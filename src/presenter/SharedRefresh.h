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
/// lock back and says so on the page. One that is stopped keeps its lock: when its refresh is 5 s overdue, another
/// takes the lock of the next generation, and the stopped one follows once it wakes. Who cannot lock or post, and who
/// wants something else than what is posted, asks for itself.
class SharedRefresh {
public:
    enum class Role { Publishes, Follows, Alone };

    SharedRefresh(platform::Noticeboard& board, platform::RunLoop& runLoop);
    SharedRefresh(const SharedRefresh&) = delete;
    SharedRefresh& operator=(const SharedRefresh&) = delete;
    ~SharedRefresh() { leave(); }

    /// Whose turn it is now. Takes the lock where it can be had, and reads the page.
    Role claim(std::string_view wish);

    [[nodiscard]] bool isPublisher() const { return held_ > 0; }

    /// The page as `claim` read it, if it holds what is wished for.
    [[nodiscard]] const Publication* answer(std::string_view wish) const;

    /// That page while its next refresh is not due.
    [[nodiscard]] const Publication* freshAnswer(std::string_view wish) const;

    /// When to claim again at the latest, as one who follows.
    [[nodiscard]] platform::Duration untilNextClaim() const;

    /// Whether the page says something new to one who wants this. Reads it.
    [[nodiscard]] bool hasNews(std::string_view wish);

    /// Posts what the publisher got. False when another has taken over meanwhile, and its own does not count.
    bool publish(Publication publication);

    /// Puts this copy's name on a page that it has taken over as it is.
    void takeOver();

    /// Asks the publisher to refresh; false when this copy has to do so itself.
    [[nodiscard]] bool askPublisher(std::string_view wish);

    /// Hands over: another may publish from now on.
    void leave();

private:
    void read();

    platform::Noticeboard& board_;
    platform::RunLoop& runLoop_;
    std::int64_t held_ = 0;  ///< the generation whose lock is held
    std::optional<Publication> page_;
    platform::Instant overdueAt_;
    std::optional<platform::Instant> aloneAt_;  ///< the page has held something else since 5 s before
};

}  // namespace glintar::presenter
