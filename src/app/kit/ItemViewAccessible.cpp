#include "app/kit/ItemViewAccessible.h"

#include <map>
#include <memory>

#include <QAccessible>
#include <QAccessibleWidget>
#include <QPointer>

#include "app/kit/ItemView.h"

namespace tarnovel::app {

namespace {

class ItemAccessible : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    ItemAccessible(ItemView *items, int index) : m_items(items), m_index(index) {}

    bool isValid() const override { return m_items && m_index < m_items->count(); }
    QObject *object() const override { return nullptr; }
    QWindow *window() const override { return m_items ? m_items->window()->windowHandle() : nullptr; }
    QAccessibleInterface *parent() const override { return QAccessible::queryAccessibleInterface(m_items); }
    QAccessibleInterface *child(int) const override { return nullptr; }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Name && isValid() ? m_items->itemName(m_index) : QString();
    }
    void setText(QAccessible::Text, const QString &) override {}
    QAccessible::Role role() const override { return QAccessible::ListItem; }
    QRect rect() const override
    {
        const QRect item = isValid() ? m_items->itemRect(m_index) : QRect();
        return isValid() ? QRect(m_items->mapToGlobal(item.topLeft()), item.size()) : QRect();
    }
    QAccessible::State state() const override
    {
        QAccessible::State state;
        if (!isValid()) {
            state.invalid = true;
            return state;
        }
        state.selectable = true;
        state.focusable = true;
        state.selected = m_items->itemChosen(m_index);
        state.disabled = !m_items->itemEnabled(m_index);
        state.focused = m_items->hasFocus() && m_items->cursor() == m_index;
        return state;
    }
    void *interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface *>(this)
                                                    : nullptr;
    }
    QStringList actionNames() const override { return {pressAction()}; }
    void doAction(const QString &) override
    {
        if (isValid()) {
            m_items->choose(m_index);
        }
    }
    QStringList keyBindingsForAction(const QString &) const override { return {}; }

private:
    QPointer<ItemView> m_items;
    int m_index;
};

class ItemViewAccessible : public QAccessibleWidget {
public:
    explicit ItemViewAccessible(ItemView *items) : QAccessibleWidget(items, QAccessible::List) {}
    ~ItemViewAccessible() override
    {
        for (const auto &[index, id] : m_children) {
            QAccessible::deleteAccessibleInterface(id);
        }
    }
    ItemViewAccessible(const ItemViewAccessible &) = delete;
    ItemViewAccessible &operator=(const ItemViewAccessible &) = delete;

    int childCount() const override { return items() ? items()->count() : 0; }
    QAccessibleInterface *child(int index) const override
    {
        if (index < 0 || index >= childCount()) {
            return nullptr;
        }
        const auto known = m_children.find(index);
        if (known != m_children.end()) {
            return QAccessible::accessibleInterface(known->second);
        }
        auto made = std::make_unique<ItemAccessible>(items(), index);
        m_children[index] = QAccessible::registerAccessibleInterface(made.get());
        return made.release();
    }
    int indexOfChild(const QAccessibleInterface *wanted) const override
    {
        for (const auto &[index, id] : m_children) {
            if (QAccessible::accessibleInterface(id) == wanted) {
                return index;
            }
        }
        return -1;
    }
    QAccessibleInterface *childAt(int x, int y) const override
    {
        return items() ? child(items()->itemAt(items()->mapFromGlobal(QPoint(x, y)))) : nullptr;
    }

private:
    ItemView *items() const { return static_cast<ItemView *>(object()); }
    mutable std::map<int, QAccessible::Id> m_children;
};

QAccessibleInterface *make(const QString &, QObject *object)
{
    auto *items = qobject_cast<ItemView *>(object);
    return items ? new ItemViewAccessible(items) : nullptr;
}

} // namespace

void installItemViewAccessible()
{
    static const bool once = [] {
        QAccessible::installFactory(make);
        return true;
    }();
    Q_UNUSED(once)
}

} // namespace tarnovel::app
