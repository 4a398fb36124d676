#pragma once

#include "platform/TextOutput.h"

#include <string>
#include <vector>

namespace glintar::line {

class RecordedOutput final : public platform::TextOutput {
public:
    bool isTerminal() const override { return terminal; }
    void printLine(std::string_view text) override { lines.emplace_back(text); }
    void redrawLine(std::string_view text) override { redrawn.emplace_back(text); }

    bool terminal = false;
    std::vector<std::string> lines, redrawn;
};

}  // namespace glintar::line
