// Starts Qt, and shows message boxes and the progress window of unattended runs.
#include "ui/linux/qt/qt_desktop.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <clocale>
#include <thread>

#include <QCloseEvent>
#include <QIcon>
#include <QLabel>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QTimer>

#include <fontconfig/fontconfig.h>

#include "platform/pending_events.h"
#include "ui/linux/qt/accessible.h"
#include "ui/linux/qt/text.h"

namespace ui {
namespace {

/// How long after the start the program's icon is loaded.
constexpr std::chrono::milliseconds kIconDelay{100};

/// Qt sets the process's locale from the environment, which would change how the program converts numbers.
/// This restores the locale.
class KeepLocale {
  public:
    KeepLocale() : before_(std::setlocale(LC_ALL, nullptr)) {}
    KeepLocale(const KeepLocale&) = delete;
    KeepLocale& operator=(const KeepLocale&) = delete;
    ~KeepLocale() { std::setlocale(LC_ALL, before_.c_str()); }

  private:
    std::string before_;
};

/// Qt's warnings are for developers and do not go to the operator's terminal; fatal errors do.
void TakeMessage(QtMsgType type, const QMessageLogContext& /*context*/, const QString& text) {
    if (type == QtCriticalMsg || type == QtFatalMsg) {
        std::fprintf(stderr, "%s\n", text.toLocal8Bit().constData());
    }
}

/// Reads the configuration of the fonts in a second thread; Qt would otherwise read it for the first text. It
/// takes as long as opening the display. Qt sets the process's locale at the same time, so this thread has a
/// locale of its own, which decides how it reads numbers.
void ReadFontConfiguration() {
    const locale_t own = ::newlocale(LC_ALL_MASK, "C", nullptr);
    ::uselocale(own);
    ::FcInit();
    ::uselocale(LC_GLOBAL_LOCALE);
    ::freelocale(own);
}

std::unique_ptr<QApplication> OpenApplication(const std::string& qt_platform) {
    // Qt keeps references to these as long as the application lives.
    static std::string name = program_invocation_short_name;
    static std::string option = "-platform";
    static std::string value = qt_platform;
    static std::array arguments = {name.data(), option.data(), value.data(), static_cast<char*>(nullptr)};
    static int count = static_cast<int>(arguments.size()) - 1;
    const KeepLocale keep;
    const std::jthread fonts(ReadFontConfiguration); // at the same time
    qInstallMessageHandler(TakeMessage);
    return std::make_unique<QApplication>(count, arguments.data());
}

QString LinesOf(const std::string& text) {
    return ToQt(text).replace("\r\n", "\n");
}

QMessageBox::Icon IconOf(platform::MessageIcon icon) {
    switch (icon) {
    case platform::MessageIcon::None:
        return QMessageBox::NoIcon;
    case platform::MessageIcon::Exclamation:
        return QMessageBox::Warning;
    case platform::MessageIcon::Critical:
        return QMessageBox::Critical;
    }
    return QMessageBox::NoIcon;
}

/// The progress window of an unattended run. Its layout in twips becomes Qt's pixels (96 to the inch), and is
/// enlarged if the font is higher than the label of the layout.
class QtStatusWindow final : public QWidget, public platform::StatusWindow {
  public:
    explicit QtStatusWindow(const platform::StatusWindowLayout& layout)
        : QWidget(nullptr,
                  Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowStaysOnTopHint),
          label_(new QLabel(this)),
          bar_(new QProgressBar(this)),
          height_(std::max(1.0, fontMetrics().height() / Pixels(layout.label.height))) {
        setObjectName("frmStatus");
        setWindowTitle(ToQt(layout.caption));
        label_->setObjectName("lblStatus");
        label_->setTextFormat(Qt::PlainText);
        bar_->setObjectName("prbStatus");
        bar_->setTextVisible(false);
        Settle(*label_, layout.label);
        Settle(*bar_, layout.bar);
        setFixedSize(qRound(Pixels(layout.client_width) * height_),
                     qRound(Pixels(layout.client_height) * height_));
        const QRect free = screen()->availableGeometry();
        move(free.center() - rect().center());
    }

    void SetBar(float min, float max, float value) override {
        const int low = static_cast<int>(min);
        bar_->setRange(low, std::max(static_cast<int>(max), low + 1)); // an empty range means "busy" to Qt
        bar_->setValue(static_cast<int>(value));
        bar_->repaint();
    }

    void SetLabel(const std::string& text) override {
        label_->setText(ToQt(text));
        label_->repaint();
    }

    void Show() override { show(); }

  protected:
    void closeEvent(QCloseEvent* event) override { event->ignore(); } // only the end of the run closes it

  private:
    static double Pixels(int twips) { return static_cast<double>(twips) / platform::kTwipsPerPixel; }
    void Settle(QWidget& part, const platform::TwipsRect& place) const {
        part.setGeometry(QRectF(Pixels(place.left) * height_, Pixels(place.top) * height_,
                                Pixels(place.width) * height_, Pixels(place.height) * height_)
                             .toRect());
    }

    QLabel* label_;
    QProgressBar* bar_;
    double height_; ///< the factor by which everything is enlarged, at least 1
};

} // namespace

QtDesktop::QtDesktop(const std::string& qt_platform) : application_(OpenApplication(qt_platform)) {
    // Each window ends its own loop; the program does not end when a message box closes.
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setQuitLockEnabled(false);
    // The icon is loaded after the first window is on the screen, because reading pictures loads several
    // plugins.
    QTimer::singleShot(kIconDelay, qApp, [] { QApplication::setWindowIcon(QIcon(":/icons/program.ico")); });
    CorrectAccessibleInterfaces();
}

void QtDesktop::ShowMessageBox(const std::string& text, platform::MessageIcon icon,
                               const std::string& title) {
    // The box is above the active window; it has no owner if the program shows no window.
    QMessageBox box(IconOf(icon), ToQt(title), LinesOf(text), QMessageBox::Ok, QApplication::activeWindow());
    box.setTextFormat(Qt::PlainText);
    box.setObjectName("message");
    const bool waiting = QGuiApplication::overrideCursor() != nullptr;
    SetMousePointer(platform::kDefaultPointer); // no hourglass while the operator is asked
    box.exec();
    SetMousePointer(waiting ? platform::kHourglassPointer : platform::kDefaultPointer);
}

std::unique_ptr<platform::StatusWindow>
QtDesktop::MakeStatusWindow(const platform::StatusWindowLayout& layout) {
    return std::make_unique<QtStatusWindow>(layout);
}

void QtDesktop::RunPendingEvents() {
    QCoreApplication::processEvents();
}

void QtDesktop::SetMousePointer(std::int16_t pointer) {
    const bool waiting = QGuiApplication::overrideCursor() != nullptr;
    if (pointer == platform::kHourglassPointer && !waiting) {
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    } else if (pointer != platform::kHourglassPointer && waiting) {
        QGuiApplication::restoreOverrideCursor();
    }
}

} // namespace ui
