#include "app/kit/Accessible.h"

#include <QAccessibleWidget>
#include <QVariant>
#include <QWidget>

namespace tarnovel::app {

namespace {

constexpr const char *roleProperty = "accessibleRole";

class ValueAccessible : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit ValueAccessible(QWidget *widget) : QAccessibleWidget(widget, QAccessible::Slider) {}

    QString text(QAccessible::Text kind) const override
    {
        // A value is one number to the platform; what it cannot hold is read as the description.
        return kind == QAccessible::Value || kind == QAccessible::Description ? speaking()->spoken().text
                                                                              : QAccessibleWidget::text(kind);
    }
    void *interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface *>(this)
                                                   : QAccessibleWidget::interface_cast(type);
    }
    QVariant currentValue() const override { return speaking()->spoken().value; }
    void setCurrentValue(const QVariant &value) override { speaking()->takeSpoken(value.toDouble()); }
    QVariant maximumValue() const override { return speaking()->spoken().high; }
    QVariant minimumValue() const override { return speaking()->spoken().low; }
    QVariant minimumStepSize() const override { return speaking()->spoken().step; }

private:
    Speaking *speaking() const { return dynamic_cast<Speaking *>(widget()); }
};

QAccessibleInterface *make(const QString &, QObject *object)
{
    auto *widget = qobject_cast<QWidget *>(object);
    if (!widget) {
        return nullptr;
    }
    if (dynamic_cast<Speaking *>(widget)) {
        return new ValueAccessible(widget);
    }
    const QVariant role = widget->property(roleProperty);
    return role.isValid() ? new QAccessibleWidget(widget, static_cast<QAccessible::Role>(role.toInt()))
                          : nullptr;
}

} // namespace

void installAccessible()
{
    static const bool once = [] {
        QAccessible::installFactory(make);
        return true;
    }();
    Q_UNUSED(once)
}

void setAccessibleRole(QWidget &widget, QAccessible::Role role)
{
    installAccessible();
    widget.setProperty(roleProperty, static_cast<int>(role));
}

void tellSpoken(QWidget &widget, double value)
{
    QAccessibleValueChangeEvent changed(&widget, value);
    QAccessible::updateAccessibility(&changed);
    QAccessibleEvent described(&widget, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&described);
}

} // namespace tarnovel::app
