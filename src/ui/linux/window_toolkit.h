// What the module of windows does for ui/toolkit.h; each member is the function of that header of the same
// name.
#pragma once

#include "ui/toolkit.h"

namespace ui {

class WindowToolkit {
  public:
    virtual std::unique_ptr<Window> MakeWindow(Form& form) = 0;
    virtual void ShowModally(Form& form, Form& owner) = 0;
    virtual std::optional<std::string> PickFolder(const Form& owner, const std::string& title,
                                                  const std::string& start_folder) = 0;
    virtual std::optional<std::string> PickFile(const Form& owner, const std::string& title,
                                                const std::string& filter,
                                                const std::string& start_folder) = 0;

  protected:
    ~WindowToolkit() = default;
};

/// The name of the module's function that gives it; it asks for an opened desktop.
inline constexpr char kWindowToolkitFunction[] = "KvWindowToolkit";
using WindowToolkitFunction = WindowToolkit* (*)();

} // namespace ui
