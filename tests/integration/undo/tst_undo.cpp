#include "ZAXFeatContainer.h"
#include "ZAXFeatFolder.h"
#include "ZAXFeatLastSavedStore.h"
#include "ZAXHostClipboard.h"
#include "ZAXHostDocument.h"
#include "ZAXHostDuplicator.h"
#include "ZAXHostTransaction.h"
#include "ZAXHostUndo.h"
#include "ZAXMatMaterial.h"
#include "ZAXMatMaterialExtension.h"
#include "ZAXMatPackaging.h"
#include "ZAXMatRoot.h"
#include "ZAXSysException.h"
#include "ZAXSysStartup.h"

#include <QPointer>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QUndoStack>

// Undo and redo with the library's own features: what a planner takes back is back, links and all.

namespace {

/// An extension that a test can refer to.
class TestExtension : public ZAXMatMaterialExtension
{
    Q_OBJECT

public:
    Q_INVOKABLE TestExtension(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
        : ZAXMatMaterialExtension(container, reference)
    {
    }
    Q_INVOKABLE explicit TestExtension(ZAXFeatObject* parent)
        : ZAXMatMaterialExtension(qobject_cast<ZAXMatMaterial*>(parent))
    {
    }
    QString GetExtensionLabel() const override { return QLatin1String("Test"); }
};

} // namespace

class tst_undo : public QObject
{
    Q_OBJECT

private:
    ZAXMatMaterial* AddMaterial()
    {
        return qobject_cast<ZAXMatMaterial*>(document->GetContainer()->CreateInstance("ZAXMatMaterial", root));
    }
    QUndoStack& Stack() { return *document->GetUndo().GetStack(); }

    std::unique_ptr<ZAXHostDocument> document;
    ZAXMatRoot* root = nullptr;

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void settingAPropertyIsOneStep();
    void settingTheSameValueIsNoStep();
    void visibilityIsOneStep();
    void creatingIsOneStep();
    void makingAMaterialIsOneStep();
    void slotMayRemoveANewMaterial_data();
    void slotMayRemoveANewMaterial();
    void slotMayRemoveTheDefaultPackaging_data();
    void slotMayRemoveTheDefaultPackaging();
    void extensionIsCreatedAndListedInOneStep();
    void defaultPackagingIsOneStep();
    void removedMaterialComesBackAtItsAddress();
    void removedExtensionComesBackIntoItsList();
    void movingIsOneStep();
    void duplicatingIsOneStep();
    void labelIsOneStep();
    void restoringLeavesLastSavedValuesAlone();
    void restoringRaisesTheSignals();

    void transactionIsOneStep();
    void transactionRollsBackUnlessCommitted();
    void exceptionInATransactionLeavesEverythingAsItWas();
    void transactionWithoutAChangeIsDropped();
    void changesOfSlotsJoinTheTransaction();
    void secondTransactionIsRefused();
    void slotOfAChangeIsRefused();
    void slotOfTheStackIsRefusedDuringAPush();
    void whatSlotsChangeDuringUndoIsTakenBack();

    void newStepFreesTheRedoBranch();
    void clearFreesWhatWaitsAside();
    void clearDoesNotMakeChangesSaved_data();
    void clearDoesNotMakeChangesSaved();
    void whatWasRemovedIsNeitherDuplicatedNorBuiltUpon();
    void undoLimitFreesWhatNobodyCanBringBack();
    void modifiedFollowsTheCleanMark();

