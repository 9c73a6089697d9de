#pragma once

#include <optional>

#include <QPushButton>

#include "app/kit/Phrase.h"

namespace tarnovel::app {

/// A button with an icon, a text, or both. The text follows the language; a button without one says it in its
/// tooltip, with the key.
class Button : public QPushButton {
    Q_OBJECT

public:
    enum class Kind {
        /// The one thing to do on a screen.
        Primary,
        Secondary,
        /// Shows its fill under the pointer only.
        Ghost,
        Danger,
        DangerGhost,
        /// A tinted text, as for adding a row.
        Link,
    };
    enum class Face { Text, IconOnly };

    Button(Kind kind, Phrase phrase, const char *icon = nullptr, Face face = Face::Text,
           QWidget *parent = nullptr);

    void setPhrase(Phrase phrase);
    void setIconName(const char *icon);
    /// The tooltip of a button whose text does not say all.
    void setHint(Phrase hint);
    /// Shown after the text, or in the tooltip; the key itself belongs to an action.
    void setKeyHint(const QString &key);
    /// 28, 32 or 40 pixels high.
    void setHeight(int height);
    void setIconSizePx(int size);
    /// A turning ring instead of the icon, for work under way.
    void setBusy(bool busy);
    /// Asks for the texts again.
    void refresh();

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void changeEvent(QEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void timerEvent(QTimerEvent *event) override;

private:
    struct Colors {
        QColor fill;
        QColor text;
    };
    Colors colors() const;
    int padding() const;
    QString tip() const;

    Kind m_kind;
    Face m_face;
    Phrase m_phrase;
    Phrase m_hint;
    const char *m_icon;
    QString m_key;
    int m_height = 32;
    int m_iconSize = 20;
    bool m_hovered = false;
    std::optional<int> m_spin;
    int m_angle = 0;
};

} // namespace tarnovel::app
