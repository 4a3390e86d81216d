#include "JobDocument.h"

#include "ZAXHostDocument.h"

#include <QFile>
#include <QJsonDocument>
#include <QTest>

/// What "zaxmat document store" makes of a catalogue.
class tst_ZaxmatDocumentStore : public QObject
{
    Q_OBJECT

private slots:
    void changesTheRecordThatTheMaterialCameFrom();
    void valuesAreStoredPlainly();
    void whatIsThereAlreadyIsNotWritten();
    void whatTheRecordHasBesidesStays();
    void otherThicknessIsANewRecord();
    void newRecordHoldsNothingButValues();
    void customisedIdIsStored();
    void materialOfThatNameAndThicknessIsNotDoubled();
    void newAddsInAnyCase();
    void recordIsNamed();
    void unclearRecordIsRefused_data();
    void unclearRecordIsRefused();
    void stockFormsAreStoredWhereAsked();
    void stockFormsOfOneNameAreKeptApart();
    void missingObjectsAreNotStored();
    void catalogueIsMade();
    void whatACatalogueMustNotHoldIsRefused();
    void invalidMaterialIsRefused();
    void damagedDocumentIsRefused();
    void lockedDocumentCanBeStored();
    void malformedCatalogueIsLeftAlone();
    void theDocumentStaysAsItIs();
    void changesAsJson();
};

namespace {

QJsonObject Root(const Workshop& workshop)
{
    return QJsonDocument::fromJson(Workshop::Read(workshop.CatalogueFile())).object();
}

QJsonObject Record(const Workshop& workshop, const QString& key)
{
    return Root(workshop).value(key).toObject();
}

QJsonObject Values(const QJsonObject& record)
{
    return record.value("properties").toObject().value("").toObject();
}

/// The records of the catalogue that are not in the small one.
QList<QJsonObject> NewRecords(const Workshop& workshop)
{
    QJsonObject root = Root(workshop);
    for (const QJsonObject& record : SmallCatalogue())
        root.remove(record.value("key").toString());
    QList<QJsonObject> records;
    for (const QJsonValue& record : root)
        records.append(record.toObject());
    return records;
}

/// A workshop with the small catalogue and the document of a job.
class StoreFolder : public Workshop
{
public:
    StoreFolder() : document(*this) { WriteCatalogue(SmallCatalogue()); }

    Run Set(const QStringList& arguments) const { return Document("set", arguments); }
    Run StoreMaterial(const QStringList& arguments) const { return Document("store", arguments); }

    JobDocument document;

private:
    Run Document(const QString& command, const QStringList& arguments) const
    {
        return Zaxmat(QStringList{"document", command, "job ø 1.zaxdoc"} + arguments);
    }
};

} // namespace

void tst_ZaxmatDocumentStore::changesTheRecordThatTheMaterialCameFrom()
{
    const StoreFolder store;
    QCOMPARE(store.Set({"@2", "density=7.9", "comment=Oiled"}).code, 0);
    const Run run = store.StoreMaterial({"@2"});
    QVERIFY2(run.out.endsWith("records added: 0, changed: 1\n"), qUtf8Printable(run.out + run.err));
    QCOMPARE(run.code, 0);
    const QJsonObject record = Record(store, "steel-2");
    QCOMPARE(record.value("name"), "Steel");
    QCOMPARE(Values(record).value("density"), 7.9);
    QCOMPARE(Values(record).value("comment"), "Oiled");
    QCOMPARE(Record(store, "steel-2-large"), SmallCatalogue().at(2));
    QVERIFY(NewRecords(store).isEmpty());
}

void tst_ZaxmatDocumentStore::valuesAreStoredPlainly()
{
    const StoreFolder store;
    store.WriteCatalogue(
        {Material("steel-2", "Steel", {{"materialType", "S235JR"}, {"thickness", "2 mm"}, {"density", "7850 kg/m³"}}),
         StockForm("steel-2-large", "steel-2", "Sheet large", {{"length", "3 m"}, {"form", 1}})});
    QCOMPARE(store.StoreMaterial({"@2", "--stock-forms"}).code, 0);
    QCOMPARE(Values(Record(store, "steel-2")).value("thickness"), QJsonValue(2));
    QCOMPARE(Values(Record(store, "steel-2")).value("density"), QJsonValue(7.85));
    QCOMPARE(Values(Record(store, "steel-2-large")).value("length"), QJsonValue(3000));
    QCOMPARE(Values(Record(store, "steel-2-large")).value("form"), QJsonValue("Rectangular"));
}