    void randomOperationsAreTakenBackAndDoneAgain_data();
    void randomOperationsAreTakenBackAndDoneAgain();
};

void tst_undo::initTestCase()
{
    ZAXSysStartup::Start();
    ZAXGeoContainer::RegisterType(&TestExtension::staticMetaObject);
}

void tst_undo::init()
{
    ZAXFeatLastSavedStore::SetCurrent(nullptr);
    document = std::make_unique<ZAXHostDocument>();
    root = qobject_cast<ZAXMatRoot*>(document->GetContainer()->CreateInstance("ZAXMatRoot", nullptr));
    QVERIFY(document->GetUndo().Clear());
    Stack().setClean();
}

void tst_undo::cleanup()
{
    document.reset();
}

void tst_undo::settingAPropertyIsOneStep()
{
    auto* const material = AddMaterial();
    const QByteArray before = document->Encode();
    const int count = Stack().count();
    material->SetThickness(3.0);
    QCOMPARE(Stack().count(), count + 1);
    const QByteArray after = document->Encode();
    QVERIFY(document->GetUndo().Undo());
    QCOMPARE(document->Encode(), before);
    QCOMPARE(material->GetThickness(), 0.5);
    QVERIFY(document->GetUndo().Redo());
    QCOMPARE(document->Encode(), after);
    QCOMPARE(material->GetThickness(), 3.0);
}

void tst_undo::settingTheSameValueIsNoStep()
{
    auto* const material = AddMaterial();
    const int count = Stack().count();
    material->SetThickness(material->GetThickness());
    material->SetComment(QString());
    QCOMPARE(Stack().count(), count);
}

void tst_undo::visibilityIsOneStep()
{
    auto* const material = AddMaterial();
    QSignalSpy changed(material, &ZAXFeatObject::VisibilityChanged);
    const int count = Stack().count();
    material->SetVisibility(false);
    QCOMPARE(Stack().count(), count + 1);
    QVERIFY(document->GetUndo().Undo());
    QVERIFY(material->IsVisible());
    QCOMPARE(changed.size(), 2);
}

void tst_undo::creatingIsOneStep()
{
    const QByteArray before = document->Encode();
    QSignalSpy removed(root, &ZAXMatRoot::MaterialRemoved);
    QSignalSpy added(root, &ZAXMatRoot::MaterialAdded);
    const QPointer<ZAXMatMaterial> material = AddMaterial();
    QCOMPARE(Stack().count(), 1);
    QCOMPARE(Stack().undoText(), QLatin1String("Create Material"));
    const QByteArray after = document->Encode();

    QVERIFY(document->GetUndo().Undo());
    QCOMPARE(document->Encode(), before);
    QVERIFY(material);
    QCOMPARE(removed.size(), 1);
    QVERIFY(!document->GetContainer()->GetGeometryByRef(ZAXGeoGeometryRef(material)));

    QVERIFY(document->GetUndo().Redo());
    QCOMPARE(document->Encode(), after);
    QCOMPARE(added.size(), 2);
    QCOMPARE(root->GetMaterials(), QList<ZAXMatMaterial*>{material});
    QCOMPARE(document->GetContainer()->GetGeometryByRef(ZAXGeoGeometryRef(material)), material.data());
}

void tst_undo::makingAMaterialIsOneStep()
{
    const QByteArray before = document->Encode();
    // As a class of a module makes one itself.
    auto* const material =
        qobject_cast<ZAXMatMaterial*>(ZAXMatMaterial::staticMetaObject.newInstance(Q_ARG(ZAXFeatObject*, root)));
    material->Initialize();
    QCOMPARE(Stack().count(), 1);
    QCOMPARE(Stack().undoText(), QLatin1String("Create Material"));
    const QByteArray after = document->Encode();
    QVERIFY(document->GetUndo().Undo());
    QCOMPARE(document->Encode(), before);
    QVERIFY(document->GetUndo().Redo());
    QCOMPARE(document->Encode(), after);
}

void tst_undo::slotMayRemoveANewMaterial_data()
{
    QTest::addColumn<bool>("hasUndo");
    QTest::newRow("with undo") << true;
    QTest::newRow("without undo") << false;
}

void tst_undo::slotMayRemoveANewMaterial()
{
    QFETCH(bool, hasUndo);
    if (!hasUndo)
        document->GetUndo().SetContainer(nullptr);
    connect(root, &ZAXFeatObject::ChildAdded, root, [](ZAXFeatObject* child) { child->Remove(); });
    const QPointer<ZAXMatMaterial> material =
        qobject_cast<ZAXMatMaterial*>(ZAXMatMaterial::staticMetaObject.newInstance(Q_ARG(ZAXFeatObject*, root)));
    material->Initialize();
    QVERIFY(material);
    QVERIFY(root->GetMaterials().isEmpty());
    QCOMPARE(Stack().count(), 0);
    QCoreApplication::processEvents();
    QVERIFY(!material);
}

void tst_undo::slotMayRemoveTheDefaultPackaging_data()
{
    slotMayRemoveANewMaterial_data();
}

void tst_undo::slotMayRemoveTheDefaultPackaging()
{
    QFETCH(bool, hasUndo);
    if (!hasUndo)
        document->GetUndo().SetContainer(nullptr);
    auto* const material = AddMaterial();
    connect(material, &ZAXFeatObject::ChildAdded, root, [](ZAXFeatObject* child) { child->Remove(); });
    QVERIFY(!material->CreateDefaultPackaging());
    QVERIFY(material->GetPackaging().isEmpty());
}

void tst_undo::extensionIsCreatedAndListedInOneStep()
{
    auto* const material = AddMaterial();
    const QByteArray before = document->Encode();
    const int count = Stack().count();
    auto* const extension = material->GetExtension("TestExtension", true);
    QCOMPARE(Stack().count(), count + 1);
    QVERIFY(document->GetUndo().Undo());
    QCOMPARE(document->Encode(), before);
    QVERIFY(material->GetExtensions().isEmpty());
    QVERIFY(document->GetUndo().Redo());
    QCOMPARE(material->GetExtensions(), QList<ZAXMatMaterialExtension*>{extension});
}

void tst_undo::defaultPackagingIsOneStep()
{
    auto* const material = AddMaterial();
    const QByteArray before = document->Encode();
    const int count = Stack().count();
    auto* const packaging = material->CreateDefaultPackaging();
    QCOMPARE(Stack().count(), count + 1);
    QVERIFY(document->GetUndo().Undo());
    QCOMPARE(document->Encode(), before);
    QVERIFY(document->GetUndo().Redo());
    QCOMPARE(material->GetActivePackaging(), QList<ZAXMatPackaging*>{packaging});
}

void tst_undo::removedMaterialComesBackAtItsAddress()
{
    AddMaterial();
    const QPointer<ZAXMatMaterial> material = AddMaterial();
    const QPointer<ZAXMatPackaging> packaging = material->CreateDefaultPackaging();
    material->GetExtension("TestExtension", true);
    AddMaterial();
    const QByteArray before = document->Encode();
    QSignalSpy removed(root, &ZAXMatRoot::MaterialRemoved);
    QSignalSpy added(root, &ZAXMatRoot::MaterialAdded);
    const int count = Stack().count();

    material->Remove();
    QCOMPARE(Stack().count(), count + 1);
    QCOMPARE(removed.size(), 1);
    QVERIFY(material && packaging);
    QVERIFY(!root->GetAllChildren().contains(material));

    QVERIFY(document->GetUndo().Undo());
    QCOMPARE(document->Encode(), before);
    QCOMPARE(added.size(), 1);
    QCOMPARE(root->GetMaterials().at(1), material.data());
    QCOMPARE(material->GetPackaging(), QList<ZAXMatPackaging*>{packaging});
    QCOMPARE(Stack().count(), count + 1);
}

void tst_undo::removedExtensionComesBackIntoItsList()
{
    auto* const material = AddMaterial();
    const QPointer<ZAXMatMaterialExtension> extension = material->GetExtension("TestExtension", true);
    extension->SetExtensionEnabled(true);
    const QByteArray before = document->Encode();
    const int count = Stack().count();
    extension->Remove();
    QCOMPARE(Stack().count(), count + 1);
    QVERIFY(material->GetExtensions().isEmpty());
    const QByteArray after = document->Encode();
    QVERIFY(document->GetUndo().Undo());
    QCOMPARE(document->Encode(), before);
    QCOMPARE(material->GetExtensions(), QList<ZAXMatMaterialExtension*>{extension});
    QVERIFY(document->GetUndo().Redo());
    QCOMPARE(document->Encode(), after);
    QVERIFY(extension);
}

void tst_undo::movingIsOneStep()
{
    auto* const folder = document->GetContainer()->CreateInstance("ZAXFeatFolder", root);
    auto* const material = AddMaterial();
    const QByteArray before = document->Encode();
    const int count = Stack().count();
    QVERIFY(material->MoveTo(folder, 0));
    QCOMPARE(Stack().count(), count + 1);
    const QByteArray after = document->Encode();
    QVERIFY(after != before);
    QVERIFY(document->GetUndo().Undo());
    QCOMPARE(document->Encode(), before);
    QVERIFY(document->GetUndo().Redo());
    QCOMPARE(document->Encode(), after);
    QCOMPARE(material->GetParent(), folder);

    QVERIFY(folder->MoveTo(root, 0));
    QCOMPARE(Stack().count(), count + 1);
}

void tst_undo::duplicatingIsOneStep()
{
    auto* const material = AddMaterial();
    material->CreateDefaultPackaging();
    material->GetExtension("TestExtension", true);
    const QByteArray before = document->Encode();
    const int count = Stack().count();
    const QPointer<ZAXFeatObject> copy = ZAXHostDuplicator::Duplicate(material);
    QCOMPARE(Stack().count(), count + 1);
    const QByteArray after = document->Encode();
    QVERIFY(document->GetUndo().Undo());
    QCOMPARE(document->Encode(), before);
    QVERIFY(document->GetUndo().Redo());
    QCOMPARE(document->Encode(), after);
    QVERIFY(copy);
    QCOMPARE(copy->GetChildren().size(), 2);
}

void tst_undo::labelIsOneStep()
{
    auto* const material = AddMaterial();
    const int count = Stack().count();
    material->SetLabel(QLatin1String("Steel"));
    QCOMPARE(Stack().count(), count + 1);
    QVERIFY(document->GetUndo().Undo());
    QCOMPARE(material->GetLabel(), QLatin1String("Material"));
}

void tst_undo::restoringLeavesLastSavedValuesAlone()
{
    auto* const material = AddMaterial();
    material->SetThickness(3.0);
    material->SetThickness(4.0);
    QVERIFY(document->GetUndo().Undo());
    QCOMPARE(material->GetThickness(), 3.0);
    QCOMPARE(ZAXFeatLastSavedStore::GetCurrent().GetValue("ZAXMatMaterial", "thickness"), QVariant(4.0));
}

void tst_undo::restoringRaisesTheSignals()
{
    auto* const material = AddMaterial();
    material->SetThickness(3.0);
    QSignalSpy changed(material, &ZAXMatMaterial::ThicknessChanged);
    QVERIFY(document->GetUndo().Undo());
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.constFirst().constFirst().toDouble(), 0.5);
}

