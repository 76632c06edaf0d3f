// Buttons with what the native ones lack: a command button that says whether the operator has pressed it, and
// an option button whose caption is data, too long as it may be.
#pragma once

#include <utility>

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPushButton>
#include <QRadioButton>

namespace ui {

class NativeButton final : public QPushButton {
  public:
    using QPushButton::QPushButton;

    /// True once for a click by mouse or keyboard, which has a time of arrival. One by a screen reader has
    /// none.
    bool TakeByInput() { return std::exchange(by_input_, false); }
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

/// Shows its caption as it stands, "&" included, and where it is too long with an ellipsis in its middle and
/// the whole of it as tool tip.
class NativeDataOption final : public QRadioButton {
  public:
    using QRadioButton::QRadioButton;

    void SetCaption(const QString& caption);

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    void Fit();

    QString caption_;
};

} // namespace ui
