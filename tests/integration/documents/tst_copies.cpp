#include "ZAXFeatContainer.h"
#include "ZAXHostClipboard.h"
#include "ZAXHostDocument.h"
#include "ZAXHostDocumentCodec.h"
#include "ZAXHostDuplicator.h"
#include "ZAXHostPlaceholder.h"
#include "ZAXHostUndo.h"
#include "ZAXMatRoot.h"
#include "ZAXProbeModules.h"
#include "ZAXSysException.h"
#include "ZAXSysStartup.h"

#include <QBuffer>
#include <QTest>
#include <QUndoStack>

#include <stdexcept>

// Copies within a document and between documents: they take nothing from the original and give it nothing.

namespace {

ZAXHostDocumentImage ImageOf(const QByteArray& bytes)
{
    ZAXHostDocumentImage image;
    return ZAXHostDocumentCodec::Decode(bytes, image) ? image : ZAXHostDocumentImage();
}

/// What is stored of each object that stood in the document when \a before was saved.
QMap<quint64, QByteArray> Originals(const QByteArray& before, const QByteArray& now)
{
    QMap<quint64, QByteArray> originals;
    const auto records = ImageOf(now).records;
    for (const ZAXHostDocumentRecord& record : records) {
        if (record.id > ImageOf(before).lastId)
            continue;
        QByteArray bytes = record.payload;
        for (const ZAXGeoGeometryRef& reference : record.references)
            bytes += ' ' + QByteArray::number(reference.GetId());
        originals.insert(record.id, bytes + " under " + QByteArray::number(record.parent));
    }
    return originals;
}

ZAXHostResult LoadBytes(ZAXHostDocument& document, QByteArray bytes)
{
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    return document.Load(&buffer);
}

} // namespace

class tst_copies : public QObject
{
    Q_OBJECT

private:
    ZAXProbePart* Part(const char* text, ZAXFeatObject* parent = nullptr)
    {
        auto* const part =
            qobject_cast<ZAXProbePart*>(document->GetContainer()->CreateInstance("ZAXProbePart", parent));
        part->SetText(QString::fromUtf8(text));
        return part;
    }

    std::unique_ptr<ZAXHostDocument> document;
    /// A top with two children, which point at themselves, each other, the top, and at what is beside and below.
    ZAXProbePart *beside, *top, *child, *sibling, *grandchild;

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void referencesOfACopy();
    void originalsStayByteForByte();
    void removingTheCopyTouchesNothing();
    void throwingFeatureLeavesNoTrace_data();
    void throwingFeatureLeavesNoTrace();
    void throwingSlotLeavesAWholeCopy();
    void copyIsAnnouncedWhole();

    void pasteIntoAnotherDocument();
    void pasteIntoTheSameDocument();
    void pasteIsOneStep();
    void pasteWithoutTheModule();
    void pastePlaceholders();
    void pasteOfPartsTakesEachOnce();
    void pasteRefusesWhatTheParentDoesNotAllow();
    void pasteRefusesWhatIsNoCopy();
    void throwingFeatureLeavesNothingPasted();

    void idsAreNotGivenTwice();
};

void tst_copies::initTestCase()
{
    ZAXSysStartup::Start();
    ZAXGeoContainer::RegisterType(&ZAXProbePart::staticMetaObject);
    ZAXGeoContainer::RegisterType(&ZAXProbeGas::staticMetaObject);
}

void tst_copies::init()
{
    document = std::make_unique<ZAXHostDocument>();
    beside = Part("beside");
    top = Part("top");
    child = Part("child", top);
    sibling = Part("sibling", top);
    grandchild = Part("grandchild", child);
    top->data.link.SetPointedObject(grandchild, false);
    child->data.link.SetPointedObject(top, false);
    sibling->data.link.SetPointedObject(beside, false);
    grandchild->data.link.SetPointedObject(grandchild, false);
    beside->data.link.SetPointedObject(child, false);
    for (ZAXProbePart* part : {sibling, child, beside, top})
        child->links.Add(part, false);
    sibling->links.Add(child, false);
    QVERIFY(document->GetUndo().Clear());
}

