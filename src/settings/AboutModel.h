#pragma once

#include <functional>
#include <string>

namespace glintar::platform {
struct Platform;
class Workspace;
}  // namespace glintar::platform

namespace glintar::settings {

/// Where the makers of this build can be found. Addresses; an empty one leaves its control out.
struct Contacts {
    std::string support;  ///< mail
    std::string website;
    std::string faqPage;
};

/// What the "About" and "Contact" tabs show and do. Main thread only.
class AboutModel {
public:
    /// `terminate` ends this instance.
    AboutModel(platform::Platform& platform, platform::Workspace& workspace, Contacts contacts,
               std::function<void()> terminate);

    [[nodiscard]] const Contacts& contacts() const { return contacts_; }
    [[nodiscard]] std::string versionText() const;

    void open(const std::string& address);

    /// Removes what was downloaded and cached, resets the versions of the documents, and starts the program anew. What
    /// cannot be removed stays.
    void cleanCacheAndRestart();
    void sendEmail();

private:
    platform::Platform& platform_;
    platform::Workspace& workspace_;
    Contacts contacts_;
    std::function<void()> terminate_;
};

}  // namespace glintar::settings
