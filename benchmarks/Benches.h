#pragma once

#include <string>

namespace glintar::bench {

// Each prints its rows. `programs` is the folder of glintar and glintar-demo-market, `resources` that of the documents.

void benchDocuments(const std::string& resources);

/// `glintar line --once` beside what a shell script would do.
void benchOnce(const std::string& programs);

/// `glintar line` into a pipe for so many minutes, its start left out.
void benchRunning(const std::string& programs, int minutes);

}  // namespace glintar::bench
