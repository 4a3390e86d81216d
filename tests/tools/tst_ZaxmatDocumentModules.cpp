#include "JobDocument.h"

#include <QJsonDocument>
#include <QTest>

/// What zaxmat makes of extensions in documents when their module is loaded, here a module of another team.
class tst_ZaxmatDocumentModules : public QObject
{
    Q_OBJECT

private slots:
    void extensionIsMadeAndSet();
    void extensionIsSetByItself();
    void wrongSettingsOfExtensionsAreRefused_data();
    void wrongSettingsOfExtensionsAreRefused();
    void extensionsAreStored();
    void extensionsAreShownWithoutTheirModule();
    void extensionsSurviveChangesWithoutTheirModule();
};

namespace {

class ModuleFolder : public Workshop
{
public:
    ModuleFolder() : document(*this)
    {
        WriteCatalogue(SmallCatalogue());
        environment.insert("MODULE", ZAX_MODULE);
    }

    Run Document(const QString& command, const QStringList& arguments) const
    {
        // By its name alone, since the folder's may hold spaces.
        return ZaxmatThrough(
            "exec env LD_LIBRARY_PATH=\"$(dirname \"$MODULE\")\" LD_PRELOAD=\"$(basename \"$MODULE\")\" \"$@\"",
            QStringList{"document", command, "job ø 1.zaxdoc"} + arguments);
    }
    QJsonObject Properties(const QString& object) const
    {
        const Run run = Document("show", {object, "--format", "json"});
        return QJsonDocument::fromJson(run.out.toUtf8()).object().value("properties").toObject();
    }

    JobDocument document;
};

} // namespace

void tst_ZaxmatDocumentModules::extensionIsMadeAndSet()
{
    const ModuleFolder folder;
    const Run run = folder.Document(
        "set", {"@6", "WorkshopGasExtension.assistGas=Oxygen", "WorkshopGasExtension.gasPressure=0,5", "thickness=4"});
    QVERIFY2(run.code == 0, qUtf8Printable(run.err));
    QCOMPARE(folder.Properties("@6").value("thickness"), 4);
    const QJsonObject values = folder.Properties("Steel - 4 mm/WorkshopGasExtension");
    QCOMPARE(values.value("assistGas"), "Oxygen");
    QCOMPARE(values.value("gasPressure"), 0.5);
    QCOMPARE(values.value("isExtensionEnabled"), false);
}

void tst_ZaxmatDocumentModules::extensionIsSetByItself()
{
    const ModuleFolder folder;
    QCOMPARE(folder.Document("set", {"@4", "WorkshopSheetExtension.grainDirection=AlongWidth"}).code, 0);
    const Run run = folder.Document("set", {"WorkshopSheetExtension", "trimMargin=0.5 in", "isExtensionEnabled=yes"});
    QVERIFY2(run.code == 0, qUtf8Printable(run.err));
    const QJsonObject values = folder.Properties("WorkshopSheetExtension");
    QCOMPARE(values.value("isExtensionEnabled"), true);
    QCOMPARE(values.value("grainDirection"), "AlongWidth");
    QCOMPARE(values.value("trimMargin"), 12.7);
}

void tst_ZaxmatDocumentModules::wrongSettingsOfExtensionsAreRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("code");
    QTest::newRow("invalid value") << QStringList{"@6", "WorkshopGasExtension.isExtensionEnabled=yes",
                                                  "WorkshopGasExtension.gasPressure=-1"}
                                   << 1;
    QTest::newRow("no number") << QStringList{"@6", "WorkshopGasExtension.gasPressure=high"} << 1;
    QTest::newRow("unknown property") << QStringList{"@6", "WorkshopGasExtension.pressure=1"} << 2;
    QTest::newRow("extension of a stock form") << QStringList{"@6", "WorkshopSheetExtension.trimMargin=1"} << 2;
}

void tst_ZaxmatDocumentModules::wrongSettingsOfExtensionsAreRefused()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, code);
    const ModuleFolder folder;
    const QByteArray before = folder.document.GetBytes();
    QCOMPARE(folder.Document("set", arguments).code, code);
    QCOMPARE(folder.document.GetBytes(), before);
}

void tst_ZaxmatDocumentModules::extensionsAreStored()
{
    const ModuleFolder folder;
    QCOMPARE(folder.Document("set", {"@2", "WorkshopGasExtension.assistGas=Oxygen"}).code, 0);
    QCOMPARE(folder.Document("store", {"@2"}).code, 0);
    QCOMPARE(folder.Document("store", {"@6"}).code, 0);
    const QJsonObject root = QJsonDocument::fromJson(Workshop::Read(folder.CatalogueFile())).object();
    const QJsonObject properties = root.value("steel-2").toObject().value("properties").toObject();
    QCOMPARE(
        properties.value("WorkshopGasExtension").toObject(),
        (QJsonObject{{"assistGas", "Oxygen"}, {"gasPressure", 0}, {"isExtensionEnabled", false}, {"piercingTime", 0}}));
    // A material without extensions gets none by way of the catalogue.
    for (const QJsonValue& record : root)
        QVERIFY(record.toObject().value("key") == "steel-2" ||
                record.toObject().value("properties").toObject().keys() == QStringList{""});
}

void tst_ZaxmatDocumentModules::extensionsAreShownWithoutTheirModule()
{
    const ModuleFolder folder;
    QCOMPARE(folder.Document("set", {"@6", "WorkshopGasExtension.assistGas=Oxygen"}).code, 0);
    const Run run = folder.Zaxmat({"document", "tree", "job ø 1.zaxdoc"});
    QVERIFY2(run.out.contains("Not available: WorkshopGasExtension (no loaded module provides the class.)"),
             qUtf8Printable(run.out));
    QCOMPARE(run.code, 0);
}

void tst_ZaxmatDocumentModules::extensionsSurviveChangesWithoutTheirModule()
{
    const ModuleFolder folder;
    QCOMPARE(folder.Document("set", {"@6", "WorkshopGasExtension.assistGas=Oxygen"}).code, 0);
    QCOMPARE(folder.Zaxmat({"document", "set", "job ø 1.zaxdoc", "@6", "thickness=5"}).code, 0);
    QCOMPARE(folder.Zaxmat({"document", "duplicate", "job ø 1.zaxdoc", "@6"}).code, 0);
    QCOMPARE(folder.Properties("Steel - 5 mm/WorkshopGasExtension").value("assistGas"), "Oxygen");
    QCOMPARE(folder.Properties("Steel - 5 mm (Copy)/WorkshopGasExtension").value("assistGas"), "Oxygen");
}

QTEST_GUILESS_MAIN(tst_ZaxmatDocumentModules)
#include "tst_ZaxmatDocumentModules.moc"
