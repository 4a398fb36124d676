#pragma once

#include "platform/Workspace.h"

namespace glintar::platform {

/// The desktop's own choice of programs. The new start is left to main: the process becomes the new program when all of
/// the old one has gone, so that arguments, environment and process number stay and no bus is needed.
class QtWorkspace final : public Workspace {
public:
    void open(const std::string& address) override;
    void compose(const MailDraft& draft) override;
    void relaunch(std::function<void()> then) override;

    [[nodiscard]] bool isRelaunchWanted() const { return isRelaunchWanted_; }

private:
    bool isRelaunchWanted_ = false;
};

}  // namespace glintar::platform