void tst_ZaxmatDocumentStore::whatIsThereAlreadyIsNotWritten()
{
    const StoreFolder store;
    QCOMPARE(store.StoreMaterial({"@2", "--stock-forms"}).code, 0);
    const QByteArray before = Workshop::Read(store.CatalogueFile());
    const Run run = store.StoreMaterial({"@2", "--stock-forms"});
    QVERIFY2(run.out.endsWith("holds all this already; nothing was written.\n"), qUtf8Printable(run.out));
    QCOMPARE(run.code, 0);
    QCOMPARE(Workshop::Read(store.CatalogueFile()), before);
}

void tst_ZaxmatDocumentStore::whatTheRecordHasBesidesStays()
{
    const StoreFolder store;
    QJsonObject record =
        Material("steel-2", "Steel", {{"thickness", 2}, {"supplier", "Miller"}, {"comment", QJsonValue()}});
    QJsonObject properties = record.value("properties").toObject();
    properties.insert("GasExtension", QJsonObject{{"pressure", 12}});
    record.insert("properties", properties);
    store.WriteCatalogue({record});
    QCOMPARE(store.StoreMaterial({"@2"}).code, 0);
    const QJsonObject stored = Record(store, "steel-2");
    QCOMPARE(Values(stored).value("supplier"), "Miller");
    QCOMPARE(stored.value("properties").toObject().value("GasExtension").toObject().value("pressure"), 12);
    QVERIFY(Values(stored).value("comment").isNull());
    QCOMPARE(Values(stored).value("materialType"), "S235JR");
}

void tst_ZaxmatDocumentStore::otherThicknessIsANewRecord()
{
    const StoreFolder store;
    QCOMPARE(store.Set({"@2", "thickness=2.5"}).code, 0);
    const Run run = store.StoreMaterial({"@2"});
    QVERIFY2(run.out.endsWith("records added: 1, changed: 0\n"), qUtf8Printable(run.out));
    QCOMPARE(Record(store, "steel-2"), SmallCatalogue().at(0));
    QCOMPARE(NewRecords(store).size(), 1);
    QCOMPARE(Values(NewRecords(store).constFirst()).value("thickness"), 2.5);
}

void tst_ZaxmatDocumentStore::newRecordHoldsNothingButValues()
{
    const StoreFolder store;
    QCOMPARE(store.StoreMaterial({"@6"}).code, 0);
    const QJsonObject record = NewRecords(store).constFirst();
    QCOMPARE(record.value("name"), "Steel");
    QCOMPARE(record.value("type"), 0);
    QCOMPARE(record.value("key").toString().size(), 38);
    QCOMPARE(record.value("properties").toObject().keys(), QStringList{""});
    QCOMPARE(
        Values(record),
        (QJsonObject{
            {"category", "Metal"}, {"comment", ""}, {"density", 7.85}, {"materialType", "S235JR"}, {"thickness", 3}}));
}

void tst_ZaxmatDocumentStore::customisedIdIsStored()
{
    const StoreFolder store;
    QCOMPARE(store.Set({"@6", "materialId=Mine"}).code, 0);
    QCOMPARE(store.StoreMaterial({"Mine"}).code, 0);
    QCOMPARE(Values(NewRecords(store).constFirst()).value("materialId"), "Mine");
    QCOMPARE(Values(NewRecords(store).constFirst()).value("isMaterialIdCustomized"), true);
}

void tst_ZaxmatDocumentStore::materialOfThatNameAndThicknessIsNotDoubled()
{
    const StoreFolder store;
    QCOMPARE(store.Set({"@6", "label=Structural steel"}).code, 0);
    const QByteArray before = Workshop::Read(store.CatalogueFile());
    const Run run = store.StoreMaterial({"@6", "--quiet"});
    QCOMPARE(run.err,
             "zaxmat: \"Materials Root/Structural steel - 3 mm\" did not come from the catalogue \"" +
                 store.CatalogueFile() +
                 "\", which has a material of that name and thickness. Say --record KEY to change that one, or "
                 "--new to add another:\n  Structural steel, 3 mm  steel-3\n");
    QCOMPARE(run.code, 2);
    QCOMPARE(Workshop::Read(store.CatalogueFile()), before);
}

