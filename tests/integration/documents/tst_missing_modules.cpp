#include "ZAXFeatContainer.h"
#include "ZAXFeatLastSavedStore.h"
#include "ZAXHostDocument.h"
#include "ZAXHostDocumentCodec.h"
#include "ZAXHostDuplicator.h"
#include "ZAXHostPlaceholder.h"
#include "ZAXHostTransaction.h"
#include "ZAXHostUndo.h"
#include "ZAXMatRoot.h"
#include "ZAXProbeModules.h"
#include "ZAXSysStartup.h"

#include <QBuffer>
#include <QPointer>
#include <QTemporaryDir>
#include <QTest>
#include <QUndoStack>

#include <algorithm>

// A document that visits a computer without some modules comes home with their data intact.

namespace {

/// The modules' classes, registered as long as it lives.
class Modules
{
public:
    Modules()
    {
        for (const QMetaObject* type : Types())
            ZAXGeoContainer::RegisterType(type);
    }
    ~Modules()
    {
        for (const QMetaObject* type : Types())
            ZAXGeoContainer::UnregisterType(type);
    }
    static QList<const QMetaObject*> Types()
    {
        return {&ZAXProbeGas::staticMetaObject, &ZAXProbeGrain::staticMetaObject, &ZAXProbePart::staticMetaObject};
    }
};

ZAXHostDocumentImage ImageOf(const QByteArray& bytes)
{
    ZAXHostDocumentImage image;
    return ZAXHostDocumentCodec::Decode(bytes, image) ? image : ZAXHostDocumentImage();
}

/// Everything that is stored of the probes, by id and without their places.
QMap<quint64, QString> ProbesIn(const QByteArray& bytes)
{
    const auto image = ImageOf(bytes);
    QMap<quint64, QString> probes;
    for (const ZAXHostDocumentRecord& record : image.records) {
        const auto chain = image.GetChain(record.classIndex);
        if (!chain.constFirst().name.startsWith("ZAXProbe"))
            continue;
        QStringList words;
        for (const ZAXHostDocumentClass& type : chain)
            words.append(QString::fromUtf8(type.name) + u':' + QString::number(type.version));
        for (const ZAXGeoGeometryRef& reference : record.references)
            words.append(QString::number(reference.GetId()));
        words.append(QString::fromLatin1(record.payload.toHex()));
        probes.insert(record.id, words.join(u' '));
    }
    return probes;
}

ZAXHostResult LoadBytes(ZAXHostDocument& document, QByteArray bytes)
{
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    return document.Load(&buffer);
}

template <typename T>
T* At(const ZAXHostDocument& document, quint64 id)
{
    return qobject_cast<T*>(document.GetContainer()->GetGeometryByRef(ZAXGeoGeometryRef::FromId(id)));
}

QStringList MessagesOf(const ZAXHostDocument& document, ZAXHostProblem::Kind kind)
{
    QStringList messages;
    const auto problems = document.GetProblems();
    for (const ZAXHostProblem& problem : problems) {
        if (problem.kind == kind)
            messages.append(problem.message);
    }
    return messages;
}

template <typename T>
T* Create(ZAXHostDocument& document, const char* className, ZAXFeatObject* parent)
{
    return qobject_cast<T*>(document.GetContainer()->CreateInstance(className, parent));
}

} // namespace

class tst_missing_modules : public QObject
{
    Q_OBJECT

private:
    /// Changes the record \a id of the document's bytes.
    QByteArray Edited(quint64 id, const std::function<void(ZAXHostDocumentImage&, ZAXHostDocumentRecord&)>& edit)
    {
        auto image = ImageOf(home);
        const auto record = std::ranges::find(image.records, id, &ZAXHostDocumentRecord::id);
        edit(image, *record);
        return ZAXHostDocumentCodec::Encode(image);
    }

    /// A document at home, with the objects of both modules; the ids of what is in it.
    QByteArray home;
    quint64 root, steel, gas, sheet, grain, shelf, brass, brassGas, machine, head, drawer, nozzle;

private slots:
    void initTestCase();
    void cleanup() { ZAXProbeData::failAt = ""; }

    void missingObjectsAreListedAndWrittenBack();
    void documentComesHomeAfterThreeSavings();
    void placeholdersAreDuplicatedWithTheirParents();
    void placeholdersMoveAndComeBack();
    void removedPlaceholderLeavesNoReference();
    void undoBringsPlaceholdersBack();
    void materialIsEditedAndUndoneBesideItsPlaceholder();
    void placeholderRefusesChildren();
    void referenceToAPlaceholderFollowsTheNewTarget();

