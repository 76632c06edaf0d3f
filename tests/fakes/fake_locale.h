// A user's locale that a test chooses, the same on every system, and the forms of three locales.
#pragma once

#include "platform/locale.h"

namespace fakes {

platform::LocaleForms American();
platform::LocaleForms German();
platform::LocaleForms Swedish();

/// The user's locale for as long as the object lives; otherwise it is the American one.
class FakeLocale {
  public:
    explicit FakeLocale(const platform::LocaleForms& forms);
    FakeLocale(const FakeLocale&) = delete;
    FakeLocale& operator=(const FakeLocale&) = delete;
    ~FakeLocale();
};

} // namespace fakes