void tst_undo::transactionIsOneStep()
{
    const QByteArray before = document->Encode();
    ZAXHostTransaction transaction(document->GetUndo(), QLatin1String("Add steel"));
    QVERIFY(transaction.GetResult());
    auto* const material = AddMaterial();
    material->SetThickness(3.0);
    material->CreateDefaultPackaging()->SetLength(2000);
    QCOMPARE(Stack().count(), 0);
    QVERIFY(transaction.Commit());
    QCOMPARE(Stack().count(), 1);
    QCOMPARE(Stack().undoText(), QLatin1String("Add steel"));
    const QByteArray after = document->Encode();
    QVERIFY(document->GetUndo().Undo());
    QCOMPARE(document->Encode(), before);
    QVERIFY(document->GetUndo().Redo());
    QCOMPARE(document->Encode(), after);
    QVERIFY(!transaction.Commit());
}

void tst_undo::transactionRollsBackUnlessCommitted()
{
    auto* const material = AddMaterial();
    const QPointer<ZAXMatPackaging> packaging = material->CreateDefaultPackaging();
    const QByteArray before = document->Encode();
    const int count = Stack().count();
    QPointer<ZAXMatMaterial> other;
    {
        ZAXHostTransaction transaction(document->GetUndo(), QLatin1String("Try"));
        material->SetThickness(3.0);
        packaging->Remove();
        other = AddMaterial();
    }
    QCOMPARE(document->Encode(), before);
    QCOMPARE(Stack().count(), count);
    QCOMPARE(material->GetPackaging(), QList<ZAXMatPackaging*>{packaging});
    QVERIFY(!other);
}