void tst_copies::cleanup()
{
    ZAXProbeData::failAt = "";
    document.reset();
}

void tst_copies::referencesOfACopy()
{
    auto* const copy = qobject_cast<ZAXProbePart*>(ZAXHostDuplicator::Duplicate(top));
    auto* const childCopy = qobject_cast<ZAXProbePart*>(copy->GetChildren().at(0));
    auto* const siblingCopy = qobject_cast<ZAXProbePart*>(copy->GetChildren().at(1));
    auto* const grandchildCopy = qobject_cast<ZAXProbePart*>(childCopy->GetChildren().at(0));
    QCOMPARE(copy->data.link.GetObject(), grandchildCopy);
    QCOMPARE(childCopy->data.link.GetObject(), copy);
    QCOMPARE(siblingCopy->data.link.GetObject(), beside);
    QCOMPARE(grandchildCopy->data.link.GetObject(), grandchildCopy);
    QCOMPARE(childCopy->links.GetObjects(), (QList<ZAXFeatObject*>{siblingCopy, childCopy, beside, copy}));
    QCOMPARE(siblingCopy->links.GetObjects(), QList<ZAXFeatObject*>{childCopy});
    QCOMPARE(document->GetContainer()->GetRoots(), (QList<ZAXFeatObject*>{beside, top, copy}));
}

void tst_copies::originalsStayByteForByte()
{
    const QByteArray before = document->Encode();
    for (ZAXProbePart* part : {top, child, sibling, grandchild, beside})
        QVERIFY(ZAXHostDuplicator::Duplicate(part));
    QCOMPARE(Originals(before, document->Encode()), Originals(before, before));
    while (document->GetUndo().GetStack()->canUndo())
        QVERIFY(document->GetUndo().Undo());
    QCOMPARE(document->Encode(), before);
}

void tst_copies::removingTheCopyTouchesNothing()
{
    const QByteArray before = document->Encode();
    QList<ZAXFeatObject*> copies;
    for (ZAXProbePart* part : {top, child, grandchild})
        copies.append(ZAXHostDuplicator::Duplicate(part));
    for (ZAXFeatObject* copy : std::as_const(copies))
        copy->Remove();
    QCOMPARE(document->Encode(), before);
    QVERIFY(document->GetUndo().Clear());
    QCOMPARE(document->Encode(), before);
}

void tst_copies::throwingFeatureLeavesNoTrace_data()
{
    QTest::addColumn<QByteArray>("failAt");
    for (const char* where : {"making", "Save", "Load", "EndStateLoad", "PostDuplicate"})
        QTest::newRow(where) << QByteArray(where);
}

void tst_copies::throwingFeatureLeavesNoTrace()
{
    QFETCH(QByteArray, failAt);
    // PostDuplicate() of the copy enters it into the list of this one first.
    beside->SetText(QLatin1String("back"));
    const QByteArray before = document->Encode();
    const int count = document->GetUndo().GetStack()->count();
    const auto geometries = document->GetContainer()->GetGeometries();
    ZAXProbeData::failAt = failAt.constData();
    QVERIFY_THROWS_EXCEPTION(std::runtime_error, ZAXHostDuplicator::Duplicate(top));
    ZAXProbeData::failAt = "";
    QCOMPARE(document->Encode(), before);
    QCOMPARE(document->GetContainer()->GetGeometries(), geometries);
    QCOMPARE(document->GetUndo().GetStack()->count(), count);
    QVERIFY(!document->GetUndo().IsBusy());
    QVERIFY(ZAXHostDuplicator::Duplicate(top));
    QVERIFY(document->GetUndo().Undo());
    QCOMPARE(document->Encode(), before);
}

