// Measures a caption in the font of its native control and cuts it if it is too long.
#include "ui/windows/shown_caption.h"

#include "ui/windows/dialog_font.h"

namespace ui {
namespace {

constexpr int kBesideCaption = 18; // the width of the tick and its margin, in pixels at 96 DPI

/// Measures texts in the font of a window.
class Ruler {
  public:
    explicit Ruler(HWND window)
        : window_(window),
          paper_(::GetDC(window)),
          before_(
              ::SelectObject(paper_, reinterpret_cast<HGDIOBJ>(::SendMessageA(window, WM_GETFONT, 0, 0)))) {}
    Ruler(const Ruler&) = delete;
    Ruler& operator=(const Ruler&) = delete;
    ~Ruler() {
        ::SelectObject(paper_, before_);
        ::ReleaseDC(window_, paper_);
    }

    LONG WidthOf(const std::string& text) const {
        SIZE size{};
        ::GetTextExtentPoint32A(paper_, text.c_str(), static_cast<int>(text.size()), &size);
        return size.cx;
    }

  private:
    HWND window_;
    HDC paper_;
    HGDIOBJ before_;
};

/// Returns the text with three dots instead of its middle. `kept` characters of it remain.
std::string CutInTheMiddle(const std::string& text, std::size_t kept) {
    return text.substr(0, kept - kept / 2) + "..." + text.substr(text.size() - kept / 2);
}

} // namespace

std::string FittingCaption(const OptionButton& button, HWND window) {
    RECT client{};
    ::GetClientRect(window, &client);
    const LONG room = client.right - ::MulDiv(kBesideCaption, DpiOf(window), kDesignDpi);
    const std::string& text = button.Caption();
    const Ruler ruler(window);
    if (ruler.WidthOf(text) <= room) {
        return text;
    }
    std::size_t fits = 0;
    for (std::size_t too_long = text.size(); too_long - fits > 1;) {
        const std::size_t kept = (fits + too_long) / 2;
        (ruler.WidthOf(CutInTheMiddle(text, kept)) <= room ? fits : too_long) = kept;
    }
    return CutInTheMiddle(text, fits);
}

std::string WithoutMnemonic(const std::string& text) {
    std::string doubled;
    for (const char character : text) {
        doubled.append(character == '&' ? 2 : 1, character);
    }
    return doubled;
}

} // namespace ui