void tst_undo::exceptionInATransactionLeavesEverythingAsItWas()
{
    auto* const material = AddMaterial();
    Stack().setClean();
    material->SetDensity(7.85);
    QVERIFY(document->GetUndo().Undo());
    const QByteArray before = document->Encode();
    const auto fiveSteps = [&] {
        ZAXHostTransaction transaction(document->GetUndo(), QLatin1String("Five steps"));
        material->SetThickness(3.0);
        material->CreateDefaultPackaging();
        material->GetExtension("NoSuchClass", true);
        material->SetDensity(1.0);
        return transaction.Commit();
    };
    QVERIFY_THROWS_EXCEPTION(ZAXSysException, (void)fiveSteps());
    QCOMPARE(document->Encode(), before);
    QVERIFY(Stack().isClean());
    QVERIFY(Stack().canRedo());
    QVERIFY(!document->GetUndo().IsBusy());
}

void tst_undo::transactionWithoutAChangeIsDropped()
{
    auto* const material = AddMaterial();
    const int count = Stack().count();
    ZAXHostTransaction transaction(document->GetUndo(), QLatin1String("There and back"));
    material->SetThickness(3.0);
    material->SetThickness(0.5);
    QVERIFY(transaction.Commit());
    QCOMPARE(Stack().count(), count);
}

