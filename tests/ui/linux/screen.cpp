// Implements ui/screen.h with Qt and an X server.
#include "ui/screen.h"

#include <memory>
#include <thread>

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QStyleOption>
#include <QTabBar>
#include <QTableView>
#include <QTimer>
#include <QWindow>

#include "platform/linux/desktop.h"
#include "platform/pending_events.h"
#include "ui/linux/parts.h"
#include "ui/linux/x_input.h"

namespace screen {
namespace {

QString Identifier(const ui::Control& control) {
    const std::string index = control.Index() ? "(" + std::to_string(*control.Index()) + ")" : "";
    return QString::fromStdString(control.Name() + index);
}

Box ToBox(const QRect& rect) {
    return {rect.left(), rect.top(), rect.left() + rect.width(), rect.top() + rect.height()};
}

QPoint OnScreen(QWidget& widget, QPoint point) {
    const QPoint place = widget.mapToGlobal(point);
    const double scale = widget.devicePixelRatioF();
    return {qRound(place.x() * scale), qRound(place.y() * scale)};
}

/// The widget that receives a click on a native control: for a list its viewport.
QWidget& Surface(QWidget& widget) {
    auto* area = qobject_cast<QAbstractScrollArea*>(&widget);
    return area == nullptr ? widget : *area->viewport();
}

XInput& Input() {
    static XInput input;
    return input;
}

/// Counts the presses of XInput::PressNothing and the moves of the pointer that arrive.
class InputCounter : public QObject {
  public:
    InputCounter() { qApp->installEventFilter(this); }
    ~InputCounter() override { qApp->removeEventFilter(this); }
    int keys = 0;
    int moves = 0;

