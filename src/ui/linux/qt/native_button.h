// A command button that knows whether a click came from the keyboard or mouse, check boxes and option buttons
// that know whether a click changes them, and an option button whose caption is data, which may be too long
// for its place.
#pragma once

#include <utility>

#include <QCheckBox>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPushButton>
#include <QRadioButton>

namespace ui {

class NativeButton final : public QPushButton {
  public:
    using QPushButton::QPushButton;

    /// True once for a click by mouse or keyboard, which has a time of arrival; false for a click by a screen
    /// reader.
    bool TakeByInput() { return std::exchange(by_input_, false); }
    /// Clicks the button for a key, such as its mnemonic or Escape.
    void ClickByInput() {
        by_input_ = true;
        click();
        by_input_ = false;
    }

  protected:
    void keyPressEvent(QKeyEvent* event) override {
        by_input_ = true;
        QPushButton::keyPressEvent(event);
        by_input_ = false;
    }
    void keyReleaseEvent(QKeyEvent* event) override {
        by_input_ = true;
        QPushButton::keyReleaseEvent(event);
        by_input_ = false;
    }
    void mouseReleaseEvent(QMouseEvent* event) override {
        by_input_ = true;
        QPushButton::mouseReleaseEvent(event);
        by_input_ = false;
    }

  private:
    bool by_input_ = false;
};

/// Says whether a change of a check box or an option button comes from a click. Assistive technology changes
/// it without a click.
class ClickWitness {
  public:
    bool IsBeingClicked() const { return being_clicked_; }

  protected:
    bool being_clicked_ = false;
};

template <typename Button>
class NativeToggle : public Button, public ClickWitness {
  public:
    using Button::Button;

  protected:
    void nextCheckState() override {
        being_clicked_ = true;
        Button::nextCheckState();
        being_clicked_ = false;
    }
};

/// An option button whose caption is data: an "&" is shown as it is. A caption that is too long is shown with
/// an ellipsis in its middle, and the whole caption is the tool tip.
class NativeDataOption final : public NativeToggle<QRadioButton> {
  public:
    using NativeToggle::NativeToggle;

    void SetCaption(const QString& caption);

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    /// Shows as much of the caption as fits.
    void Fit();

    QString caption_;
};

} // namespace ui
