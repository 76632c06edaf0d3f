// A user's locale (platform/locale.h) that a test chooses, linked instead of the system's.
#pragma once

#include "platform/locale.h"

namespace fakes {

// How numbers and dates are written in three locales.
platform::LocaleForms American();
platform::LocaleForms German();
platform::LocaleForms Swedish();

/// Sets the user's locale as long as the object lives. Without one it is American.
class FakeLocale {
  public:
    explicit FakeLocale(const platform::LocaleForms& forms);
    FakeLocale(const FakeLocale&) = delete;
    FakeLocale& operator=(const FakeLocale&) = delete;
    ~FakeLocale();
};

} // namespace fakes
