// Has the locales that the build made looked up before any test runs.
#include <cstdlib>

namespace {

[[maybe_unused]] const int set = setenv("LOCPATH", KV_LOCALES, 1);

} // namespace

/// The C library (2.36) loses the list that it makes of LOCPATH each time a locale is made. The name is the
/// sanitizer's.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:__argz_add_sep";
}
