#include "ZAXFeatRoot.h"

#include "ZAXFeatContainer.h"
#include "ZAXGeoStream.h"
#include "ZAXProbeFeatures.h"

#include <QTest>

static_assert(std::is_base_of_v<ZAXFeatFolder, ZAXFeatRoot>);

class tst_ZAXFeatRoot : public QObject
{
    Q_OBJECT

private slots:
    void standsAtTheTop();
    void describesItself();
    void userCanNeitherMoveNorDeleteNorDuplicateIt();
    void isNoChildOfAnything();
    void allowsFoldersAndWhatDoesNotForbidIt();
    void fallbackIsTheFirstFolderUnderIt();
    void fallbackIsTheRootWithoutFolders();
    void isBroughtBackFromItsState();
    void isRecreatedFromItsReference();
};

void tst_ZAXFeatRoot::standsAtTheTop()
{
    ZAXFeatContainer container;
    auto* const root = new ZAXFeatRoot(&container);
    QVERIFY(!root->GetParent());
    QCOMPARE(container.GetRoots(), QList<ZAXFeatObject*>{root});
}

void tst_ZAXFeatRoot::describesItself()
{
    ZAXFeatContainer container;
    QCOMPARE(ZAXFeatRoot(&container).GetLabel(), QStringLiteral("Root"));
    QCOMPARE(ZAXProbeRoot(&container).GetLabel(), QStringLiteral("Probes"));
}

void tst_ZAXFeatRoot::userCanNeitherMoveNorDeleteNorDuplicateIt()
{
    ZAXFeatContainer container;
    const ZAXFeatRoot root(&container);
    QVERIFY(!root.IsUserDeletable());
    QCOMPARE(root.GetAllowedMoveActions(), ZAXFeatObject::MoveActions(ZAXFeatObject::NoMove));
    QVERIFY(!root.CanUserDuplicate());
}

void tst_ZAXFeatRoot::isNoChildOfAnything()
{
    ZAXFeatContainer container;
    const auto* const root = new ZAXFeatRoot(&container);
    QVERIFY(!root->IsChildAllowed(&ZAXFeatRoot::staticMetaObject));
    QVERIFY(!AddPart(container, "part")->IsChildAllowed(&ZAXFeatRoot::staticMetaObject));
    QVERIFY(!AddPart(container, "part")->IsChildAllowed(&ZAXProbeRoot::staticMetaObject));
}

void tst_ZAXFeatRoot::allowsFoldersAndWhatDoesNotForbidIt()
{
    ZAXFeatContainer container;
    const auto* const root = new ZAXFeatRoot(&container);
    QVERIFY(root->IsChildAllowed(&ZAXFeatFolder::staticMetaObject));
    QVERIFY(root->IsChildAllowed(&ZAXProbePart::staticMetaObject));
    QVERIFY(!root->IsChildAllowed(&ZAXProbeLeaf::staticMetaObject));
    QVERIFY(!root->IsChildAllowed(&QObject::staticMetaObject));
}

void tst_ZAXFeatRoot::fallbackIsTheFirstFolderUnderIt()
{
    ZAXFeatContainer container;
    auto* const root = new ZAXFeatRoot(&container);
    ZAXProbePart* const part = AddPart(root, "part");
    new ZAXFeatFolder(part);
    auto* const first = new ZAXFeatFolder(root);
    new ZAXFeatFolder(root);
    QCOMPARE(root->GetFallbackDefaultFolder(), first);
}

void tst_ZAXFeatRoot::fallbackIsTheRootWithoutFolders()
{
    ZAXFeatContainer container;
    auto* const root = new ZAXFeatRoot(&container);
    QCOMPARE(root->GetFallbackDefaultFolder(), root);
    new ZAXFeatFolder(AddPart(root, "part"));
    QCOMPARE(root->GetFallbackDefaultFolder(), root);
}

void tst_ZAXFeatRoot::isBroughtBackFromItsState()
{
    ZAXFeatContainer container;
    ZAXFeatRoot root(&container);
    root.SetLabel(QStringLiteral("Job"));
    const QByteArray state = root.GetCurrentState();
    root.SetLabel(QString());
    root.SetCurrentState(state);
    QCOMPARE(root.GetLabel(), QStringLiteral("Job"));
}

void tst_ZAXFeatRoot::isRecreatedFromItsReference()
{
    ZAXFeatContainer container;
    const ZAXFeatRoot root(ZAXGeoGeometryRef::FromId(30), &container);
    QCOMPARE(container.GetGeometryByRef(ZAXGeoGeometryRef::FromId(30)), &root);
}

QTEST_GUILESS_MAIN(tst_ZAXFeatRoot)
#include "tst_ZAXFeatRoot.moc"
