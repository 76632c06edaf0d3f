#include "devserver/tsql/scalar/date_settings.h"

#include <utility>

namespace devsql {
namespace {

constexpr DateSettings kUsEnglish;
thread_local const DateSettings* current = &kUsEnglish;

} // namespace

const DateSettings& CurrentDateSettings() {
    return *current;
}

DateSettingsScope::DateSettingsScope(const DateSettings& settings)
    : outer_(std::exchange(current, &settings)) {}

DateSettingsScope::~DateSettingsScope() {
    current = outer_;
}

} // namespace devsql
