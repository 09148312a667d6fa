#pragma once
/// The library itself, as Windows knows it. [any]

/// The library's module handle (HINSTANCE), under which its resources and window classes are found.
/// The library's entry sets it before anything else runs.
extern void* hInstance;