void tst_undo::changesOfSlotsJoinTheTransaction()
{
    auto* const material = AddMaterial();
    auto* const other = AddMaterial();
    connect(material, &ZAXMatMaterial::ThicknessChanged, other, [other](double value) { other->SetThickness(value); });
    const QByteArray before = document->Encode();
    ZAXHostTransaction transaction(document->GetUndo(), QLatin1String("Both"));
    material->SetThickness(3.0);
    QVERIFY(transaction.Commit());
    QCOMPARE(other->GetThickness(), 3.0);
    QVERIFY(document->GetUndo().Undo());
    QCOMPARE(document->Encode(), before);
}

void tst_undo::secondTransactionIsRefused()
{
    auto* const material = AddMaterial();
    const int count = Stack().count();
    ZAXHostTransaction outer(document->GetUndo(), QLatin1String("Outer"));
    {
        ZAXHostTransaction inner(document->GetUndo(), QLatin1String("Inner"));
        QVERIFY(!inner.GetResult());
        QVERIFY(!inner.GetResult().GetMessage().isEmpty());
        material->SetThickness(3.0);
        QVERIFY(!inner.Commit());
    }
    QCOMPARE(material->GetThickness(), 3.0);
    QVERIFY(!document->GetUndo().Undo());
    QVERIFY(!document->GetUndo().Clear());
    QVERIFY(outer.Commit());
    QCOMPARE(Stack().count(), count + 1);
}

void tst_undo::slotOfAChangeIsRefused()
{
    auto* const material = AddMaterial();
    auto& undo = document->GetUndo();
    material->SetThickness(2.0);
    QStringList refusals;
    const auto tryAll = [&] {
        refusals = {undo.Undo().GetMessage(), undo.Redo().GetMessage(), undo.Clear().GetMessage(),
                    ZAXHostTransaction(undo, QString()).GetResult().GetMessage()};
    };
    const QString refused = QLatin1String("A change of the document is still under way.");
    const QStringList allRefused{refused, refused, refused, refused};
    connect(material, &ZAXMatMaterial::ThicknessChanged, this, tryAll);
    const int count = Stack().count();
    material->SetThickness(3.0);
    QCOMPARE(refusals, allRefused);
    QCOMPARE(Stack().count(), count + 1);
    QCOMPARE(material->GetThickness(), 3.0);

    refusals.clear();
    QVERIFY(undo.Undo());
    QCOMPARE(refusals, allRefused);
    QCOMPARE(material->GetThickness(), 2.0);

    // The stack's own actions cannot say so, but do nothing either.
    int tries = 0;
    connect(material, &ZAXMatMaterial::CommentChanged, this, [&] {
        const int index = Stack().index();
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QLatin1String("still under way")));
        Stack().undo();
        QCOMPARE(Stack().index(), index);
        ++tries;
    });
    material->SetComment(QLatin1String("new"));
    QCOMPARE(tries, 1);
    QCOMPARE(material->GetComment(), QLatin1String("new"));
}

void tst_undo::slotOfTheStackIsRefusedDuringAPush()
{
    auto* const material = AddMaterial();
    auto& undo = document->GetUndo();
    QStringList refusals;
    const auto tryUndo =
        connect(&Stack(), &QUndoStack::indexChanged, this, [&] { refusals.append(undo.Undo().GetMessage()); });
    material->SetThickness(3.0);
    disconnect(tryUndo);
    QCOMPARE(refusals, QStringList(QLatin1String("A change of the document is still under way.")));
    QCOMPARE(material->GetThickness(), 3.0);
    QVERIFY(undo.Undo());
    QCOMPARE(material->GetThickness(), 0.5);
}

void tst_undo::whatSlotsChangeDuringUndoIsTakenBack()
{
    auto* const material = AddMaterial();
    auto* const other = AddMaterial();
    material->SetThickness(3.0);
    const QByteArray after = document->Encode();
    connect(material, &ZAXMatMaterial::ThicknessChanged, other, [&] {
        other->SetComment(other->GetComment() + u'x');
        material->SetComment(material->GetComment() + u'x');
        AddMaterial();
    });
    QVERIFY(document->GetUndo().Undo());
    QCOMPARE(other->GetComment(), QString());
    QCOMPARE(material->GetComment(), QString());
    QCOMPARE(root->GetMaterials().size(), 2);
    QVERIFY(document->GetUndo().Redo());
    QCOMPARE(document->Encode(), after);
}

