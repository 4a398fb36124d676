#pragma once

#include <functional>

namespace glintar::platform {

/// A piece of work that is run once.
using Task = std::move_only_function<void()>;

}  // namespace glintar::platform
