#pragma once

#include <functional>
#include <string>

namespace glintar::platform {

struct MailDraft {
    std::string recipient;
    std::string subject;
    std::string body;
};

/// What the desktop opens for the program, and the program's own new start. Main thread only; nothing waits.
class Workspace {
public:
    virtual ~Workspace() = default;

    /// In the user's browser.
    virtual void open(const std::string& address) = 0;

    /// A new message in the user's mail program; nothing where there is none.
    virtual void compose(const MailDraft& draft) = 0;

    /// Starts the program anew, with its arguments and its environment, once this instance has ended. The caller ends
    /// it when `then` runs.
    virtual void relaunch(std::function<void()> then) = 0;
};

}  // namespace glintar::platform