void tst_undo::newStepFreesTheRedoBranch()
{
    auto* const keeper = AddMaterial();
    const QPointer<ZAXMatMaterial> material = AddMaterial();
    QVERIFY(document->GetUndo().Undo());
    QVERIFY(material);
    int countWhenFreed = -1;
    connect(material, &QObject::destroyed, this, [&] { countWhenFreed = Stack().count(); });
    keeper->SetThickness(3.0);
    QVERIFY(!material);
    QCOMPARE(countWhenFreed, 2);
    QVERIFY(!Stack().canRedo());
}

void tst_undo::clearFreesWhatWaitsAside()
{
    const QPointer<ZAXMatMaterial> material = AddMaterial();
    const QPointer<ZAXMatMaterial> other = AddMaterial();
    other->Remove();
    QVERIFY(other);
    QVERIFY(document->GetUndo().Clear());
    QVERIFY(material);
    QVERIFY(!other);
    QVERIFY(!document->GetUndo().GetStack()->canUndo());
}

void tst_undo::clearDoesNotMakeChangesSaved_data()
{
    QTest::addColumn<bool>("isSaved");
    QTest::newRow("saved") << true;
    QTest::newRow("changed") << false;
}

void tst_undo::clearDoesNotMakeChangesSaved()
{
    QFETCH(bool, isSaved);
    auto* const material = AddMaterial();
    Stack().setClean();
    material->SetComment(QLatin1String(isSaved ? "" : "not saved"));
    QVERIFY(document->GetUndo().Clear());
    QCOMPARE(Stack().count(), 0);
    QCOMPARE(document->IsModified(), !isSaved);
    material->SetThickness(3.0);
    QVERIFY(document->GetUndo().Undo());
    QCOMPARE(document->IsModified(), !isSaved);
    Stack().setClean();
    QVERIFY(!document->IsModified());
}

void tst_undo::whatWasRemovedIsNeitherDuplicatedNorBuiltUpon()
{
    auto* const material = AddMaterial();
    auto* const other = AddMaterial();
    const QByteArray copied = ZAXHostClipboard::Copy({other->CreateDefaultPackaging()});
    material->Remove();
    const QByteArray before = document->Encode();
    const int count = Stack().count();

    QTest::ignoreMessage(QtWarningMsg, "Material is not duplicated: it was removed.");
    QVERIFY(!ZAXHostDuplicator::Duplicate(material));
    QTest::ignoreMessage(QtWarningMsg, "A ZAXMatPackaging cannot be created under a parent that was removed.");
    QVERIFY(!document->GetContainer()->CreateInstance("ZAXMatPackaging", material));
    QVERIFY_THROWS_EXCEPTION(ZAXSysException, TestExtension{material});
    QList<ZAXFeatObject*> pasted;
    QList<ZAXHostProblem> problems;
    QCOMPARE(ZAXHostClipboard::Paste(copied, material, pasted, problems).GetMessage(),
             QLatin1String("Material was removed."));
    QVERIFY(pasted.isEmpty());

    QVERIFY(material->GetChildren().isEmpty());
    QCOMPARE(document->Encode(), before);
    QCOMPARE(Stack().count(), count);
    QVERIFY(document->GetUndo().Undo());
    QVERIFY(ZAXHostDuplicator::Duplicate(material));
}

void tst_undo::undoLimitFreesWhatNobodyCanBringBack()
{
    Stack().setUndoLimit(2);
    const QPointer<ZAXMatMaterial> material = AddMaterial();
    auto* const other = AddMaterial();
    material->Remove();
    other->SetThickness(2.0);
    QVERIFY(material);
    other->SetThickness(3.0);
    QVERIFY(!material);
    QVERIFY(document->GetUndo().Undo());
    QVERIFY(document->GetUndo().Undo());
    QCOMPARE(other->GetThickness(), 0.5);
}

