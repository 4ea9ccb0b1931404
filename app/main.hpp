/// What lives as long as the process.
#pragma once

#include "platform/Application.hpp"

namespace tarnwick {

/// The application object; the platform keeps it.
extern id app;
/// The one `AppDelegate`, kept alive by this variable: the application is only told about it.
extern id delegate;

} // namespace tarnwick
