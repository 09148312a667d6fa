/// What the library gives back when its host unloads it.

namespace __gnu_cxx {
void __freeres(); // of the C++ runtime; declared in none of its headers
}

namespace {

/// The C++ runtime is linked into the library and with it a reserve of 72 KB for exceptions thrown
/// when memory is short, which nothing else would free: a scanner that loads the library again and
/// again would lose it each time.
[[gnu::destructor]] void release_exception_reserve() { __gnu_cxx::__freeres(); }

} // namespace
