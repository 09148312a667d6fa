#pragma once
/// The system's services for drag and drop and for components such as its dialogs bring along: OLE
/// on Windows, nothing elsewhere. [setup] and [ui]

#include <memory>

using component_services = std::shared_ptr<void>;

/// Prepares them for this thread, if it has no others, until what is returned goes. Where that goes
/// on another thread they stay: each thread has its own.
[[nodiscard]] component_services component_services_prepare();
