// The accessible interfaces that replace Qt's own.
#include "ui/linux/qt/accessible.h"

#include <map>
#include <memory>

#include <QAccessible>
#include <QAccessibleWidget>
#include <QPointer>
#include <QTabBar>

#include "ui/linux/qt/text.h"

namespace ui {
namespace {

/// It has a name, a role and a state, but no value and no text interface. Without a text interface Qt does
/// not report what is typed either.
class SecretLineInterface final : public QAccessibleWidget {
  public:
    explicit SecretLineInterface(SecretLine* line) : QAccessibleWidget(line, QAccessible::EditableText) {}

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.passwordEdit = true;
        return state;
    }
};

QString CaptionOf(const QTabBar& bar, int index) {
    return WithoutMnemonic(FromQt(bar.tabText(index)));
}

/// The accessible interface of one tab. Qt's own says that every tab is enabled and that none is selected.
class TabInterface final : public QAccessibleInterface, public QAccessibleActionInterface {
  public:
    TabInterface(QTabBar* bar, int index) : bar_(bar), index_(index) {}

    bool isValid() const override { return bar_ != nullptr && index_ < bar_->count(); }
    QObject* object() const override { return nullptr; }
    QWindow* window() const override { return isValid() ? parent()->window() : nullptr; }
    QAccessibleInterface* parent() const override { return QAccessible::queryAccessibleInterface(bar_); }
    QAccessibleInterface* child(int /*index*/) const override { return nullptr; }
    QAccessibleInterface* childAt(int /*x*/, int /*y*/) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface* /*child*/) const override { return -1; }
    QAccessible::Role role() const override { return QAccessible::PageTab; }

    QString text(QAccessible::Text kind) const override {
        return isValid() && kind == QAccessible::Name ? CaptionOf(*bar_, index_) : QString();
    }
    void setText(QAccessible::Text /*kind*/, const QString& /*text*/) override {}

    QRect rect() const override {
        const QRect place = isValid() ? bar_->tabRect(index_) : QRect();
        return isValid() ? place.translated(bar_->mapToGlobal(QPoint())) : place;
    }

    QAccessible::State state() const override {
        QAccessible::State state;
        if (!isValid()) {
            state.invalid = true;
            return state;
        }
        state = parent()->state();
        const bool current = index_ == bar_->currentIndex();
        state.disabled = !bar_->isEnabled() || !bar_->isTabEnabled(index_);
        state.selectable = !state.disabled;
        state.selected = current;
        state.focused = current && bar_->hasFocus();
        return state;
    }

    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                    : nullptr;
    }
    QStringList actionNames() const override { return {pressAction()}; }
    void doAction(const QString& action) override {
        if (action == pressAction() && isValid() && bar_->isTabEnabled(index_)) {
            bar_->setCurrentIndex(index_);
        }
    }
    QStringList keyBindingsForAction(const QString& /*action*/) const override { return {}; }

  private:
    QPointer<QTabBar> bar_;
    int index_;
};

/// The tab bar. It is named after the tab that is shown, and its children are the tabs.
class TabBarInterface final : public QAccessibleWidget {
  public:
    explicit TabBarInterface(QTabBar* bar) : QAccessibleWidget(bar, QAccessible::PageTabList) {}
    TabBarInterface(const TabBarInterface&) = delete;
    TabBarInterface& operator=(const TabBarInterface&) = delete;
    ~TabBarInterface() override {
        for (const auto& [index, id] : tabs_) {
            QAccessible::deleteAccessibleInterface(id);
        }
    }

    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Name ? CaptionOf(Bar(), Bar().currentIndex())
                                         : QAccessibleWidget::text(kind);
    }
    int childCount() const override { return Bar().count(); }

    QAccessibleInterface* child(int index) const override {
        if (index < 0 || index >= childCount()) {
            return nullptr;
        }
        const auto [place, fresh] = tabs_.try_emplace(index);
        if (fresh) {
            place->second = QAccessible::registerAccessibleInterface(
                std::make_unique<TabInterface>(&Bar(), index).release()); // Qt owns it
        }
        return QAccessible::accessibleInterface(place->second);
    }
    QAccessibleInterface* childAt(int x, int y) const override {
        return child(Bar().tabAt(Bar().mapFromGlobal(QPoint(x, y))));
    }
    int indexOfChild(const QAccessibleInterface* wanted) const override {
        for (const auto& [index, id] : tabs_) {
            if (QAccessible::accessibleInterface(id) == wanted) {
                return index;
            }
        }
        return -1;
    }

  private:
    QTabBar& Bar() const { return *static_cast<QTabBar*>(widget()); }

    /// The interfaces of the tabs, by the tab's number. Each is made when Qt first asks for it.
    mutable std::map<int, QAccessible::Id> tabs_;
};

/// The accessible interface of a form's window, which is a plain QWidget. Qt would give it the role of a
/// container instead of that of a window.
class WindowInterface final : public QAccessibleWidget {
  public:
    explicit WindowInterface(QWidget* window)
        : QAccessibleWidget(window,
                            window->windowType() == Qt::Dialog ? QAccessible::Dialog : QAccessible::Window) {}
};

template <typename Interface, typename Part>
QAccessibleInterface* Make(Part* part) {
    return std::make_unique<Interface>(part).release(); // Qt owns it
}

/// Returns null if Qt's own interface is right for the object.
QAccessibleInterface* MakeInterface(const QString& /*class_name*/, QObject* object) {
    if (auto* line = dynamic_cast<SecretLine*>(object)) {
        return Make<SecretLineInterface>(line);
    }
    if (auto* bar = qobject_cast<QTabBar*>(object)) {
        return Make<TabBarInterface>(bar);
    }
    const bool plain = object->metaObject() == &QWidget::staticMetaObject;
    if (auto* widget = qobject_cast<QWidget*>(object); plain && widget->isWindow()) {
        return Make<WindowInterface>(widget);
    }
    return nullptr;
}

} // namespace

void CorrectAccessibleInterfaces() {
    QAccessible::installFactory(MakeInterface);
}

} // namespace ui
