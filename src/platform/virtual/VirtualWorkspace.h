#pragma once

#include "platform/LoginItem.h"
#include "platform/Workspace.h"

#include <string>
#include <utility>
#include <vector>

namespace glintar::platform {

/// Keeps what was asked for. A new start is granted at once.
class VirtualWorkspace final : public Workspace {
public:
    void open(const std::string& address) override { opened.push_back(address); }
    void compose(const MailDraft& draft) override { drafts.push_back(draft); }
    void relaunch(std::function<void()> then) override {
        ++relaunches;
        then();
    }

    std::vector<std::string> opened;
    std::vector<MailDraft> drafts;
    int relaunches = 0;
};

class VirtualLoginItem final : public LoginItem {
public:
    bool isEnabled() const override { return isThere; }
    Outcome registerItem() override { return set(true); }
    Outcome unregisterItem() override {
        return isThere || !failure.empty() ? set(false) : std::unexpected("There is no such item.");
    }
    void repair() override { ++repairs; }

    bool isThere = false;
    std::string failure;  ///< when not empty, no change succeeds
    int repairs = 0;

private:
    Outcome set(bool there) {
        if (!failure.empty()) {
            return std::unexpected(failure);
        }
        isThere = there;
        return {};
    }
};

}  // namespace glintar::platform
