#pragma once

#include <QLineEdit>
#include <QPointer>

#include "app/kit/Phrase.h"

namespace tarnovel::app {

/// A number with its unit ("4.0 %") as the language writes it.
QString asWritten(QString number);

/// A line of text to type in.
class Field : public QLineEdit {
    Q_OBJECT

public:
    /// `name` is what a screen reader calls it.
    explicit Field(Phrase name, QWidget *parent = nullptr);

    void setPlaceholder(Phrase placeholder);
    /// A short text before the value, such as "X" or "#".
    void setPrefix(const QString &prefix);
    void setIconName(const char *icon);
    /// A red border: what stands there cannot be used.
    void setFault(bool fault);
    /// Enter and Esc give the keyboard back to where it came from, so that the window's own keys work again.
    void setGivesKeyboardBack(bool gives) { m_givesBack = gives; }
    /// Shows a value unless the user is typing one; nobody is told.
    void display(const QString &text);

    QSize sizeHint() const override { return {120, m_height}; }
    QSize minimumSizeHint() const override { return {40, m_height}; }
    void setHeight(int height);

protected:
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    bool event(QEvent *event) override;
    void giveKeyboardBack();

private:
    void layoutMargins();
    bool isForOthers(const QKeyEvent &key) const;

    Phrase m_name;
    Phrase m_placeholder;
    QString m_prefix;
    const char *m_icon = nullptr;
    bool m_fault = false;
    bool m_givesBack = false;
    /// Who had the keyboard before.
    QPointer<QWidget> m_before;
    int m_height = 32;
};

/// A number to type in, with its unit. Enter or leaving takes it, Esc brings the old one back, and the arrows
/// step. After Enter and Esc the keyboard is back where it was.
class NumberField : public Field {
    Q_OBJECT

public:
    struct Range {
        double low = 0;
        double high = 100;
        double step = 1;
        /// Negative: as many as the value needs, two at most.
        int decimals = 0;
        /// After the number, with its space: " %", "°".
        QString unit = {};
    };

    NumberField(Phrase name, Range range, QWidget *parent = nullptr);

    double value() const { return m_value; }
    /// Nobody is told.
    void setValue(double value);
    void setRange(const Range &range);
    QString textOf(double value) const;

Q_SIGNALS:
    void valueTyped(double value);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void take();
    void step(double by);

    Range m_range;
    double m_value = 0;
};

} // namespace tarnovel::app
