#pragma once
/// The configuration handler of the harp matrix. [setup]

/// Applies a setting to the matrix that `user` points at. Settings of other sections, unknown names
/// and lines that do not fit the counts before them are skipped. Returns 1.
int harpmatrix_handler(void* user, const char* section, const char* name, const char* value);