    void newerClassVersionIsKept();
    void newerBaseClassVersionIsKept();
    void objectThatDoesNotTakeItsDataIsKept_data();
    void objectThatDoesNotTakeItsDataIsKept();
    void classWithoutAConstructorIsKept();
    void referenceToNothingIsKept();
    void referenceToAnotherKindIsKept();
    void undoWorksBesideAReferenceToNothing();

    void instancesAreFoundWhereverTheyWait();
    void conversionKeepsEveryByte();
    void conversionLeavesNoCodeOfTheClassInUse();
    void conversionKeepsWhatTheUserChose();
    void conversionKeepsTheChangedMark();
    void conversionIsRefusedDuringAChange();
    void conversionIsRefusedForWhatSomebodyHolds();
    void conversionBringsNothingToLife();
    void idsAreNotGivenAgainAfterConversion();
};

void tst_missing_modules::initTestCase()
{
    ZAXSysStartup::Start();
    const Modules modules;
    ZAXHostDocument document;
    auto* const rootFeature = Create<ZAXMatRoot>(document, "ZAXMatRoot", nullptr);
    auto* const steelFeature = Create<ZAXMatMaterial>(document, "ZAXMatMaterial", rootFeature);
    steelFeature->SetThickness(3.0);
    auto* const gasFeature = qobject_cast<ZAXProbeGas*>(steelFeature->GetExtension("ZAXProbeGas", true));
    auto* const sheetFeature = steelFeature->CreateDefaultPackaging();
    auto* const grainFeature = qobject_cast<ZAXProbeGrain*>(sheetFeature->GetExtension("ZAXProbeGrain", true));
    auto* const shelfFeature = Create<ZAXFeatFolder>(document, "ZAXFeatFolder", rootFeature);
    auto* const brassFeature = Create<ZAXMatMaterial>(document, "ZAXMatMaterial", shelfFeature);
    auto* const brassGasFeature = qobject_cast<ZAXProbeGas*>(brassFeature->GetExtension("ZAXProbeGas", true));
    auto* const machineFeature = Create<ZAXProbePart>(document, "ZAXProbePart", nullptr);
    auto* const headFeature = Create<ZAXProbePart>(document, "ZAXProbePart", machineFeature);
    auto* const drawerFeature = Create<ZAXFeatFolder>(document, "ZAXFeatFolder", headFeature);
    auto* const nozzleFeature = Create<ZAXProbePart>(document, "ZAXProbePart", drawerFeature);
    QVERIFY(gasFeature && grainFeature && brassGasFeature && nozzleFeature);

    gasFeature->SetExtensionEnabled(true);
    gasFeature->data.text.SetValue(QString::fromUtf8("Nitrogen, 99,9 % – für Öfen"), false);
    gasFeature->data.link.SetPointedObject(headFeature, false);
    brassGasFeature->data.link.SetPointedObject(gasFeature, false);
    grainFeature->data.text.SetValue(QLatin1String("along"), false);
    grainFeature->data.link.SetPointedObject(sheetFeature, false);
    machineFeature->SetText(QLatin1String("machine"));
    machineFeature->data.link.SetPointedObject(steelFeature, false);
    for (ZAXFeatObject* linked : QList<ZAXFeatObject*>{gasFeature, headFeature, machineFeature, nullptr, drawerFeature})
        machineFeature->links.Add(linked, false);
    headFeature->data.link.SetPointedObject(machineFeature, false);
    nozzleFeature->data.link.SetPointedObject(grainFeature, false);
    nozzleFeature->links.Add(nozzleFeature, false);

    root = rootFeature->GetId();
    steel = steelFeature->GetId();
    gas = gasFeature->GetId();
    sheet = sheetFeature->GetId();
    grain = grainFeature->GetId();
    shelf = shelfFeature->GetId();
    brass = brassFeature->GetId();
    brassGas = brassGasFeature->GetId();
    machine = machineFeature->GetId();
    head = headFeature->GetId();
    drawer = drawerFeature->GetId();
    nozzle = nozzleFeature->GetId();
    home = document.Encode();
    QCOMPARE(ProbesIn(home).size(), 6);
}