  protected:
    bool eventFilter(QObject* object, QEvent* event) override {
        moves += object->isWindowType() && event->type() == QEvent::MouseMove ? 1 : 0;
        if (object->isWidgetType() && event->type() == QEvent::KeyPress &&
            static_cast<QKeyEvent*>(event)->key() == Qt::Key_F24) {
            ++keys;
            return true;
        }
        return false;
    }
};

QTimer* meanwhile = nullptr;

bool HasBuddy(const QWidget& widget) {
    const auto* label = qobject_cast<const QLabel*>(&widget);
    return label != nullptr && label->buddy() != nullptr;
}

} // namespace

bool IsThere() {
    return platform::OpenDesktop() != nullptr;
}

bool WaitFor(const std::function<bool()>& condition, std::chrono::milliseconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    for (;;) {
        platform::RunPendingEvents();
        if (condition()) {
            return true;
        }
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

Meanwhile::Meanwhile(std::function<bool()> step) {
    meanwhile = new QTimer;
    const auto run = [timer = meanwhile, step = std::move(step), running = false]() mutable {
        if (std::exchange(running, true)) {
            return; // a step may run events itself
        }
        if (step()) {
            timer->stop();
        }
        running = false;
    };
    QObject::connect(meanwhile, &QTimer::timeout, meanwhile, run);
    meanwhile->start(std::chrono::milliseconds(10));
}

Meanwhile::~Meanwhile() {
    delete std::exchange(meanwhile, nullptr);
}

// --- finding

Part WindowOf(const ui::Form& form) {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->objectName() == form.Design().name) {
            return window;
        }
    }
    return nullptr;
}

Part Find(const ui::Form& form, const ui::Control& control) {
    Part window = WindowOf(form);
    return window == nullptr ? nullptr : Of(window).findChild<QWidget*>(Identifier(control));
}

Part ParentOf(Part part) {
    return Of(part).parentWidget();
}

const ui::Control* Focused(const ui::Form& form) {
    for (QWidget* widget = QApplication::focusWidget(); widget != nullptr; widget = widget->parentWidget()) {
        for (const auto& control : form.Controls()) {
            if (Identifier(*control) == widget->objectName()) {
                return control.get();
            }
        }
    }
    return nullptr;
}

// --- seeing

bool IsOfKind(Part part, ui::Kind kind) {
    const QWidget& widget = Of(part);
    switch (kind) {
    case ui::Kind::Frame:
        return qobject_cast<const QGroupBox*>(&widget) != nullptr;
    case ui::Kind::PictureBox:
        return widget.metaObject() == &QWidget::staticMetaObject;
    case ui::Kind::Label:
        return qobject_cast<const QLabel*>(&widget) != nullptr;
    case ui::Kind::TextBox:
        return qobject_cast<const QLineEdit*>(&widget) != nullptr ||
               qobject_cast<const QPlainTextEdit*>(&widget) != nullptr;
    case ui::Kind::CommandButton:
        return qobject_cast<const QPushButton*>(&widget) != nullptr;
    case ui::Kind::CheckBox:
        return qobject_cast<const QCheckBox*>(&widget) != nullptr;
    case ui::Kind::OptionButton:
        return qobject_cast<const QRadioButton*>(&widget) != nullptr;
    case ui::Kind::ComboBox:
        return qobject_cast<const QComboBox*>(&widget) != nullptr;
    case ui::Kind::ListBox:
        return qobject_cast<const QListWidget*>(&widget) != nullptr;
    case ui::Kind::ListView:
        return qobject_cast<const QTableView*>(&widget) != nullptr;
    case ui::Kind::ProgressBar:
        return qobject_cast<const QProgressBar*>(&widget) != nullptr;
    case ui::Kind::TabControl:
        return qobject_cast<const QTabBar*>(&widget) != nullptr;
    case ui::Kind::Form:
        break;
    }
    return false;
}

bool IsShown(Part part) {
    return part != nullptr && Of(part).isVisible();
}

bool IsEnabled(Part part) {
    return Of(part).isEnabled();
}

std::string Text(Part part) {
    QWidget& widget = Of(part);
    if (widget.isWindow()) {
        return Latin(widget.windowTitle());
    }
    if (auto* lines = qobject_cast<QPlainTextEdit*>(&widget)) {
        return Latin(lines->toPlainText());
    }
    for (const char* property : {"text", "currentText", "title"}) {
        if (const QVariant value = widget.property(property); value.isValid()) {
            return Latin(value.toString());
        }
    }
    return "";
}

std::string ShownCaption(Part part) {
    QWidget& widget = Of(part);
    QString caption = widget.property("text").toString();
    if (qobject_cast<QAbstractButton*>(&widget) != nullptr || HasBuddy(widget)) {
        caption.replace("&&", QChar(1)).remove('&').replace(QChar(1), '&');
    }
    return caption.toStdString();
}

std::string Ellipsis() {
    return "\xE2\x80\xA6"; // U+2026 in UTF-8
}

/// Qt measures.
std::size_t EllipsisOffset() {
    return 4;
}

bool IsTicked(Part part) {
    return As<QAbstractButton>(part).isChecked();
}

bool IsReadOnly(Part part) {
    return Of(part).property("readOnly").toBool();
}

std::pair<int, int> Selection(Part part) {
    auto* combo_box = qobject_cast<QComboBox*>(&Of(part));
    const auto& line = combo_box == nullptr ? As<QLineEdit>(part) : *combo_box->lineEdit();
    return line.hasSelectedText() ? std::pair(line.selectionStart(), line.selectionEnd())
                                  : std::pair(line.cursorPosition(), line.cursorPosition());
}

int ItemCount(Part part) {
    return Of(part).property("count").toInt();
}

int ChosenItem(Part part) {
    if (auto* list = qobject_cast<QListWidget*>(&Of(part))) {
        return list->currentRow();
    }
    return As<QComboBox>(part).currentIndex();
}

bool IsDroppedDown(Part combo_box) {
    return As<QComboBox>(combo_box).view()->isVisible();
}

int BarMin(Part bar) {
    return As<QProgressBar>(bar).minimum();
}

int BarMax(Part bar) {
    return As<QProgressBar>(bar).maximum();
}

int BarValue(Part bar) {
    return As<QProgressBar>(bar).value();
}

int ShownTab(Part tabs) {
    return As<QTabBar>(tabs).currentIndex();
}

int RowCount(Part list_view) {
    return As<QTableView>(list_view).model()->rowCount();
}

int ColumnCount(Part list_view) {
    return As<QTableView>(list_view).model()->columnCount();
}

std::string Cell(Part list_view, int row, int column) {
    const QAbstractItemModel& model = *As<QTableView>(list_view).model();
    return Latin(model.data(model.index(row, column)).toString());
}

int ColumnWidth(Part list_view, int column) {
    return As<QTableView>(list_view).columnWidth(column);
}

int ViewWidth(Part list_view) {
    return As<QTableView>(list_view).viewport()->width();
}

std::size_t LongestCell() {
    return std::string::npos;
}

bool HasGridAndFullRows(Part list_view) {
    const auto& table = As<QTableView>(list_view);
    return table.showGrid() && table.selectionBehavior() == QAbstractItemView::SelectRows;
}

int WidthOfText(Part part, const std::string& text) {
    QString shown = QString::fromLatin1(QByteArray::fromStdString(text));
    shown.replace("&&", QChar(1)).remove('&').replace(QChar(1), '&');
    return Of(part).fontMetrics().horizontalAdvance(shown);
}

int RoomForCaption(Part part, ui::Kind kind) {
    QWidget& widget = Of(part);
    QStyleOptionButton option;
    option.initFrom(&widget);
    switch (kind) {
    case ui::Kind::CheckBox:
        return widget.style()->subElementRect(QStyle::SE_CheckBoxContents, &option, &widget).width();
    case ui::Kind::OptionButton:
        return widget.style()->subElementRect(QStyle::SE_RadioButtonContents, &option, &widget).width();
    case ui::Kind::CommandButton:
        return widget.style()->subElementRect(QStyle::SE_PushButtonContents, &option, &widget).width();
    default:
        return widget.contentsRect().width();
    }
}

Box PlaceIn(Part part, Part other) {
    QWidget& widget = Of(part);
    return ToBox({Of(other).mapFromGlobal(widget.mapToGlobal(QPoint(0, 0))), widget.size()});
}

Box FrameOf(Part window) {
    return ToBox(Of(window).frameGeometry());
}

Box Room(Part part) {
    QWidget& widget = Of(part);
    auto* frame = qobject_cast<QGroupBox*>(&widget);
    if (frame == nullptr) {
        return ToBox(widget.rect());
    }
    QStyleOptionGroupBox option;
    option.initFrom(frame);
    option.text = frame->title();
    option.subControls = QStyle::SC_GroupBoxFrame | QStyle::SC_GroupBoxLabel;
    return ToBox(
        frame->style()->subControlRect(QStyle::CC_GroupBox, &option, QStyle::SC_GroupBoxContents, frame));
}

Box TabPlace(Part tabs, int tab) {
    return ToBox(As<QTabBar>(tabs).tabRect(tab));
}

Box ItemPlace(Part list_box, int item) {
    const auto& list = As<QListWidget>(list_box);
    return ToBox(list.visualItemRect(list.item(item)));
}

/// Returns the shape that Qt has set for the window below the pointer. The display itself could be asked only
/// if it had a theme, which gives the shapes names.
Pointer PointerOver(Part part) {
    QWidget& surface = Surface(Of(part));
    const QPoint middle = surface.rect().center();
    for (const QPoint place : {middle - QPoint(1, 0), middle}) {
        Input().MoveTo(OnScreen(surface, place));
        WaitFor([&] { return QCursor::pos() == surface.mapToGlobal(place); });
        platform::RunPendingEvents();
    }
    const QCursor* over_all = QGuiApplication::overrideCursor();
    const QCursor cursor = over_all == nullptr ? surface.window()->windowHandle()->cursor() : *over_all;
    switch (cursor.shape()) {
    case Qt::ArrowCursor:
        return Pointer::Arrow;
    case Qt::IBeamCursor:
        return Pointer::Beam;
    case Qt::WaitCursor:
        return Pointer::Hourglass;
    default:
        return Pointer::Other;
    }
}

namespace {

const QLabel* ShownTip() {
    for (const QWidget* window : QApplication::topLevelWidgets()) {
        if (window->inherits("QTipLabel") && window->isVisible()) {
            return static_cast<const QLabel*>(window);
        }
    }
    return nullptr;
}

} // namespace

std::string ToolTip() {
    const QLabel* tip = ShownTip();
    return tip == nullptr ? "" : Latin(tip->text());
}

int ToolTipWidth() {
    const QLabel* tip = ShownTip();
    return tip == nullptr ? 0 : tip->width();
}

bool HasIcon(Part window) {
    return !Of(window).windowIcon().isNull();
}

bool HasPicture(Part button) {
    return !As<QAbstractButton>(button).icon().isNull();
}

bool PaintingIsLocked(Part window) {
    return !Of(window).updatesEnabled();
}

Colour ColourOf(Look look) {
    const QPalette palette = QApplication::palette();
    const QColor colour = look == Look::Face ? palette.color(QPalette::Window)
                          : look == Look::TextBackground
                              ? palette.color(QPalette::Base)
                              : palette.color(QPalette::Disabled, QPalette::WindowText);
    return colour.rgb() & 0xFFFFFFU;
}

std::vector<Colour> Pixels(Part part, const Box& box) {
    QWidget& widget = Of(part);
    const QPoint corner = widget.mapToGlobal(QPoint(box.left, box.top));
    const QImage image =
        widget.screen()->grabWindow(0, corner.x(), corner.y(), box.Width(), box.Height()).toImage();
    const double scale = image.devicePixelRatio();
    std::vector<Colour> pixels;
    for (int y = 0; y < box.Height(); ++y) {
        for (int x = 0; x < box.Width(); ++x) {
            pixels.push_back(image.pixel(qFloor(x * scale), qFloor(y * scale)) & 0xFFFFFFU);
        }
    }
    return pixels;
}

bool TakePicture(Part window, const std::string& path) {
    QWidget& widget = Of(window);
    const QRect frame = widget.frameGeometry();
    const QPixmap picture =
        widget.screen()->grabWindow(0, frame.x(), frame.y(), frame.width(), frame.height());
    return picture.save(QString::fromStdString(path) + ".png", "PNG");
}

std::vector<int> Sizes() {
    return {9, 10, 11, 12, 13, 14};
}

void SetSize(Part /*window*/, int size) {
    QFont font = QApplication::font();
    font.setPointSize(size);
    QApplication::setFont(font);
}

Box WorkArea() {
    return ToBox(QGuiApplication::primaryScreen()->availableGeometry());
}

// --- working

/// True if the display has the window at the place that Qt reports. With a scale such as 1.25 Qt's place is
/// rounded.
bool IsAtPlace(QWidget& widget) {
    constexpr int kRounding = 2; // points, one in each direction
    return (Input().CornerOf(widget.winId()) - OnScreen(widget, {0, 0})).manhattanLength() <= kRounding;
}

/// The window manager places the window, frames it and gives it the keyboard's focus some time after it was
/// asked. So this presses a key and moves the pointer onto the window until both arrive and the window is at
/// the place that Qt reports. An earlier click could miss it.
bool Activate(Part window) {
    constexpr int kTries = 300;
    Of(window).raise();
    const InputCounter counter;
    for (int attempt = 0; attempt < kTries; ++attempt) {
        const auto here = [&] {
            QWidget& widget = Of(window);
            return counter.keys > 0 && counter.moves > 0 && widget.isActiveWindow() && IsAtPlace(widget);
        };
        Of(window).activateWindow();
        Input().MoveTo(OnScreen(Of(window), Of(window).rect().center()));
        Input().Nudge();
        Input().PressNothing();
        if (WaitFor(here, std::chrono::milliseconds(200))) {
            return true;
        }
    }
    return false;
}

void Click(Part part) {
    QWidget& surface = Surface(Of(part));
    ClickAt(part, surface.width() / 2, surface.height() / 2);
}

void ClickAt(Part part, int x, int y) {
    QWidget& surface = Surface(Of(part));
    Input().MoveTo(OnScreen(surface, {x, y}));
    Input().Click();
}

Spot MiddleOf(Part part) {
    QWidget& surface = Surface(Of(part));
    const QPoint middle = OnScreen(surface, surface.rect().center());
    return {middle.x(), middle.y()};
}

void ClickAt(Spot spot) {
    Input().MoveTo({spot.x, spot.y});
    Input().Click();
}

void Type(const std::string& text) {
    for (const char character : text) {
        Input().Type(character);
    }
}

void Press(Key key, std::initializer_list<Held> held) {
    std::vector<XInput::Symbol> symbols;
    for (const Held one : held) {
        symbols.push_back(XInput::SymbolOf(one));
    }
    Input().Press(XInput::SymbolOf(key), symbols);
}

void Hold(Key key, int repeats) {
    Input().Hold(XInput::SymbolOf(key), repeats);
}

/// A press of the mouse's button may be delivered later than a key that was sent after it, because the window
/// manager handles it first. A move of the pointer that was sent after the press is delivered after it. So
/// this waits for a key and, if the pointer is over one of the program's windows, also for a move.
bool InputArrived() {
    const InputCounter counter;
    const QWidget* below = QApplication::widgetAt(QCursor::pos());
    const QWidget* modal = QApplication::activeModalWidget();
    const bool over_window = below != nullptr && (modal == nullptr || below->window() == modal);
    Input().Nudge();
    Input().PressNothing();
    return WaitFor([&] { return counter.keys > 0 && (counter.moves > 0 || !over_window); });
}

void CloseByFrame(Part window) {
    QMetaObject::invokeMethod(&Of(window), &QWidget::close, Qt::QueuedConnection);
}

} // namespace screen
