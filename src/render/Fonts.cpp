#include "render/Fonts.h"

#include <map>
#include <mutex>
#include <set>
#include <tuple>
#include <vector>

#include <QFontDatabase>
#include <QLoggingCategory>
#include <QSet>

#include "language/AppLanguage.h"

using namespace Qt::StringLiterals;

namespace tarnovel::Fonts {

namespace {

// Not one of the log, which a person does not see: this one is for whoever can install the package.
Q_LOGGING_CATEGORY(fonts, "fonts")

struct Family {
    QString name;
    QString package;
};

struct Role {
    std::vector<Family> families;
    /// What fontconfig calls the kind.
    QString generic;
    QFont::StyleHint hint = QFont::SansSerif;
};

Family emoji()
{
    return {u"Noto Color Emoji"_s, u"fonts-noto-color-emoji"_s};
}

Role role(const QString &fontStyle, Cut cut, QFont::Weight weight)
{
    const Family chineseSans{u"Noto Sans CJK SC"_s, u"fonts-noto-cjk"_s};
    if (fontStyle == u"serif"_s) {
        return {{{u"Noto Serif"_s, u"fonts-noto-core"_s}, {u"Noto Serif CJK SC"_s, u"fonts-noto-cjk"_s}},
                u"serif"_s,
                QFont::Serif};
    }
    if (fontStyle == u"rounded"_s) {
        // The regular weight is too thin beside Chinese of the same size.
        return {{{weight > QFont::Medium ? u"Quicksand"_s : u"Quicksand Medium"_s, u"fonts-quicksand"_s},
                 chineseSans},
                u"sans-serif"_s,
                QFont::SansSerif};
    }
    if (fontStyle == u"mono"_s) {
        return {{{u"JetBrains Mono"_s, u"fonts-jetbrains-mono"_s},
                 {u"Noto Sans Mono CJK SC"_s, u"fonts-noto-cjk"_s}},
                u"monospace"_s,
                QFont::Monospace};
    }
    if (fontStyle == u"handwritten"_s) {
        return {{{u"Comic Neue"_s, u"fonts-comic-neue"_s}, {u"LXGW WenKai"_s, u"fonts-lxgw-wenkai"_s}},
                u"cursive"_s,
                QFont::Cursive};
    }
    return {{{cut == Cut::Display ? u"Inter Display"_s : u"Inter"_s, u"fonts-inter"_s}, chineseSans},
            u"sans-serif"_s,
            QFont::SansSerif};
}

/// One line for each package that is missing, however many texts ask for it.
void warnOnce(const QStringList &packages)
{
    static std::mutex mutex;
    static std::set<QString> told;
    for (const QString &package : packages) {
        const std::lock_guard lock(mutex);
        if (told.insert(package).second) {
            qCWarning(fonts).noquote()
                << localized({"缺少字体，文字会换用其他字体。请安装软件包 ",
                              "A font is missing, and texts look different. Install the package ",
                              "Une police manque et les textes changent d’aspect. Installez le paquet "}) +
                       package;
        }
    }
}

/// Each question to the system goes through all that there is: it is asked once.
bool isInstalled(const QString &family)
{
    static const QSet<QString> families = [] {
        QSet<QString> names;
        for (const QString &name : QFontDatabase::families()) {
            names.insert(name.section(u" ["_s, 0, 0).toCaseFolded()); // without the maker
        }
        return names;
    }();
    return families.contains(family.toCaseFolded());
}

/// The choice for a role, made once: what is installed is asked of the system.
QStringList installedFamilies(const QString &fontStyle, Cut cut, QFont::Weight weight)
{
    static std::mutex mutex;
    static std::map<std::tuple<QString, Cut, int>, QStringList> known;
    const std::lock_guard lock(mutex);
    const auto [place, isNew] = known.try_emplace({fontStyle, cut, weight});
    if (isNew) {
        const Choice made = choose(fontStyle, cut, weight, isInstalled);
        warnOnce(made.missingPackages);
        place->second = made.families;
    }
    return place->second;
}

} // namespace

QString emojiFamily()
{
    if (!isInstalled(emoji().name)) {
        warnOnce({emoji().package});
    }
    return emoji().name;
}

Choice choose(const QString &fontStyle, Cut cut, QFont::Weight weight,
              const std::function<bool(const QString &)> &isThere)
{
    const Role wanted = role(fontStyle, cut, weight);
    Choice made;
    for (const Family &family : wanted.families) {
        if (isThere(family.name)) {
            made.families.append(family.name);
        } else if (!made.missingPackages.contains(family.package)) {
            made.missingPackages.append(family.package);
        }
    }
    if (!made.missingPackages.isEmpty()) {
        made.families.append(wanted.generic);
    }
    // Last, for its pictures have digits of their own. Few texts need it: those ask for it themselves.
    if (isThere(emoji().name)) {
        made.families.append(emoji().name);
    }
    return made;
}

QFont face(const std::optional<QString> &fontStyle, QFont::Weight weight, int pixelSize, Cut cut)
{
    const QString style = fontStyle.value_or(QString());
    QFont font(installedFamilies(style, cut, weight));
    font.setPixelSize(pixelSize);
    font.setWeight(weight);
    font.setStyleHint(role(style, cut, weight).hint);
    font.setHintingPreference(QFont::PreferNoHinting);
    font.setStyleStrategy(QFont::PreferOutline);
    return font;
}

} // namespace tarnovel::Fonts
