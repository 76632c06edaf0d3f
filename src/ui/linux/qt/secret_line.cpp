#include "ui/linux/qt/secret_line.h"

#include <memory>

#include <QAccessible>
#include <QAccessibleWidget>

namespace ui {
namespace {

/// Has a name, a role and a state, but neither a value nor the interface for texts; without that Qt reports
/// no typing either.
class SecretLineInterface final : public QAccessibleWidget {
  public:
    explicit SecretLineInterface(SecretLine* line) : QAccessibleWidget(line, QAccessible::EditableText) {}

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.passwordEdit = true;
        return state;
    }
};

QAccessibleInterface* MakeInterface(const QString& /*class_name*/, QObject* object) {
    auto* line = dynamic_cast<SecretLine*>(object);
    return line == nullptr ? nullptr : std::make_unique<SecretLineInterface>(line).release(); // Qt's now
}

} // namespace

void SecretLine::HideFromAssistiveTechnology() {
    QAccessible::installFactory(MakeInterface);
}

} // namespace ui