void tst_missing_modules::missingObjectsAreListedAndWrittenBack()
{
    ZAXHostDocument document;
    ZAXProbeData::calls = 0;
    QVERIFY(LoadBytes(document, home));
    QCOMPARE(ZAXProbeData::calls, 0);
    QCOMPARE(document.Encode(), home);
    QVERIFY(!document.IsDamaged());
    QVERIFY(!document.IsModified());
    const auto messages = MessagesOf(document, ZAXHostProblem::Unavailable);
    QCOMPARE(messages.size(), 6);
    QCOMPARE(messages.constFirst(),
             QStringLiteral("The object %1 of class ZAXProbeGas is not available: no loaded module provides the class.")
                 .arg(gas));
    QCOMPARE(document.GetProblems().size(), 6);
    QCOMPARE(document.GetProblems().constFirst().id, gas);
    QCOMPARE(document.GetProblems().constFirst().className, QByteArray("ZAXProbeGas"));

    const auto* const placeholder = At<ZAXHostPlaceholder>(document, gas);
    QCOMPARE(placeholder->GetLabel(), QLatin1String("ZAXProbeGas (not available)"));
    QCOMPARE(placeholder->GetReason(), QLatin1String("no loaded module provides the class."));
    QCOMPARE(placeholder->GetClasses().constFirst().version, 2);
    QCOMPARE(At<ZAXMatMaterial>(document, steel)->GetExtensions(), QList<ZAXMatMaterialExtension*>{nullptr});
    QVERIFY(!At<ZAXMatMaterial>(document, steel)->GetExtension("ZAXProbeGas", false));
    QCOMPARE(At<ZAXFeatFolder>(document, drawer)->GetParent()->GetId(), head);

    const Modules modules;
    ZAXHostDocument again;
    QVERIFY(LoadBytes(again, document.Encode()));
    QVERIFY(again.GetProblems().isEmpty());
    QCOMPARE(At<ZAXProbeGas>(again, gas)->data.link.GetPointedObject()->GetId(), head);
    QCOMPARE(again.Encode(), home);
}

void tst_missing_modules::documentComesHomeAfterThreeSavings()
{
    QTemporaryDir folder(QDir::tempPath() + QString::fromUtf8("/zax ø XXXXXX"));
    const QString path = folder.filePath(QLatin1String("away.zaxdoc"));
    ZAXHostDocument document;
    QVERIFY(LoadBytes(document, home));
    for (int i = 0; i < 3; ++i) {
        At<ZAXMatMaterial>(document, steel)->SetThickness(4.0 + i);
        At<ZAXMatMaterial>(document, brass)->SetLabel(QString::number(i));
        QVERIFY(ZAXHostDuplicator::Duplicate(At<ZAXFeatObject>(document, steel)));
        QVERIFY(ZAXHostDuplicator::Duplicate(At<ZAXFeatObject>(document, machine)));
        QVERIFY(At<ZAXFeatObject>(document, shelf)->MoveTo(At<ZAXFeatObject>(document, root), i));
        QVERIFY(document.SaveAs(path));
        QVERIFY(document.Open(path));
        QVERIFY(!document.IsModified());
    }
    const auto away = ProbesIn(document.Encode());
    const auto original = ProbesIn(home);
    QCOMPARE(away.size(), 6 + 3 * 5);
    for (auto probe = original.cbegin(); probe != original.cend(); ++probe)
        QCOMPARE(away.value(probe.key()), probe.value());

    const Modules modules;
    QVERIFY(document.Open(path));
    QVERIFY(document.GetProblems().isEmpty());
    QCOMPARE(ProbesIn(document.Encode()), away);
    const auto* const gasFeature = At<ZAXProbeGas>(document, gas);
    QCOMPARE(At<ZAXMatMaterial>(document, steel)->GetThickness(), 6.0);
    QCOMPARE(At<ZAXMatMaterial>(document, steel)->GetExtensions().size(), 1);
    QCOMPARE(At<ZAXMatMaterial>(document, steel)->GetExtension("ZAXProbeGas", false), gasFeature);
    QVERIFY(gasFeature->IsExtensionEnabled());
    QCOMPARE(gasFeature->data.text.GetValue(), QString::fromUtf8("Nitrogen, 99,9 % – für Öfen"));
    QCOMPARE(gasFeature->data.link.GetObject(), At<ZAXFeatObject>(document, head));
    const auto links = At<ZAXProbePart>(document, machine)->links.GetObjects();
    QCOMPARE(links, (QList<ZAXFeatObject*>{At<ZAXFeatObject>(document, gas), At<ZAXFeatObject>(document, head),
                                           At<ZAXFeatObject>(document, machine), nullptr,
                                           At<ZAXFeatObject>(document, drawer)}));
    QCOMPARE(At<ZAXProbePart>(document, nozzle)->data.link.GetObject(), At<ZAXFeatObject>(document, grain));
    QCOMPARE(At<ZAXProbePart>(document, nozzle)->links.GetObjects(),
             QList<ZAXFeatObject*>{At<ZAXFeatObject>(document, nozzle)});
    QCOMPARE(At<ZAXMatPackaging>(document, sheet)->GetExtension("ZAXProbeGrain", false),
             At<ZAXFeatObject>(document, grain));
}

