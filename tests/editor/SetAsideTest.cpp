#include "editor/EditorWorld.h"

#include "editor/SetAsideDocuments.h"

using namespace Qt::StringLiterals;

namespace tarnovel::test {
namespace {

/// A library with two photos in a document that was set aside.
class SetAside : public EditorWorld {
protected:
    QList<PhotoItem> m_photos = photos(2);
    SetAsideDocuments m_documents{m_library};

    void SetUp() override
    {
        Session session;
        session.photos = m_photos;
        session.presets.append({QUuid::createUuid(), u"Mine"_s, {}, 1});
        QFile file(m_library + u"/session-damaged-20260101-120000.json"_s);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(writeSession(session));
        file.close();
        m_documents.readFolder();
        ASSERT_EQ(m_documents.all().size(), 1);
    }
};

TEST_F(SetAside, BringsOnlyWhatTheSessionHasNot)
{
    Session session;
    EXPECT_EQ(m_documents.missingFrom(session, m_documents.all().first()).session.photos, m_photos);
    session.photos = {m_photos.first()};
    // The same file under another name of the record's is the same photo.
    session.photos.first().id = QUuid::createUuid();
    const SalvagedSession missing = m_documents.missingFrom(session, m_documents.all().first());
    EXPECT_EQ(missing.session.photos, QList<PhotoItem>{m_photos.last()});
    EXPECT_EQ(missing.session.presets.size(), 1);
    EXPECT_EQ(missing.known, 1);
}

TEST_F(SetAside, GoesOnlyWhenTheSessionSaysAllOfIt)
{
    EXPECT_TRUE(m_documents.neededFiles().contains(u"1.jpg"_s));
    Session session = m_documents.missingFrom({}, m_documents.all().first()).session;
    const PhotoItem last = session.photos.takeLast();
    EXPECT_TRUE(m_documents.removeKnown(session).empty());
    EXPECT_EQ(m_documents.all().size(), 1);
    session.photos.append(last);
    EXPECT_TRUE(m_documents.removeKnown(session).contains(u"1.jpg"_s)) << "a clean-up may look at it again";
    EXPECT_TRUE(m_documents.all().isEmpty());
    EXPECT_TRUE(m_documents.neededFiles().empty());
    EXPECT_FALSE(m_documents.remove(m_library + u"/gone.json"_s));
}

} // namespace
} // namespace tarnovel::test