void tst_ZaxmatDocumentStore::newAddsInAnyCase()
{
    const StoreFolder store;
    QCOMPARE(store.StoreMaterial({"@2", "--new", "--stock-forms"}).code, 0);
    const QList<QJsonObject> records = NewRecords(store);
    QCOMPARE(records.size(), 3);
    const auto material =
        std::ranges::find(records, QJsonValue(0), [](const auto& each) { return each.value("type"); });
    const auto ownStockForms =
        std::ranges::count(records, material->value("key"), [](const auto& each) { return each.value("materialKey"); });
    QCOMPARE(ownStockForms, 2);
    QCOMPARE(Record(store, "steel-2"), SmallCatalogue().at(0));
}

void tst_ZaxmatDocumentStore::recordIsNamed()
{
    const StoreFolder store;
    QCOMPARE(store.StoreMaterial({"@6", "--record", "steel-3"}).code, 0);
    QCOMPARE(Record(store, "steel-3").value("name"), "Steel");
    QVERIFY(NewRecords(store).isEmpty());
}

void tst_ZaxmatDocumentStore::unclearRecordIsRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    QTest::newRow("unknown record") << QStringList{"@2", "--record", "gold"} << "The catalogue \"";
    QTest::newRow("ambiguous record") << QStringList{"@2", "--record", "Structural steel"}
                                      << "Several materials are called \"Structural steel\". Choose one by its key:\n";
    QTest::newRow("no material") << QStringList{"@3"}
                                 << "\"Materials Root/Steel - 2 mm/Sheet large\" is no material.\n";
    QTest::newRow("both ways") << QStringList{"@2", "--record", "steel-2", "--new"} << "--record excludes --new\n";
    QTest::newRow("unknown material") << QStringList{"Gold"}
                                      << "The document \"job ø 1.zaxdoc\" has no object \"Gold\".";
}

void tst_ZaxmatDocumentStore::unclearRecordIsRefused()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    const StoreFolder store;
    const QByteArray before = Workshop::Read(store.CatalogueFile());
    const Run run = store.StoreMaterial(arguments + QStringList{"--quiet"});
    QVERIFY2(run.err.startsWith("zaxmat: " + message), qUtf8Printable(run.err));
    QCOMPARE(run.out, "");
    QCOMPARE(run.code, 2);
    QCOMPARE(Workshop::Read(store.CatalogueFile()), before);
}

void tst_ZaxmatDocumentStore::stockFormsAreStoredWhereAsked()
{
    const StoreFolder store;
    QCOMPARE(store.Set({"@3", "cost=99"}).code, 0);
    QCOMPARE(store.Set({"@4", "cost=88"}).code, 0);
    QCOMPARE(store.StoreMaterial({"@2"}).code, 0);
    QCOMPARE(Record(store, "steel-2-large"), SmallCatalogue().at(2));
    QCOMPARE(store.StoreMaterial({"@2", "--stock-forms"}).code, 0);
    QCOMPARE(Values(Record(store, "steel-2-large")).value("cost"), 99);
    // This one has no key, but the name of a record.
    QCOMPARE(Values(Record(store, "steel-2-small")).value("cost"), 88);
    QCOMPARE(Record(store, "steel-2-coil"), SmallCatalogue().at(3));
    QVERIFY(NewRecords(store).isEmpty());
}

void tst_ZaxmatDocumentStore::stockFormsOfOneNameAreKeptApart()
{
    const StoreFolder store;
    QCOMPARE(store.Set({"@3", "label=Sheet small"}).code, 0);
    QCOMPARE(store.Zaxmat({"document", "duplicate", "job ø 1.zaxdoc", "@4", "length=777"}).code, 0);
    QCOMPARE(store.StoreMaterial({"@2", "--stock-forms"}).code, 0);
    QCOMPARE(Record(store, "steel-2-large").value("name"), "Sheet small");
    QCOMPARE(Values(Record(store, "steel-2-small")).value("length"), 2000);
    QCOMPARE(NewRecords(store).size(), 1);
    QCOMPARE(Values(NewRecords(store).constFirst()).value("length"), 777);
    QCOMPARE(NewRecords(store).constFirst().value("materialKey"), "steel-2");
}

void tst_ZaxmatDocumentStore::missingObjectsAreNotStored()
{
    const StoreFolder store;
    const Run run = store.StoreMaterial({"@2"});
    QVERIFY2(run.err.contains("zaxmat: note: \"Materials Root/Steel - 2 mm/ForeignExtension\" is not stored: no loaded "
                              "module provides the class.\n"),
             qUtf8Printable(run.err));
    QCOMPARE(Record(store, "steel-2").value("properties").toObject().keys(), QStringList{""});
}