void tst_missing_modules::placeholdersAreDuplicatedWithTheirParents()
{
    ZAXHostDocument document;
    QVERIFY(LoadBytes(document, home));
    const quint64 steelCopy = ZAXHostDuplicator::Duplicate(At<ZAXFeatObject>(document, steel))->GetId();
    const quint64 machineCopy = ZAXHostDuplicator::Duplicate(At<ZAXFeatObject>(document, machine))->GetId();
    const QByteArray away = document.Encode();
    const auto original = ProbesIn(home);
    const auto probes = ProbesIn(away);
    for (auto probe = original.cbegin(); probe != original.cend(); ++probe)
        QCOMPARE(probes.value(probe.key()), probe.value());

    const Modules modules;
    QVERIFY(LoadBytes(document, away));
    QVERIFY(document.GetProblems().isEmpty());
    auto* const material = At<ZAXMatMaterial>(document, steelCopy);
    const auto* const gasCopy = qobject_cast<ZAXProbeGas*>(material->GetExtension("ZAXProbeGas", false));
    QVERIFY(gasCopy);
    QCOMPARE(gasCopy->GetParent(), material);
    QCOMPARE(gasCopy->data.text.GetValue(), At<ZAXProbeGas>(document, gas)->data.text.GetValue());
    QCOMPARE(gasCopy->data.link.GetObject()->GetId(), head);
    auto* const packaging = material->GetPackaging().constFirst();
    const auto* const grainCopy = qobject_cast<ZAXProbeGrain*>(packaging->GetExtension("ZAXProbeGrain", false));
    QCOMPARE(grainCopy->data.link.GetObject(), packaging);
    const auto* const part = At<ZAXProbePart>(document, machineCopy);
    const auto* const headCopy = qobject_cast<ZAXProbePart*>(part->GetChildren().constFirst());
    QCOMPARE(headCopy->data.link.GetObject(), part);
    QCOMPARE(part->data.link.GetObject()->GetId(), steel);
    QCOMPARE(part->links.GetObjects().at(0)->GetId(), gas);
    QCOMPARE(part->links.GetObjects().at(1), headCopy);
    QCOMPARE(part->links.GetObjects().at(2), part);
}

void tst_missing_modules::placeholdersMoveAndComeBack()
{
    ZAXHostDocument document;
    QVERIFY(LoadBytes(document, home));
    auto* const placeholder = At<ZAXFeatObject>(document, gas);
    auto* const bin = document.GetContainer()->CreateInstance("ZAXFeatFolder", At<ZAXFeatObject>(document, brass));
    const QByteArray before = document.Encode();
    QVERIFY(placeholder->MoveTo(At<ZAXFeatObject>(document, brass), 0));
    QVERIFY(placeholder->MoveTo(bin, 0));
    QVERIFY(!placeholder->MoveTo(At<ZAXFeatObject>(document, sheet), 0));
    QVERIFY(!placeholder->MoveTo(At<ZAXFeatObject>(document, shelf), 0));
    QVERIFY(!placeholder->MoveTo(At<ZAXFeatObject>(document, root), 0));
    QVERIFY(!placeholder->MoveTo(At<ZAXFeatObject>(document, machine), 0));
    // What stands in a placeholder's place may change its place there, and leave, but not enter another one.
    QVERIFY(At<ZAXFeatObject>(document, head)->MoveTo(At<ZAXFeatObject>(document, machine), 0));
    QVERIFY(!At<ZAXFeatObject>(document, head)->MoveTo(placeholder, 0));
    const QByteArray away = document.Encode();
    QCOMPARE(ProbesIn(away), ProbesIn(home));
    QVERIFY(document.GetUndo().Undo());
    QVERIFY(document.GetUndo().Undo());
    QCOMPARE(document.Encode(), before);

    const Modules modules;
    QVERIFY(LoadBytes(document, away));
    QVERIFY(document.GetProblems().isEmpty());
    QCOMPARE(At<ZAXProbeGas>(document, gas)->GetParent()->GetLabel(), QLatin1String("Folder"));
}

