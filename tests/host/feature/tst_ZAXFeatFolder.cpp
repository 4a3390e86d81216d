#include "ZAXFeatFolder.h"

#include "ZAXFeatContainer.h"
#include "ZAXGeoStream.h"
#include "ZAXProbeFeatures.h"

#include <QTest>

/// A folder of a module's own.
class Shelf : public ZAXFeatFolder
{
    Q_OBJECT

public:
    using ZAXFeatFolder::ZAXFeatFolder;
};

class tst_ZAXFeatFolder : public QObject
{
    Q_OBJECT

private slots:
    void isAClassOfTheHost();
    void describesItself();
    void isMadeUnderAParentOrAtTheTop();
    void needsAParentOrADocument();
    void isRecreatedFromItsReference();
    void allowsWhatItsParentAllows_data();
    void allowsWhatItsParentAllows();
    void folderWithinAFolderAsksFurtherUp();
    void allowsAtTheTopWhatNeedsNoCertainParent();
    void isAllowedEverywhere_data();
    void isAllowedEverywhere();
};

void tst_ZAXFeatFolder::isAClassOfTheHost()
{
    QCOMPARE(ZAXGeoContainer::FindType("ZAXFeatFolder"), &ZAXFeatFolder::staticMetaObject);
    ZAXFeatContainer container;
    QVERIFY(qobject_cast<ZAXFeatFolder*>(container.CreateInstance("ZAXFeatFolder", nullptr)));
}

void tst_ZAXFeatFolder::describesItself()
{
    ZAXFeatContainer container;
    const ZAXFeatFolder folder(&container);
    QCOMPARE(folder.GetLabel(), QStringLiteral("Folder"));
    QCOMPARE(ZAXGeoStream::GetCurrentVersion(&ZAXFeatFolder::staticMetaObject), 1);
    QVERIFY(folder.IsUserDeletable());
    QVERIFY(folder.CanUserDuplicate());
}

void tst_ZAXFeatFolder::isMadeUnderAParentOrAtTheTop()
{
    ZAXFeatContainer container;
    auto* const top = new ZAXFeatFolder(&container);
    auto* const byParent = new ZAXFeatFolder(top);
    auto* const byBoth = new ZAXFeatFolder(&container, top);
    auto* const topByBoth = new ZAXFeatFolder(&container, nullptr);
    QCOMPARE(top->GetChildren(), QList<ZAXFeatObject*>({byParent, byBoth}));
    QCOMPARE(container.GetRoots(), QList<ZAXFeatObject*>({top, topByBoth}));
    QCOMPARE(byParent->GetContainer(), &container);
}

void tst_ZAXFeatFolder::needsAParentOrADocument()
{
    QCOMPARE(MessageOf([] { const ZAXFeatFolder folder(static_cast<ZAXFeatObject*>(nullptr)); }),
             QStringLiteral("A folder needs a parent, or a document to stand at the top of."));
}

void tst_ZAXFeatFolder::isRecreatedFromItsReference()
{
    ZAXFeatContainer container;
    const ZAXFeatFolder folder(static_cast<ZAXGeoContainer*>(&container), ZAXGeoGeometryRef::FromId(30));
    QCOMPARE(folder.GetId(), quint64(30));
    QCOMPARE(container.GetGeometryByRef(ZAXGeoGeometryRef::FromId(30)), &folder);
}

void tst_ZAXFeatFolder::allowsWhatItsParentAllows_data()
{
    QTest::addColumn<bool>("isInRoot");
    QTest::addColumn<const QMetaObject*>("type");
    QTest::addColumn<bool>("isAllowed");
    QTest::newRow("part in a part") << false << &ZAXProbePart::staticMetaObject << true;
    QTest::newRow("leaf in a part") << false << &ZAXProbeLeaf::staticMetaObject << true;
    QTest::newRow("root in a part") << false << &ZAXProbeRoot::staticMetaObject << false;
    QTest::newRow("folder in a part") << false << &ZAXFeatFolder::staticMetaObject << true;
    QTest::newRow("part in a root") << true << &ZAXProbePart::staticMetaObject << true;
    QTest::newRow("kind of part in a root") << true << &ZAXProbeSpecialPart::staticMetaObject << true;
    QTest::newRow("leaf in a root") << true << &ZAXProbeLeaf::staticMetaObject << false;
    QTest::newRow("folder in a root") << true << &ZAXFeatFolder::staticMetaObject << true;
}

void tst_ZAXFeatFolder::allowsWhatItsParentAllows()
{
    QFETCH(bool, isInRoot);
    QFETCH(const QMetaObject*, type);
    QFETCH(bool, isAllowed);
    ZAXFeatContainer container;
    ZAXFeatObject* const parts[] = {AddPart(container, "part"), new ZAXProbeRoot(&container)};
    const ZAXFeatObject* const parent = parts[isInRoot];
    auto* const folder = new ZAXFeatFolder(parts[isInRoot]);
    QCOMPARE(folder->IsChildAllowed(type), isAllowed);
    QCOMPARE(parent->IsChildAllowed(type), isAllowed);
}

void tst_ZAXFeatFolder::folderWithinAFolderAsksFurtherUp()
{
    ZAXFeatContainer container;
    auto* const root = new ZAXProbeRoot(&container);
    auto* const inner = new ZAXFeatFolder(new ZAXFeatFolder(root));
    QVERIFY(inner->IsChildAllowed(&ZAXProbePart::staticMetaObject));
    QVERIFY(!inner->IsChildAllowed(&ZAXProbeLeaf::staticMetaObject));
}

void tst_ZAXFeatFolder::allowsAtTheTopWhatNeedsNoCertainParent()
{
    ZAXFeatContainer container;
    const auto* const folder = new ZAXFeatFolder(&container);
    QVERIFY(folder->IsChildAllowed(&ZAXProbePart::staticMetaObject));
    QVERIFY(folder->IsChildAllowed(&ZAXFeatFolder::staticMetaObject));
    QVERIFY(!folder->IsChildAllowed(&ZAXProbeLeaf::staticMetaObject));
    QVERIFY(!folder->IsChildAllowed(&ZAXProbeRoot::staticMetaObject));
}

void tst_ZAXFeatFolder::isAllowedEverywhere_data()
{
    QTest::addColumn<const QMetaObject*>("folder");
    QTest::newRow("folder") << &ZAXFeatFolder::staticMetaObject;
    QTest::newRow("kind of folder") << &Shelf::staticMetaObject;
}

void tst_ZAXFeatFolder::isAllowedEverywhere()
{
    QFETCH(const QMetaObject*, folder);
    ZAXFeatContainer container;
    ZAXProbePart* const part = AddPart(container, "part");
    QVERIFY(part->IsChildAllowed(folder));
    QVERIFY(ZAXProbeLeaf(part).IsChildAllowed(folder));
    QVERIFY(ZAXProbeRoot(&container).IsChildAllowed(folder));
    QVERIFY(ZAXFeatObject::IsValidParent(&ZAXProbeLeaf::staticMetaObject, folder, {}));
}

QTEST_GUILESS_MAIN(tst_ZAXFeatFolder)
#include "tst_ZAXFeatFolder.moc"