void tst_copies::throwingSlotLeavesAWholeCopy()
{
    auto* const home = document->GetContainer()->CreateInstance("ZAXFeatFolder", nullptr);
    QVERIFY(top->MoveTo(home, 0));
    const QByteArray before = document->Encode();
    const auto connection =
        connect(home, &ZAXFeatObject::ChildAdded, this, [] { throw ZAXSysException(QLatin1String("slot")); });
    QVERIFY_THROWS_EXCEPTION(ZAXSysException, ZAXHostDuplicator::Duplicate(top));
    disconnect(connection);
    QCOMPARE(home->GetChildren().size(), 2);
    auto* const copy = qobject_cast<ZAXProbePart*>(home->GetChildren().at(1)->GetChildren().at(0));
    const QByteArray after = document->Encode();
    copy->SetText(QLatin1String("changed"));
    QVERIFY(document->GetUndo().Undo());
    QCOMPARE(document->Encode(), after);
    QVERIFY(document->GetUndo().Undo());
    QCOMPARE(document->Encode(), before);
}

void tst_copies::copyIsAnnouncedWhole()
{
    auto* const home = document->GetContainer()->CreateInstance("ZAXFeatFolder", nullptr);
    QVERIFY(top->MoveTo(home, 0));
    QList<int> sizes;
    connect(home, &ZAXFeatObject::ChildAdded, this,
            [&](ZAXFeatObject* copy) { sizes.append(int(copy->GetAllChildren().size())); });
    ZAXHostDuplicator::Duplicate(top);
    QCOMPARE(sizes, QList<int>{3});
}

void tst_copies::pasteIntoAnotherDocument()
{
    const QByteArray before = document->Encode();
    const QByteArray bytes = ZAXHostClipboard::Copy({top});
    QCOMPARE(document->Encode(), before);

    ZAXHostDocument other;
    auto* const home = other.GetContainer()->CreateInstance("ZAXFeatFolder", nullptr);
    for (int i = 0; i < 20; ++i)
        other.GetContainer()->CreateInstance("ZAXFeatFolder", home);
    QList<ZAXFeatObject*> pasted;
    QList<ZAXHostProblem> problems;
    QVERIFY(ZAXHostClipboard::Paste(bytes, home, pasted, problems));
    QCOMPARE(pasted.size(), 1);
    QCOMPARE(home->GetChildren().constLast(), pasted.constFirst());
    auto* const copy = qobject_cast<ZAXProbePart*>(pasted.constFirst());
    auto* const childCopy = qobject_cast<ZAXProbePart*>(copy->GetChildren().at(0));
    auto* const siblingCopy = qobject_cast<ZAXProbePart*>(copy->GetChildren().at(1));
    QVERIFY(copy->GetId() > 20);
    QCOMPARE(copy->data.text.GetValue(), QLatin1String("top"));
    QCOMPARE(copy->data.link.GetObject(), childCopy->GetChildren().at(0));
    QVERIFY(!siblingCopy->data.link.GetReference().IsValid());
    QCOMPARE(childCopy->links.GetObjects(), (QList<ZAXFeatObject*>{siblingCopy, childCopy, nullptr, copy}));
    QCOMPARE(problems.size(), 2);
    QCOMPARE(problems.constFirst().kind, ZAXHostProblem::Unresolved);
    QCOMPARE(problems.constFirst().id, childCopy->GetId());
    QCOMPARE(problems.constFirst().className, QByteArray("ZAXProbePart"));
    QCOMPARE(problems.constFirst().message,
             QLatin1String("An object of class ZAXProbePart referred to something that was not copied."));
    ZAXHostDocument again;
    QVERIFY(LoadBytes(again, other.Encode()));
    QVERIFY(again.GetProblems().isEmpty());
    QCOMPARE(again.Encode(), other.Encode());
}

void tst_copies::pasteIntoTheSameDocument()
{
    const QByteArray before = document->Encode();
    QList<ZAXFeatObject*> pasted;
    QList<ZAXHostProblem> problems;
    QVERIFY(ZAXHostClipboard::Paste(ZAXHostClipboard::Copy({grandchild}), grandchild, pasted, problems));
    QVERIFY(problems.isEmpty());
    QCOMPARE(qobject_cast<ZAXProbePart*>(pasted.constFirst())->data.link.GetObject(), pasted.constFirst());
    QCOMPARE(Originals(before, document->Encode()), Originals(before, before));
}

