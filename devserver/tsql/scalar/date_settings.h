// What SET DATEFIRST and SET DATEFORMAT say. The functions of this library are given values alone, so what a
// session has set holds for the thread that runs its statements.
#pragma once

#include <cstdint>

#include "devserver/tsql/scalar/date_parser.h"

namespace devsql {

struct DateSettings {
    std::int32_t first_day = 7; ///< of the week: 1 Monday to 7 Sunday
    DateOrder order = DateOrder::MonthDayYear;
};

/// Those of the innermost scope of this thread; us_english's outside of any.
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
