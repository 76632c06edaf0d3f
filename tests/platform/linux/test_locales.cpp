// Sets LOCPATH to the locales that the build has made before any test runs.
#include <cstdlib>

namespace {

[[maybe_unused]] const int set = setenv("LOCPATH", KV_LOCALES, 1);

} // namespace

/// The C library (2.36) leaks its list of the folders in LOCPATH whenever a locale is made. The leak
/// sanitizer calls this function by its name.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:argz_add_sep";
}
