// The settings of SET DATEFIRST and SET DATEFORMAT. The functions of this library get values alone, so the
// settings of a session belong to the thread that runs its statements.
#pragma once

#include <cstdint>

#include "devserver/tsql/scalar/date_parser.h"

namespace devsql {

struct DateSettings {
    std::int32_t first_day = 7; ///< of the week: 1 Monday to 7 Sunday
    DateOrder order = DateOrder::MonthDayYear;
};

/// The settings of the innermost scope of this thread; those of us_english outside of any scope.
const DateSettings& CurrentDateSettings();

/// While it lives, the thread has these settings. They are read when they are needed, so a change counts at
/// once.
class DateSettingsScope {
  public:
    explicit DateSettingsScope(const DateSettings& settings);
    DateSettingsScope(const DateSettingsScope&) = delete;
    DateSettingsScope& operator=(const DateSettingsScope&) = delete;
    ~DateSettingsScope();

  private:
    const DateSettings* outer_;
};

} // namespace devsql
