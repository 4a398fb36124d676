#pragma once

#include <QSocketNotifier>

#include <functional>
#include <string>
#include <string_view>

namespace glintar::platform {

/// Standard input, line by line, on the main thread. Its end says nothing and costs nothing; a line that grows beyond
/// all measure is dropped.
class TerminalInput {
public:
    explicit TerminalInput(std::function<void(std::string_view line)> onLine);

private:
    void onReadable();

    std::function<void(std::string_view)> onLine_;
    std::string begun_;  ///< of a line whose end has not come
    QSocketNotifier notifier_;
};

}  // namespace glintar::platform
