#include <QAbstractButton>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>

#include "app/Kit.h"
#include "app/export/ExportForm.h"
#include "app/export/SizeChoice.h"
#include "app/kit/Segments.h"
#include "editor/EditorWorld.h"

using namespace Qt::StringLiterals;

namespace tarnovel::test {
namespace {

using namespace app;

/// The choices of an export without the panel around them.
class Form : public EditorWorld {
protected:
    EditorModel m_model{m_services, EditorModel::Load::Empty};
    ExportForm m_form{m_model, m_preferences};

    ItemView *row(const QString &name) const { return m_form.findChild<ItemView *>(name); }
};

TEST_F(Form, EachChoiceIsToldAndKept)
{
    QSignalSpy changed(&m_form, &ExportForm::changed);
    row(u"which"_s)->choose(1);
    EXPECT_FALSE(m_form.choices().all);
    row(u"format"_s)->choose(1);
    EXPECT_TRUE(m_form.choices().png);
    row(u"format"_s)->choose(0);
    row(u"limit"_s)->choose(2);
    EXPECT_EQ(m_form.choices().maxMB, ExportTexts::limits().at(2).value);
    row(u"sizes"_s)->choose(0);
    EXPECT_EQ(m_form.choices().resolution, ExportTexts::sizes().at(0).value);
    EXPECT_EQ(changed.size(), 5);
    const ExportForm next(m_model, m_preferences);
    EXPECT_EQ(next.choices().maxMB, m_form.choices().maxMB);
    EXPECT_EQ(next.choices().resolution, m_form.choices().resolution);
}

TEST_F(Form, APngHasNoLimitAndARunUnderWayNoChoice)
{
    EXPECT_TRUE(row(u"limit"_s)->isEnabled());
    row(u"format"_s)->choose(1);
    EXPECT_FALSE(row(u"limit"_s)->isEnabled());
    m_form.setBusy(true);
    for (const QString &name : {u"destination"_s, u"which"_s, u"sizes"_s, u"format"_s, u"limit"_s}) {
        EXPECT_FALSE(row(name)->isEnabled()) << name.toStdString();
    }
    m_form.refresh();
    EXPECT_FALSE(row(u"which"_s)->isEnabled()) << "a change of the session ends no run";
    m_form.setBusy(false);
    EXPECT_TRUE(row(u"which"_s)->isEnabled());
    EXPECT_FALSE(row(u"limit"_s)->isEnabled()) << "it still is a PNG";
}

TEST_F(Form, ANameIsKeptUnlessItCannotBeRead)
{
    auto *name = m_form.findChild<QLineEdit *>(u"namePattern"_s);
    name->clear();
    QTest::keyClicks(name, u"/{n:3} {name"_s);
    EXPECT_EQ(m_form.choices().name, u"{n:3} "_s) << "what is faulty is not taken, and no slash is typed";
    QTest::keyClicks(name, u"}"_s);
    EXPECT_EQ(m_form.choices().name, u"{n:3} {name}"_s);
    m_form.findChild<QAbstractButton *>(u"{camera}"_s)->click();
    EXPECT_EQ(ExportForm(m_model, m_preferences).choices().name, u"{n:3} {name}{camera}"_s);
    name->setText(u"my-{foo}"_s);
    QTest::keyClick(name, Qt::Key_Return);
    EXPECT_EQ(name->text(), u"my-{foo}"_s) << "what is faulty stays to be mended";
    name->clear();
    QTest::keyClick(name, Qt::Key_Return);
    EXPECT_EQ(name->text(), u"{name}-framed"_s);
    EXPECT_EQ(m_form.choices().name, QString());
    m_form.setBusy(true);
    EXPECT_FALSE(name->isEnabled());
}

TEST_F(Form, ThePhotoLibrarysChoicesAreForgotten)
{
    row(u"limit"_s)->choose(1);
    row(u"destination"_s)->choose(1);
    EXPECT_TRUE(m_form.toLibrary());
    EXPECT_EQ(m_form.choices().maxMB, ExportChoices::forSheet().maxMB);
    row(u"format"_s)->choose(1);
    m_form.reset();
    EXPECT_FALSE(m_form.toLibrary());
    EXPECT_FALSE(m_form.choices().png);
    EXPECT_EQ(m_form.choices().maxMB, ExportTexts::limits().at(1).value);
}

} // namespace
} // namespace tarnovel::test
