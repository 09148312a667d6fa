#include "platform/component_services/component_services.h"

component_services component_services_prepare() { return nullptr; }
