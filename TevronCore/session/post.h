#pragma once

#include <functional>

/// Runs a task later on the thread that owns a session, in the order posted, without waiting.
/// Callable on any thread. The program posts to its event loop.
using Post = std::function<void(std::function<void()>)>;