void tst_missing_modules::removedPlaceholderLeavesNoReference()
{
    ZAXHostDocument document;
    QVERIFY(LoadBytes(document, home));
    At<ZAXFeatObject>(document, gas)->Remove();
    At<ZAXFeatObject>(document, grain)->Remove();
    QVERIFY(At<ZAXMatMaterial>(document, steel)->GetExtensions().isEmpty());
    QVERIFY(At<ZAXMatPackaging>(document, sheet)->GetExtensions().isEmpty());
    const QByteArray away = document.Encode();
    while (document.GetUndo().GetStack()->canUndo())
        QVERIFY(document.GetUndo().Undo());
    QCOMPARE(document.Encode(), home);

    // What only other placeholders know of them stays as it is, and leads nowhere.
    const Modules modules;
    QVERIFY(LoadBytes(document, away));
    QVERIFY(At<ZAXMatMaterial>(document, steel)->GetExtensions().isEmpty());
    QVERIFY(!At<ZAXProbeGas>(document, brassGas)->data.link.GetObject());
    QCOMPARE(At<ZAXProbeGas>(document, brassGas)->data.link.GetReference().GetId(), gas);
    QCOMPARE(MessagesOf(document, ZAXHostProblem::Unresolved).size(), 3);
    QCOMPARE(document.Encode(), away);
}

void tst_missing_modules::undoBringsPlaceholdersBack()
{
    ZAXHostDocument document;
    QVERIFY(LoadBytes(document, home));
    const QPointer<ZAXFeatObject> placeholder = At<ZAXFeatObject>(document, nozzle);
    At<ZAXFeatObject>(document, steel)->Remove();
    At<ZAXFeatObject>(document, machine)->Remove();
    ZAXHostDuplicator::Duplicate(At<ZAXFeatObject>(document, brass));
    QVERIFY(!At<ZAXFeatObject>(document, nozzle));
    const QByteArray after = document.Encode();
    for (int i = 0; i < 3; ++i)
        QVERIFY(document.GetUndo().Undo());
    QCOMPARE(document.Encode(), home);
    QCOMPARE(At<ZAXFeatObject>(document, nozzle), placeholder.data());
    for (int i = 0; i < 3; ++i)
        QVERIFY(document.GetUndo().Redo());
    QCOMPARE(document.Encode(), after);
}

void tst_missing_modules::materialIsEditedAndUndoneBesideItsPlaceholder()
{
    ZAXHostDocument document;
    QVERIFY(LoadBytes(document, home));
    auto* const material = At<ZAXMatMaterial>(document, steel);
    material->SetThickness(9.0);
    {
        ZAXHostTransaction transaction(document.GetUndo(), QLatin1String("Try"));
        material->SetComment(QLatin1String("no"));
        At<ZAXFeatObject>(document, gas)->Remove();
    }
    QCOMPARE(material->GetExtensions().size(), 1);
    QVERIFY(document.GetUndo().Undo());
    QCOMPARE(document.Encode(), home);
}

void tst_missing_modules::placeholderRefusesChildren()
{
    ZAXHostDocument document;
    QVERIFY(LoadBytes(document, home));
    auto* const placeholder = At<ZAXFeatObject>(document, machine);
    QVERIFY(!placeholder->IsChildAllowed(&ZAXFeatFolder::staticMetaObject));
    QVERIFY(!document.GetContainer()->CreateInstance("ZAXFeatFolder", placeholder));
    QVERIFY(!At<ZAXFeatObject>(document, shelf)->MoveTo(placeholder, 0));
    QVERIFY(!document.GetContainer()->CreateInstance("ZAXProbePart", nullptr));
    QCOMPARE(document.Encode(), home);
}

void tst_missing_modules::referenceToAPlaceholderFollowsTheNewTarget()
{
    // Only the first module is missing: the second one's parts point at its objects.
    ZAXHostDocument document;
    ZAXGeoContainer::RegisterType(&ZAXProbePart::staticMetaObject);
    const auto loaded = LoadBytes(document, home);
    auto* const part = At<ZAXProbePart>(document, nozzle);
    ZAXGeoContainer::UnregisterType(&ZAXProbePart::staticMetaObject);
    QVERIFY(loaded);
    QVERIFY(part);
    QVERIFY(!part->data.link.GetObject());
    QCOMPARE(part->data.link.GetReference().GetId(), grain);
    QCOMPARE(document.Encode(), home);
    part->data.link.SetPointedObject(part, false);
    QCOMPARE(part->data.link.GetReference().GetId(), nozzle);
    QVERIFY(document.GetUndo().Undo());
    QCOMPARE(part->data.link.GetReference().GetId(), grain);
    QCOMPARE(document.Encode(), home);
}

void tst_missing_modules::newerClassVersionIsKept()
{
    const Modules modules;
    const QByteArray newer = Edited(gas, [](ZAXHostDocumentImage& image, ZAXHostDocumentRecord& record) {
        auto chain = image.GetChain(record.classIndex);
        chain.first().version = 7;
        record.classIndex = image.AddClass(chain);
        record.payload += "what version 7 added";
    });
    ZAXHostDocument document;
    QVERIFY(LoadBytes(document, newer));
    QCOMPARE(MessagesOf(document, ZAXHostProblem::Unavailable),
             QStringList{QStringLiteral("The object %1 of class ZAXProbeGas is not available: it was saved by a newer "
                                        "program (version 7 of ZAXProbeGas, this program knows version 2).")
                             .arg(gas)});
    QVERIFY(At<ZAXHostPlaceholder>(document, gas));
    QVERIFY(At<ZAXProbeGas>(document, brassGas));
    QCOMPARE(ProbesIn(document.Encode()), ProbesIn(newer));
}