void tst_copies::pasteIsOneStep()
{
    const QByteArray before = document->Encode();
    QList<ZAXFeatObject*> pasted;
    QList<ZAXHostProblem> problems;
    QVERIFY(ZAXHostClipboard::Paste(ZAXHostClipboard::Copy({top, beside}), sibling, pasted, problems));
    QVERIFY(problems.isEmpty());
    const QByteArray after = document->Encode();
    QCOMPARE(document->GetUndo().GetStack()->count(), 1);
    QVERIFY(document->GetUndo().Undo());
    QCOMPARE(document->Encode(), before);
    QVERIFY(document->GetUndo().Redo());
    QCOMPARE(document->Encode(), after);
}

void tst_copies::pasteWithoutTheModule()
{
    const QByteArray bytes = ZAXHostClipboard::Copy({top});
    ZAXHostDocument other;
    auto* const home = other.GetContainer()->CreateInstance("ZAXFeatFolder", nullptr);
    QList<ZAXFeatObject*> pasted;
    QList<ZAXHostProblem> problems;
    ZAXGeoContainer::UnregisterType(&ZAXProbePart::staticMetaObject);
    const auto result = ZAXHostClipboard::Paste(bytes, home, pasted, problems);
    ZAXGeoContainer::RegisterType(&ZAXProbePart::staticMetaObject);
    QVERIFY(result);
    QVERIFY(qobject_cast<ZAXHostPlaceholder*>(pasted.constFirst()));
    QCOMPARE(problems.constFirst().kind, ZAXHostProblem::Unavailable);
    QCOMPARE(problems.constFirst().message,
             QLatin1String("The object of class ZAXProbePart is not available: no loaded module provides the class."));
    ZAXHostDocument again;
    QVERIFY(LoadBytes(again, other.Encode()));
    QVERIFY(again.GetProblems().isEmpty());
    auto* const copy = qobject_cast<ZAXProbePart*>(again.GetContainer()->GetRoots().constFirst()->GetChildren().at(0));
    auto* const childCopy = qobject_cast<ZAXProbePart*>(copy->GetChildren().at(0));
    QCOMPARE(copy->data.link.GetObject(), childCopy->GetChildren().at(0));
    QCOMPARE(childCopy->links.GetObjects(),
             (QList<ZAXFeatObject*>{copy->GetChildren().at(1), childCopy, nullptr, copy}));
}

void tst_copies::pastePlaceholders()
{
    ZAXGeoContainer::UnregisterType(&ZAXProbePart::staticMetaObject);
    ZAXHostDocument away;
    const auto loaded = LoadBytes(away, document->Encode());
    const QByteArray bytes = ZAXHostClipboard::Copy(away.GetContainer()->GetRoots());
    ZAXGeoContainer::RegisterType(&ZAXProbePart::staticMetaObject);
    QVERIFY(loaded);
    QCOMPARE(ImageOf(bytes).records.size(), 5);
    QList<ZAXFeatObject*> pasted;
    QList<ZAXHostProblem> problems;
    QVERIFY(ZAXHostClipboard::Paste(bytes, sibling, pasted, problems));
    QVERIFY(problems.isEmpty());
    QCOMPARE(qobject_cast<ZAXProbePart*>(pasted.at(0))->data.link.GetObject(), pasted.at(1)->GetChildren().at(0));
}

void tst_copies::pasteOfPartsTakesEachOnce()
{
    const auto image = ImageOf(ZAXHostClipboard::Copy({grandchild, top, top, child}));
    QCOMPARE(image.records.size(), 4);
    QCOMPARE(image.records.constFirst().id, top->GetId());
    QVERIFY(image.damages.isEmpty());
    QVERIFY(ImageOf(ZAXHostClipboard::Copy({})).records.isEmpty());
}