void tst_undo::modifiedFollowsTheCleanMark()
{
    QVERIFY(!document->IsModified());
    auto* const material = AddMaterial();
    QVERIFY(document->IsModified());
    QVERIFY(document->GetUndo().Undo());
    QVERIFY(!document->IsModified());
    QVERIFY(document->GetUndo().Redo());
    QVERIFY(document->IsModified());
    material->SetThickness(3.0);
    QVERIFY(document->GetUndo().Undo());
    QVERIFY(document->IsModified());
}

void tst_undo::randomOperationsAreTakenBackAndDoneAgain_data()
{
    QTest::addColumn<quint32>("seed");
    const int sequences = qEnvironmentVariableIntValue("ZAX_FULL_TESTS") ? 2000 : 60;
    for (int i = 0; i < sequences; ++i)
        QTest::addRow("sequence %d", i) << quint32(i);
}

void tst_undo::randomOperationsAreTakenBackAndDoneAgain()
{
    QFETCH(quint32, seed);
    QRandomGenerator random(seed);
    const auto pick = [&](const auto& list) { return list.at(random.bounded(int(list.size()))); };
    const auto change = [&] {
        const auto features = QList<ZAXFeatObject*>{root} + root->GetAllChildren();
        ZAXFeatObject* const feature = pick(features);
        auto* const material = qobject_cast<ZAXMatMaterial*>(feature);
        auto* const packaging = qobject_cast<ZAXMatPackaging*>(feature);
        // An extension that moves or is copied alone stands in no list; the repair of the list at undo is a change.
        const bool isListed = qobject_cast<TestExtension*>(feature);
        switch (random.bounded(15)) {
        case 0:
        case 1:
            document->GetContainer()->CreateInstance("ZAXMatMaterial", root);
            break;
        case 2:
            document->GetContainer()->CreateInstance("ZAXFeatFolder", root);
            break;
        case 3:
            if (material)
                material->GetExtension("TestExtension", true);
            break;
        case 4:
            if (material)
                document->GetContainer()->CreateInstance("ZAXMatPackaging", material);
            break;
        case 5:
            if (material)
                material->SetThickness(random.bounded(10));
            break;
        case 6:
            if (packaging)
                packaging->SetActive(random.bounded(2));
            break;
        case 7:
            feature->SetLabel(QString::number(random.bounded(5)));
            break;
        case 8:
            if (feature != root)
                feature->Remove();
            break;
        case 9:
            if (feature != root && !isListed)
                feature->MoveTo(pick(features), random.bounded(4));
            break;
        case 10:
            if (feature != root && !isListed && features.size() < 60)
                ZAXHostDuplicator::Duplicate(feature);
            break;
        case 11:
            if (material)
                material->SetComment(QString::number(random.bounded(3)));
            break;
        case 12:
            if (material)
                material->SetNestingColor(QColor(random.bounded(3), 0, 0));
            break;
        case 13:
            if (packaging)
                packaging->SetForm(ZAXMatPackaging::GetAllForms().at(random.bounded(2)));
            break;
        default:
            feature->SetVisibility(random.bounded(2));
        }
    };

    // The states of the document, one for each place on the stack.
    QList<QByteArray> states{document->Encode()};
    const auto follow = [&] {
        states.resize(Stack().index());
        states.append(document->Encode());
    };
    for (int i = 0; i < 200; ++i) {
        const int index = Stack().index();
        switch (random.bounded(6)) {
        case 0:
            QVERIFY(document->GetUndo().Undo());
            break;
        case 1:
            QVERIFY(document->GetUndo().Redo());
            break;
        case 2: {
            ZAXHostTransaction transaction(document->GetUndo(), QLatin1String("Several"));
            for (int n = random.bounded(5); n >= 0; --n)
                change();
            if (random.bounded(2))
                QVERIFY(transaction.Commit());
            else
                QVERIFY(transaction.Rollback());
            if (Stack().index() > index)
                follow();
            break;
        }
        default:
            change();
            if (Stack().index() > index)
                follow();
        }
        QCOMPARE(document->Encode(), states.at(Stack().index()));
    }
    while (Stack().canUndo()) {
        QVERIFY(document->GetUndo().Undo());
        QCOMPARE(document->Encode(), states.at(Stack().index()));
    }
    while (Stack().canRedo()) {
        QVERIFY(document->GetUndo().Redo());
        QCOMPARE(document->Encode(), states.at(Stack().index()));
    }
}

QTEST_GUILESS_MAIN(tst_undo)
#include "tst_undo.moc"
