#pragma once

#include <string>

namespace glintar::bench {

// Each prints its rows. `programs` is the folder of our programs, `resources` that of the documents. What takes minutes
// is left out where there are none.

void benchDocuments(const std::string& resources);

/// The suggestions of the settings for what is typed, letter by letter.
void benchKeystrokes(const std::string& resources);

/// `glintar line --once` beside what a shell script would do.
void benchOnce(const std::string& programs);

/// The same coins at every source, `glintar compare` beside curl; and reading the answers.
void benchRound(const std::string& programs);

/// `glintar line` into a pipe for so many minutes, its start left out.
void benchRunning(const std::string& programs, int minutes);

/// Three copies of `glintar line` for ten minutes, beside one.
void benchShared(const std::string& programs);

/// Drawing the pictures of the price line, beside the same strokes of Qt's painter.
void benchPills();

/// `glintar-desktop` with its price line: its start, its memory, and a minute of it.
void benchDesktop(const std::string& programs, int minutes);
void benchDesktopStart(const std::string& programs);

/// `glintar-desktop` with its panel, beside a timer as fast as that follows the pointer.
void benchPanel(const std::string& programs, int minutes);

/// The windows of `glintar-desktop`: how fast they open, and what memory they leave.
void benchWindows(const std::string& programs);

/// What the packages take on the disk, beside those of the bars that show such lines.
void benchSize(const std::string& programs);

}  // namespace glintar::bench