void tst_copies::pasteRefusesWhatTheParentDoesNotAllow()
{
    auto* const root = document->GetContainer()->CreateInstance("ZAXMatRoot", nullptr);
    auto* const material =
        qobject_cast<ZAXMatMaterial*>(document->GetContainer()->CreateInstance("ZAXMatMaterial", root));
    const auto* const gas = material->GetExtension("ZAXProbeGas", true);
    const QByteArray before = document->Encode();
    const int count = document->GetUndo().GetStack()->count();
    QList<ZAXFeatObject*> pasted;
    QList<ZAXHostProblem> problems;
    const QByteArray bytes = ZAXHostClipboard::Copy({material, const_cast<ZAXMatMaterialExtension*>(gas)});
    QCOMPARE(ZAXHostClipboard::Paste(bytes, material, pasted, problems).GetMessage(),
             QLatin1String("Material does not allow an object of class ZAXMatMaterial."));
    QVERIFY(pasted.isEmpty());
    QCOMPARE(document->Encode(), before);
    QCOMPARE(document->GetUndo().GetStack()->count(), count);
}

void tst_copies::pasteRefusesWhatIsNoCopy()
{
    const QByteArray before = document->Encode();
    QByteArray damaged = ZAXHostClipboard::Copy({top});
    damaged[damaged.size() / 2] = char(damaged.at(damaged.size() / 2) ^ 1);
    QList<ZAXFeatObject*> pasted;
    QList<ZAXHostProblem> problems;
    QCOMPARE(ZAXHostClipboard::Paste("text", top, pasted, problems).GetMessage(),
             QLatin1String("This is not a document of this program, or one that was changed by a transfer as text."));
    QVERIFY(ZAXHostClipboard::Paste(damaged, top, pasted, problems)
                .GetMessage()
                .startsWith(QLatin1String("The document is damaged at byte ")));
    QVERIFY(pasted.isEmpty());
    QCOMPARE(document->Encode(), before);
}

void tst_copies::throwingFeatureLeavesNothingPasted()
{
    const QByteArray before = document->Encode();
    const QByteArray bytes = ZAXHostClipboard::Copy({top});
    QList<ZAXFeatObject*> pasted;
    QList<ZAXHostProblem> problems;
    ZAXProbeData::failAt = "EndStateLoad";
    QCOMPARE(ZAXHostClipboard::Paste(bytes, beside, pasted, problems).GetMessage(),
             QLatin1String("The probe fails at EndStateLoad."));
    ZAXProbeData::failAt = "";
    QVERIFY(pasted.isEmpty());
    QCOMPARE(document->Encode(), before);
    QCOMPARE(document->GetContainer()->GetGeometries().size(), 5);
    QCOMPARE(document->GetUndo().GetStack()->count(), 0);
}

void tst_copies::idsAreNotGivenTwice()
{
    QSet<quint64> given;
    const auto isNew = [&](const ZAXFeatObject* feature) {
        const bool isKnown = given.contains(feature->GetId());
        given.insert(feature->GetId());
        return !isKnown;
    };
    const auto geometries = document->GetContainer()->GetGeometries();
    for (const ZAXGeoGeometry* geometry : geometries)
        given.insert(geometry->GetId());
    QVERIFY(isNew(Part("new")));
    QVERIFY(document->GetUndo().Undo());
    QVERIFY(document->GetUndo().Undo());
    QVERIFY(isNew(Part("after undo")));
    QVERIFY(isNew(ZAXHostDuplicator::Duplicate(sibling)));
    auto* const last = Part("to go");
    QVERIFY(isNew(last));

    // Saved once, an id is gone for good, though its object is not there any more.
    QBuffer file;
    file.open(QIODevice::ReadWrite);
    QVERIFY(document->Save(&file));
    last->Remove();
    QVERIFY(LoadBytes(*document, document->Encode()));
    QVERIFY(isNew(Part("after loading")));
    QVERIFY(LoadBytes(*document, document->Encode()));
    QVERIFY(isNew(Part("after loading again")));
}

QTEST_GUILESS_MAIN(tst_copies)
#include "tst_copies.moc"
