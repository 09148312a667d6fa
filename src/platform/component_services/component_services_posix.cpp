#include "platform/component_services/component_services.h"

ComponentServices::ComponentServices() = default;
ComponentServices::~ComponentServices() = default;