void tst_ZaxmatDocumentStore::catalogueIsMade()
{
    const StoreFolder store;
    QVERIFY(QFile::remove(store.CatalogueFile()));
    QCOMPARE(store.StoreMaterial({"@2"}).code, 0);
    QCOMPARE(Root(store).size(), 1);
}

void tst_ZaxmatDocumentStore::whatACatalogueMustNotHoldIsRefused()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const JobDocument document(workshop);
    const QByteArray before = Workshop::Read(workshop.CatalogueFile());
    QCOMPARE(workshop.Zaxmat({"document", "set", document.GetPath(), "@2", "density=0"}).code, 0);
    const Run run = workshop.Zaxmat({"document", "store", document.GetPath(), "@2"});
    QCOMPARE(run.err, "zaxmat: \"Materials Root/Steel - 2 mm\" is not stored. These values are invalid:\n"
                      "  \"Steel\": Density: it must be greater than zero\n");
    QCOMPARE(run.code, 1);
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), before);
}

void tst_ZaxmatDocumentStore::invalidMaterialIsRefused()
{
    const StoreFolder store;
    ZAXHostDocument document;
    QVERIFY(document.Open(store.document.GetPath()));
    const auto materials = document.GetInstances(QMetaType::fromName("ZAXMatMaterial*").metaObject());
    materials.constFirst()->setProperty("thickness", 0.0);
    QVERIFY(document.SaveAs(store.document.GetPath()));
    const QByteArray before = Workshop::Read(store.CatalogueFile());
    const Run run = store.StoreMaterial({"@2", "--quiet"});
    QCOMPARE(run.err, "zaxmat: \"Materials Root/Steel - 0 mm\" is not stored. These values are invalid:\n"
                      "  \"Steel\": Thickness: The thickness is not a positive non-zero length.\n");
    QCOMPARE(run.code, 1);
    QCOMPARE(Workshop::Read(store.CatalogueFile()), before);
}

void tst_ZaxmatDocumentStore::damagedDocumentIsRefused()
{
    const StoreFolder store;
    store.document.Damage("Sheet small");
    const QByteArray before = Workshop::Read(store.CatalogueFile());
    const QByteArray document = store.document.GetBytes();
    QCOMPARE(store.StoreMaterial({"@2"}).code, 3);
    QCOMPARE(Workshop::Read(store.CatalogueFile()), before);
    QCOMPARE(store.StoreMaterial({"@2", "--accept-damage"}).code, 0);
    QCOMPARE(Record(store, "steel-2").value("name"), "Steel");
    QCOMPARE(store.document.GetBytes(), document);
}

void tst_ZaxmatDocumentStore::lockedDocumentCanBeStored()
{
    const StoreFolder store;
    ZAXHostDocument open;
    QVERIFY(open.Open(store.document.GetPath()));
    const Run run = store.StoreMaterial({"@2"});
    QVERIFY2(run.err.contains("is opened by "), qUtf8Printable(run.err));
    QCOMPARE(run.code, 0);
}

void tst_ZaxmatDocumentStore::malformedCatalogueIsLeftAlone()
{
    const StoreFolder store;
    Workshop::Write(store.CatalogueFile(), "{ \"a\": ");
    QCOMPARE(store.StoreMaterial({"@2"}).code, 3);
    QCOMPARE(Workshop::Read(store.CatalogueFile()), "{ \"a\": ");
}

void tst_ZaxmatDocumentStore::theDocumentStaysAsItIs()
{
    const StoreFolder store;
    const QByteArray before = store.document.GetBytes();
    QCOMPARE(store.StoreMaterial({"@6", "--stock-forms"}).code, 0);
    QCOMPARE(store.document.GetBytes(), before);
}

void tst_ZaxmatDocumentStore::changesAsJson()
{
    const StoreFolder store;
    const Run run = store.StoreMaterial({"@2", "--format", "json"});
    const QJsonArray changes = QJsonDocument::fromJson(run.out.toUtf8()).array();
    QVERIFY(!changes.isEmpty());
    QCOMPARE(changes.at(0).toObject().value("key"), "steel-2");
    QCOMPARE(changes.at(0).toObject().value("change"), "changed");
}

QTEST_GUILESS_MAIN(tst_ZaxmatDocumentStore)
#include "tst_ZaxmatDocumentStore.moc"
