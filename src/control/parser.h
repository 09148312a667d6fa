#pragma once
/// The configuration handler of the control registry. [setup]

/// Applies a setting of the [control] section to the registry that `user` points at: "name" appends
/// a parameter, every other key describes the one appended last. Other sections and keys, and keys
/// without a parameter to describe, are accepted and ignored. Returns 1.
int handler(void* user, const char* section, const char* name, const char* value);
