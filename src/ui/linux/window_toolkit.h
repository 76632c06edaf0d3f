// The interface through which the program calls the Qt module (libkvconsole.so). Each member implements the
// function of the same name in ui/toolkit.h.
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

/// The name of the module's function that returns the toolkit, which the module owns. The desktop must be
/// open before it is called.
inline constexpr char kWindowToolkitFunction[] = "KvWindowToolkit";
using WindowToolkitFunction = WindowToolkit* (*)();

} // namespace ui