void tst_missing_modules::newerBaseClassVersionIsKept()
{
    const Modules modules;
    const QByteArray newer = Edited(grain, [](ZAXHostDocumentImage& image, ZAXHostDocumentRecord& record) {
        auto chain = image.GetChain(record.classIndex);
        chain[1].version = 2;
        record.classIndex = image.AddClass(chain);
    });
    ZAXHostDocument document;
    QVERIFY(LoadBytes(document, newer));
    QCOMPARE(MessagesOf(document, ZAXHostProblem::Unavailable).size(), 1);
    QVERIFY(MessagesOf(document, ZAXHostProblem::Unavailable)
                .constFirst()
                .contains(QLatin1String("version 2 of ZAXMatPackagingExtension, this program knows version 1")));
    QCOMPARE(ProbesIn(document.Encode()), ProbesIn(newer));
}

void tst_missing_modules::objectThatDoesNotTakeItsDataIsKept_data()
{
    QTest::addColumn<QByteArray>("failAt");
    QTest::addColumn<int>("cutOff");
    QTest::addColumn<QByteArray>("added");
    QTest::addColumn<QString>("why");
    const QString unreadable = QLatin1String("The data of the object are not what its class reads.");
    QTest::newRow("too little") << QByteArray() << 3 << QByteArray() << unreadable;
    QTest::newRow("nothing") << QByteArray() << 1000 << QByteArray() << unreadable;
    QTest::newRow("too much") << QByteArray() << 0 << QByteArray("x") << unreadable;
    QTest::newRow("making throws") << QByteArray("making") << 0 << QByteArray() << "The probe fails at making.";
    QTest::newRow("Load throws") << QByteArray("Load") << 0 << QByteArray() << "The probe fails at Load.";
    QTest::newRow("EndStateLoad throws") << QByteArray("EndStateLoad") << 0 << QByteArray()
                                         << "The probe fails at EndStateLoad.";
}

void tst_missing_modules::objectThatDoesNotTakeItsDataIsKept()
{
    QFETCH(QByteArray, failAt);
    QFETCH(int, cutOff);
    QFETCH(QByteArray, added);
    QFETCH(QString, why);
    const QByteArray edited = Edited(brassGas, [&](ZAXHostDocumentImage&, ZAXHostDocumentRecord& record) {
        record.payload.chop(cutOff);
        record.payload += added;
    });
    ZAXHostDocument document;
    {
        ZAXGeoContainer::RegisterType(&ZAXProbeGas::staticMetaObject);
        ZAXProbeData::failAt = failAt.constData();
        const auto result = LoadBytes(document, edited);
        ZAXProbeData::failAt = "";
        ZAXGeoContainer::UnregisterType(&ZAXProbeGas::staticMetaObject);
        QVERIFY(result);
    }
    QVERIFY(At<ZAXHostPlaceholder>(document, brassGas));
    QCOMPARE(At<ZAXHostPlaceholder>(document, brassGas)->GetReason(), why);
    QCOMPARE(document.Encode(), edited);
}

void tst_missing_modules::classWithoutAConstructorIsKept()
{
    // A class of that name that is no feature class at all.
    struct Impostor
    {
        static QMetaObject Make()
        {
            QMetaObject type = ZAXGeoContainer::staticMetaObject;
            type.d.stringdata = ZAXProbeGrain::staticMetaObject.d.stringdata;
            return type;
        }
    };
    const QMetaObject impostor = Impostor::Make();
    ZAXGeoContainer::RegisterType(&impostor);
    ZAXHostDocument document;
    const auto result = LoadBytes(document, home);
    ZAXGeoContainer::UnregisterType(&impostor);
    QVERIFY(result);
    QVERIFY(At<ZAXHostPlaceholder>(document, grain));
    QCOMPARE(document.Encode(), home);
}

