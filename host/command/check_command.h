#pragma once
/// "tindelwax check", and a program that does nothing else: plug-ins are judged.

#include "check/judge.h"
#include "command/options.h"

/// The request must live until the arguments are parsed.
void add_check_options(CLI::App& app, check_request& request);
