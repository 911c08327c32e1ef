#include "qt/accessible_combo.h"

#include <QAccessibleWidget>
#include <QComboBox>
#include <QLineEdit>

namespace dbn::qt {
namespace {

class ComboBoxByField : public QAccessibleWidget {
public:
    explicit ComboBoxByField(QComboBox& combo) : QAccessibleWidget(&combo, QAccessible::ComboBox) {}

    QString text(QAccessible::Text kind) const override {
        const auto& combo = static_cast<const QComboBox&>(*widget());
        if (kind == QAccessible::Value || (kind == QAccessible::Name && Name().isEmpty())) {
            return combo.isEditable() ? combo.lineEdit()->text() : combo.currentText();
        }
        return kind == QAccessible::Name ? Name() : QAccessibleWidget::text(kind);
    }

    QStringList actionNames() const override { return {showMenuAction(), pressAction()}; }

    void doAction(const QString& action) override {
        if (action == showMenuAction() || action == pressAction()) {
            static_cast<QComboBox&>(*widget()).showPopup();
        }
    }

private:
    QString Name() const { return widget()->accessibleName(); }
};

QAccessibleInterface* ComboBoxes(const QString& className, QObject* object) {
    auto* combo = qobject_cast<QComboBox*>(object);
    if (className != QStringLiteral("QComboBox") || combo == nullptr) {
        return nullptr;
    }
    return new ComboBoxByField(*combo);  // owned by the accessibility cache
}

}  // namespace

void NameComboBoxesByField() {
    static const bool installed = [] {
        QAccessible::installFactory(ComboBoxes);
        return true;
    }();
    (void)installed;
}

}  // namespace dbn::qt