void tst_missing_modules::referenceToNothingIsKept()
{
    const Modules modules;
    const QByteArray edited = Edited(brassGas, [](ZAXHostDocumentImage& image, ZAXHostDocumentRecord& record) {
        record.references = {ZAXGeoGeometryRef::FromId(777)};
        image.lastId = 777;
    });
    ZAXHostDocument document;
    QVERIFY(LoadBytes(document, edited));
    QCOMPARE(
        MessagesOf(document, ZAXHostProblem::Unresolved),
        QStringList{QStringLiteral("The object %1 refers to the object 777, which does not exist.").arg(brassGas)});
    QCOMPARE(document.GetProblems().size(), 1);
    QVERIFY(!At<ZAXProbeGas>(document, brassGas)->data.link.GetObject());
    QCOMPARE(document.Encode(), edited);
    // The id that the reference names is given to nobody.
    QVERIFY(document.GetContainer()->CreateInstance("ZAXFeatFolder", nullptr)->GetId() > 777);
}

void tst_missing_modules::referenceToAnotherKindIsKept()
{
    const Modules modules;
    // A material whose list of extensions names a folder.
    const QByteArray edited = Edited(brass, [&](ZAXHostDocumentImage&, ZAXHostDocumentRecord& record) {
        record.references = {ZAXGeoGeometryRef::FromId(shelf)};
    });
    ZAXHostDocument document;
    QVERIFY(LoadBytes(document, edited));
    QVERIFY(At<ZAXHostPlaceholder>(document, brass));
    QVERIFY(At<ZAXProbeGas>(document, brassGas));
    QCOMPARE(document.Encode(), edited);
}

void tst_missing_modules::undoWorksBesideAReferenceToNothing()
{
    const Modules modules;
    const QByteArray edited = Edited(brassGas, [](ZAXHostDocumentImage& image, ZAXHostDocumentRecord& record) {
        record.references = {ZAXGeoGeometryRef::FromId(777)};
        image.lastId = 777;
    });
    ZAXHostDocument document;
    QVERIFY(LoadBytes(document, edited));
    At<ZAXProbeGas>(document, brassGas)->data.text.SetValue(QLatin1String("new"), false);
    const auto* const copy = ZAXHostDuplicator::Duplicate(At<ZAXFeatObject>(document, brass));
    QCOMPARE(qobject_cast<const ZAXProbeGas*>(copy->GetChildren().constFirst())->data.link.GetReference().GetId(),
             quint64(777));
    QVERIFY(document.GetUndo().Undo());
    QVERIFY(document.GetUndo().Undo());
    QCOMPARE(document.Encode(), edited);
}

void tst_missing_modules::instancesAreFoundWhereverTheyWait()
{
    const Modules modules;
    ZAXHostDocument document;
    QVERIFY(LoadBytes(document, home));
    auto* const gasFeature = At<ZAXFeatObject>(document, gas);
    auto* const brassGasFeature = At<ZAXFeatObject>(document, brassGas);
    At<ZAXFeatObject>(document, steel)->Remove();
    QCOMPARE(document.GetInstances(&ZAXProbeGas::staticMetaObject),
             (QList<ZAXFeatObject*>{gasFeature, brassGasFeature}));
    QCOMPARE(document.GetInstances(&ZAXMatMaterialExtension::staticMetaObject).size(), 2);
    QCOMPARE(document.GetInstances(&ZAXProbePart::staticMetaObject).size(), 3);
    QVERIFY(document.GetInstances(&ZAXHostPlaceholder::staticMetaObject).isEmpty());
    QVERIFY(document.GetUndo().Clear());
    QCOMPARE(document.GetInstances(&ZAXProbeGas::staticMetaObject), QList<ZAXFeatObject*>{brassGasFeature});
}

void tst_missing_modules::conversionKeepsEveryByte()
{
    const Modules modules;
    ZAXHostDocument document;
    QVERIFY(LoadBytes(document, home));
    At<ZAXMatMaterial>(document, steel)->SetComment(QLatin1String("changed"));
    const QByteArray before = document.Encode();
    QVERIFY(document.ConvertToPlaceholders(Modules::Types()));
    QCOMPARE(document.Encode(), before);
    QCOMPARE(MessagesOf(document, ZAXHostProblem::Unavailable).size(), 6);
    QVERIFY(!document.GetUndo().GetStack()->canUndo());
    for (const QMetaObject* type : Modules::Types())
        QVERIFY(document.GetInstances(type).isEmpty());
    QVERIFY(LoadBytes(document, document.Encode()));
    QVERIFY(document.GetProblems().isEmpty());
    QCOMPARE(document.Encode(), before);
}

void tst_missing_modules::conversionLeavesNoCodeOfTheClassInUse()
{
    ZAXHostDocument document;
    {
        const Modules modules;
        QVERIFY(LoadBytes(document, home));
        At<ZAXProbeGas>(document, gas)->data.text.SetValue(QLatin1String("new"), false);
        At<ZAXFeatObject>(document, machine)->Remove();
        ZAXHostDuplicator::Duplicate(At<ZAXFeatObject>(document, brass));
        QVERIFY(document.ConvertToPlaceholders(Modules::Types()));
    }
    ZAXProbeData::calls = 0;
    At<ZAXMatMaterial>(document, steel)->SetThickness(8.0);
    ZAXHostDuplicator::Duplicate(At<ZAXFeatObject>(document, steel));
    At<ZAXFeatObject>(document, steel)->Remove();
    while (document.GetUndo().GetStack()->canUndo())
        QVERIFY(document.GetUndo().Undo());
    QVERIFY(document.GetUndo().Redo());
    QVERIFY(LoadBytes(document, document.Encode()));
    QCOMPARE(ZAXProbeData::calls, 0);
}

void tst_missing_modules::conversionKeepsWhatTheUserChose()
{
    ZAXFeatLastSavedStore::SetCurrent(nullptr);
    const Modules modules;
    ZAXHostDocument document;
    QVERIFY(LoadBytes(document, home));
    const auto thickness = [] {
        return ZAXFeatLastSavedStore::GetCurrent().GetValue("ZAXMatMaterial", "thickness").toDouble();
    };
    At<ZAXMatMaterial>(document, steel)->SetThickness(5.0);
    At<ZAXMatMaterial>(document, brass)->SetThickness(2.0);
    At<ZAXMatMaterial>(document, steel)->SetThickness(6.0);
    QCOMPARE(thickness(), 6.0);
    QVERIFY(document.ConvertToPlaceholders(Modules::Types()));
    QCOMPARE(thickness(), 6.0);
}

void tst_missing_modules::conversionKeepsTheChangedMark()
{
    const Modules modules;
    ZAXHostDocument document;
    QVERIFY(LoadBytes(document, home));
    QVERIFY(document.ConvertToPlaceholders({&ZAXProbeGas::staticMetaObject}));
    QVERIFY(!document.IsModified());
    At<ZAXMatMaterial>(document, steel)->SetThickness(5.0);
    QVERIFY(document.ConvertToPlaceholders({&ZAXProbeGrain::staticMetaObject}));
    QVERIFY(document.IsModified());
}

void tst_missing_modules::conversionIsRefusedDuringAChange()
{
    const Modules modules;
    ZAXHostDocument document;
    QVERIFY(LoadBytes(document, home));
    At<ZAXMatMaterial>(document, steel)->SetThickness(5.0);
    ZAXHostTransaction transaction(document.GetUndo(), QLatin1String("Open"));
    const auto* const container = document.GetContainer();
    QCOMPARE(document.ConvertToPlaceholders(Modules::Types()).GetMessage(),
             QLatin1String("A change of the document is still under way."));
    QCOMPARE(document.GetContainer(), container);
    QVERIFY(document.GetUndo().GetStack()->canUndo());
}

void tst_missing_modules::conversionIsRefusedForWhatSomebodyHolds()
{
    const Modules modules;
    ZAXHostDocument document;
    QVERIFY(LoadBytes(document, home));
    auto* const held = At<ZAXMatMaterial>(document, steel);
    held->SetLabel(QLatin1String("Steel"));
    held->AddReference();
    held->Remove();
    QCOMPARE(document.ConvertToPlaceholders(Modules::Types()).GetMessage(), QLatin1String("Steel is still in use."));
    QCOMPARE(document.GetInstances(&ZAXMatMaterial::staticMetaObject).contains(held), true);
    QVERIFY(document.GetUndo().Undo());
    held->RemoveReference();
    QVERIFY(document.ConvertToPlaceholders(Modules::Types()));
}

void tst_missing_modules::conversionBringsNothingToLife()
{
    ZAXHostDocument document;
    QVERIFY(LoadBytes(document, home));
    const Modules modules;
    QVERIFY(document.GetInstances(&ZAXProbeGas::staticMetaObject).isEmpty());
    QVERIFY(document.ConvertToPlaceholders(Modules::Types()));
    for (const QMetaObject* type : Modules::Types())
        QVERIFY(document.GetInstances(type).isEmpty());
}

void tst_missing_modules::idsAreNotGivenAgainAfterConversion()
{
    const Modules modules;
    ZAXHostDocument document;
    QVERIFY(LoadBytes(document, home));
    auto* const extra = document.GetContainer()->CreateInstance("ZAXFeatFolder", nullptr);
    const quint64 id = extra->GetId();
    extra->Remove();
    QVERIFY(document.ConvertToPlaceholders(Modules::Types()));
    QVERIFY(document.GetContainer()->CreateInstance("ZAXFeatFolder", nullptr)->GetId() > id);
}

QTEST_GUILESS_MAIN(tst_missing_modules)
#include "tst_missing_modules.moc"
