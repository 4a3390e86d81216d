#include "Workshop.h"

#include "ZAXFeatContainer.h"
#include "ZAXHostDocument.h"
#include "ZAXMatMaterial.h"
#include "ZAXSysStartup.h"

#include <QDir>
#include <QFile>
#include <QTest>

/// What "zaxmat use" refuses, and that the document's file is what it was then.
class tst_ZaxmatUseRefusals : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { ZAXSysStartup::Start(); }
    void wrongChoiceIsRefused_data();
    void wrongChoiceIsRefused();
    void invalidValuesAreRefused_data();
    void invalidValuesAreRefused();
    void extensionThatCannotBeMadeIsNamed_data();
    void extensionThatCannotBeMadeIsNamed();
    void invalidMaterialInTheDocumentIsRefused();
    void otherFilesAreNoDocuments_data();
    void otherFilesAreNoDocuments();
    void damagedDocumentIsRefused_data();
    void damagedDocumentIsRefused();
    void otherThingsThanFilesAreNoDocuments_data();
    void otherThingsThanFilesAreNoDocuments();
    void unwritableFileIsReported_data();
    void unwritableFileIsReported();
    void aDocumentThatNeedsNoChangeNeedNotBeWritable();
    void fullDiskMakesNoNewDocument();
    void resultsThatCannotBeWrittenAreReported();
};

namespace {

QString DocumentPath(const Workshop& workshop)
{
    return workshop.Path("job ø 1.zaxdoc");
}

QStringList UseArguments(const Workshop& workshop, const QStringList& arguments)
{
    return QStringList{"use", "--document", DocumentPath(workshop)} + arguments;
}

/// A document that holds the acrylic of the small catalogue; returns its bytes.
QByteArray MakeDocument(const Workshop& workshop)
{
    workshop.WriteCatalogue(SmallCatalogue());
    const Run run = workshop.Zaxmat(UseArguments(workshop, {"acrylic-12.7"}));
    if (run.code != 0)
        qFatal("%s", qUtf8Printable(run.err));
    return Workshop::Read(DocumentPath(workshop));
}

/// The files beside the catalogue and the home; none but the document, unless something was left behind.
QStringList Files(const Workshop& workshop)
{
    return QDir(workshop.Path("")).entryList(QDir::Files | QDir::Hidden | QDir::System);
}

} // namespace

void tst_ZaxmatUseRefusals::wrongChoiceIsRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    const QString steels = "  Structural steel, 2 mm  steel-2\n  Structural steel, 3 mm  steel-3\n";
    const QString noLength = "zaxmat: --thickness: \"%1\" is no length. Give a number of millimetres, or a number with "
                             "its unit: 2, \"2 mm\", \"0.5 in\".\n";
    QTest::newRow("no such material") << QStringList{"Unobtainium"}
                                      << "zaxmat: The catalogue \"%CATALOGUE%\" has no \"Unobtainium\".\n"
                                         "\"zaxmat list\" shows all materials.\n";
    QTest::newRow("ambiguous") << QStringList{"S235JR"}
                               << "zaxmat: Several materials are called \"S235JR\". Choose one with --thickness or by "
                                  "its key:\n" +
                                      steels;
    QTest::newRow("no such thickness") << QStringList{"S235JR", "--thickness", "2.5"}
                                       << "zaxmat: There is no \"S235JR\" with a thickness of 2.5 mm, but:\n" + steels;
    QTest::newRow("just not that thick") << QStringList{"S235JR", "--thickness", "2.0011"}
                                         << "zaxmat: There is no \"S235JR\" with a thickness of 2.0011 mm, but:\n" +
                                                steels;
    QTest::newRow("perhaps thousands") << QStringList{"S235JR", "--thickness", "1,250"}
                                       << "zaxmat: --thickness: \"1,250\" is ambiguous; write 1250 or 1.25.\n";
    QTest::newRow("negative thickness") << QStringList{"S235JR", "--thickness", "-2"}
                                        << "zaxmat: There is no \"S235JR\" with a thickness of -2 mm, but:\n" + steels;
    QTest::newRow("other thickness than the key's")
        << QStringList{"steel-2", "--thickness", "3"}
        << "zaxmat: There is no \"steel-2\" with a thickness of 3 mm, but:\n  Structural steel, 2 mm  steel-2\n";
    for (const QString text : {"two", "2 kg", "2 mm thick", "1.000,5", "inf", "nan", "mm", "1e999", " "})
        QTest::addRow("thickness \"%s\"", qUtf8Printable(text))
            << QStringList{"S235JR", "--thickness", text} << noLength.arg(text);
    QTest::newRow("no such stock form")
        << QStringList{"steel-2", "--packaging", "Sheet large", "Sheet huge"}
        << "zaxmat: \"Structural steel, 2 mm\" has no stock form \"Sheet huge\", but:\n"
           "  Coil         steel-2-coil\n  Sheet large  steel-2-large\n  Sheet small  steel-2-small\n";
    QTest::newRow("stock form of another material")
        << QStringList{"steel-3", "--packaging", "steel-2-coil"}
        << "zaxmat: \"Structural steel, 3 mm\" has no stock form \"steel-2-coil\", but:\n"
           "  Sheet small  steel-3-small\n";
    QTest::newRow("no stock forms at all")
        << QStringList{"PMMA", "--packaging", "Sheet"}
        << "zaxmat: \"Acrylic, cast, 12.7 mm\" has no stock forms in the catalogue.\n";
    QTest::newRow("ambiguous stock form")
        << QStringList{"double", "--packaging", "S"}
        << "zaxmat: Several stock forms are called \"S\" in \"Double, 1 mm\". Choose one by its key:\n"
           "  S  s1\n  S  s2\n";
    QTest::newRow("two materials of one thickness")
        << QStringList{"Twin", "--thickness", "1"}
        << "zaxmat: Several materials are called \"Twin\". Choose one with --thickness or by its key:\n"
           "  Twin, 1 mm  twin-1\n  Twin, 1 mm  twin-2\n";
    QTest::newRow("material without thickness")
        << QStringList{"Bare"} << "zaxmat: The catalogue gives no thickness for \"Bare\". Say it with --thickness.\n";
}

void tst_ZaxmatUseRefusals::wrongChoiceIsRefused()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    const Workshop workshop;
    const QByteArray document = MakeDocument(workshop);
    workshop.WriteCatalogue(SmallCatalogue() +
                            QList<QJsonObject>{Material("double", "Double", {{"thickness", 1}}),
                                               StockForm("s1", "double", "S", {}), StockForm("s2", "double", "S", {}),
                                               Material("twin-1", "Twin", {{"thickness", 1}}),
                                               Material("twin-2", "Twin", {{"thickness", 1}}),
                                               Material("bare", "Bare", {{"thickness", QJsonValue()}})});
    const Run run = workshop.Zaxmat(UseArguments(workshop, arguments));
    QCOMPARE(run.err, message.replace("%CATALOGUE%", workshop.CatalogueFile()));
    QCOMPARE(run.out, "");
    QCOMPARE(run.code, 2);
    QCOMPARE(Workshop::Read(DocumentPath(workshop)), document);
    QCOMPARE(Files(workshop), QStringList{"job ø 1.zaxdoc"});
}

void tst_ZaxmatUseRefusals::invalidValuesAreRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("lines");
    const QString thickness = "Thickness: The thickness is not a positive non-zero length.\n";
    QTest::newRow("thickness of nothing") << QStringList{"zero"} << "  \"Zero\": " + thickness;
    QTest::newRow("negative thickness") << QStringList{"negative"} << "  \"Negative\": " + thickness;
    QTest::newRow("type, thickness and customised ID")
        << QStringList{"empty"}
        << "  \"Empty\": Material ID: The material ID cannot be empty.\n"
           "  \"Empty\": Material Type: The material type cannot be empty.\n"
           "  \"Empty\": " +
               thickness;
    QTest::newRow("density that is no density")
        << QStringList{"heavy"} << "  \"Heavy\": Density: The catalogue's value \"heavy\" cannot be taken.\n";
    QTest::newRow("density in the wrong unit")
        << QStringList{"long"} << "  \"Long\": Density: The catalogue's value \"2 mm\" cannot be taken.\n";
    QTest::newRow("stock form of no size and cost")
        << QStringList{"good", "--packaging", "nothing"}
        << "  \"Nothing\": Length: Length must be a positive, non-zero value.\n"
           "  \"Nothing\": Width: Width must be a positive, non-zero value.\n"
           "  \"Nothing\": Cost: Cost must be a positive, non-zero value.\n";
    QTest::newRow("unknown form") << QStringList{"good", "--packaging", "ball"}
                                  << "  \"Ball\": Form: The catalogue's value \"Sphere\" cannot be taken.\n";
    QTest::newRow("form of no meaning") << QStringList{"good", "--packaging", "seven"}
                                        << "  \"Seven\": Form: The catalogue's value \"7\" cannot be taken.\n";
    QTest::newRow("material and stock form")
        << QStringList{"zero", "--packaging", "flat"}
        << "  \"Zero\": " + thickness + "  \"Flat\": Width: Width must be a positive, non-zero value.\n";
}

void tst_ZaxmatUseRefusals::invalidValuesAreRefused()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, lines);
    const Workshop workshop;
    const QByteArray document = MakeDocument(workshop);
    workshop.WriteCatalogue(
        {Material("zero", "Zero", {{"materialType", "T"}, {"thickness", 0}}),
         StockForm("flat", "zero", "Flat", {{"width", 0}}),
         Material("negative", "Negative", {{"materialType", "T"}, {"thickness", -1}}),
         Material("empty", "Empty",
                  {{"materialId", ""}, {"isMaterialIdCustomized", true}, {"materialType", ""}, {"thickness", 0}}),
         Material("heavy", "Heavy", {{"materialType", "T"}, {"thickness", 1}, {"density", "heavy"}}),
         Material("long", "Long", {{"materialType", "T"}, {"thickness", 1}, {"density", "2 mm"}}),
         Material("good", "Good", {{"materialType", "T"}, {"thickness", 1}}),
         StockForm("nothing", "good", "Nothing", {{"length", 0}, {"width", 0}, {"cost", 0}}),
         StockForm("ball", "good", "Ball", {{"form", "Sphere"}}), StockForm("seven", "good", "Seven", {{"form", 7}})});
    const Run run = workshop.Zaxmat(UseArguments(workshop, arguments));
    QCOMPARE(run.err, "zaxmat: The document \"" + DocumentPath(workshop) +
                          "\" is not saved. These values are invalid:\n" + lines);
    QCOMPARE(run.out, "");
    QCOMPARE(run.code, 1);
    QCOMPARE(Workshop::Read(DocumentPath(workshop)), document);

    // Nor is a new document made.
    QVERIFY(QFile::remove(DocumentPath(workshop)));
    QCOMPARE(workshop.Zaxmat(UseArguments(workshop, arguments)).code, 1);
    QCOMPARE(Files(workshop), QStringList());
}

void tst_ZaxmatUseRefusals::extensionThatCannotBeMadeIsNamed_data()
{
    QTest::addColumn<QString>("material");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("extension");
    QTest::addColumn<QString>("reason");
    QTest::newRow("extension of a material") << "gas"
                                             << "Gas"
                                             << "GasExtension"
                                             << "type is not a material extension";
    QTest::newRow("extension of a stock form") << "grained"
                                               << "Grain"
                                               << "GrainExtension"
                                               << "type is not a packaging extension";
    // The first of two by name is what is refused first.
    QTest::newRow("two extensions") << "two"
                                    << "Two"
                                    << "Another"
                                    << "type is not a material extension";
}

void tst_ZaxmatUseRefusals::extensionThatCannotBeMadeIsNamed()
{
    QFETCH(QString, material);
    QFETCH(QString, name);
    QFETCH(QString, extension);
    QFETCH(QString, reason);
    const auto extended = [](QJsonObject record, const QStringList& extensions) {
        QJsonObject properties = record.value("properties").toObject();
        for (const QString& each : extensions)
            properties.insert(each, QJsonObject{{"pressure", 12}});
        record.insert("properties", properties);
        return record;
    };
    const QJsonObject values{{"materialType", "T"}, {"thickness", 1}};
    const Workshop workshop;
    const QByteArray document = MakeDocument(workshop);
    workshop.WriteCatalogue(
        {extended(Material("gas", "Gas", values), {"GasExtension"}),
         extended(Material("two", "Two", values), {"Second", "Another"}), Material("grained", "Grained", values),
         extended(StockForm("grain", "grained", "Grain", {{"isActive", true}}), {"GrainExtension"})});
    const Run run = workshop.Zaxmat(UseArguments(workshop, {material}));
    QCOMPARE(run.err, "zaxmat: \"" + name + "\" of the catalogue cannot be taken over: its extension \"" + extension +
                          "\" cannot be made (" + reason + "). No loaded module provides it.\n");
    QCOMPARE(run.out, "");
    QCOMPARE(run.code, 1);
    QCOMPARE(Workshop::Read(DocumentPath(workshop)), document);
}

void tst_ZaxmatUseRefusals::invalidMaterialInTheDocumentIsRefused()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    ZAXHostDocument document;
    ZAXFeatContainer* const container = document.GetContainer();
    auto* const material = qobject_cast<ZAXMatMaterial*>(
        container->CreateInstance("ZAXMatMaterial", container->CreateInstance("ZAXMatRoot", nullptr)));
    material->SetThickness(2);
    material->SetMaterialType("");
    material->SetProviderId("ZAXMatJsonFileProvider");
    material->SetRemoteKey("steel-2");
    QVERIFY(document.SaveAs(DocumentPath(workshop)));
    const Run run = workshop.Zaxmat(UseArguments(workshop, {"steel-2"}));
    QVERIFY2(run.err.endsWith("\n  \"Material\": Material Type: The material type cannot be empty.\n"),
             qUtf8Printable(run.err));
    QCOMPARE(run.code, 1);
    QCOMPARE(Workshop::Read(DocumentPath(workshop)), document.Encode());
}

void tst_ZaxmatUseRefusals::otherFilesAreNoDocuments_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("empty") << QByteArray("");
    QTest::newRow("text") << QByteArray("Dear colleague,\n");
    QTest::newRow("picture") << QByteArray::fromHex(
        "89504e470d0a1a0a0000000d49484452000000010000000108060000001f15c489");
    QTest::newRow("catalogue") << QByteArray("{}");
}

void tst_ZaxmatUseRefusals::otherFilesAreNoDocuments()
{
    QFETCH(QByteArray, bytes);
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    Workshop::Write(DocumentPath(workshop), bytes);
    const Run run = workshop.Zaxmat(UseArguments(workshop, {"steel-2"}));
    QVERIFY2(run.err.startsWith("zaxmat: The document " + DocumentPath(workshop) + " cannot be read: "),
             qUtf8Printable(run.err));
    QCOMPARE(run.out, "");
    QCOMPARE(run.code, 3);
    QCOMPARE(Workshop::Read(DocumentPath(workshop)), bytes);
}

void tst_ZaxmatUseRefusals::damagedDocumentIsRefused_data()
{
    QTest::addColumn<int>("percent");
    QTest::addColumn<bool>("isCutOff");
    const QList<int> places{0, 3, 30, 50, 70, 97, 99};
    for (const int place : places) {
        QTest::addRow("a byte changed at %d %%", place) << place << false;
        QTest::addRow("cut off at %d %%", place) << place << true;
    }
}

void tst_ZaxmatUseRefusals::damagedDocumentIsRefused()
{
    QFETCH(int, percent);
    QFETCH(bool, isCutOff);
    const Workshop workshop;
    QByteArray bytes = MakeDocument(workshop);
    const qsizetype place = bytes.size() * percent / 100;
    bytes[place] = char(bytes[place] ^ 4);
    bytes.truncate(isCutOff ? place : bytes.size());
    Workshop::Write(DocumentPath(workshop), bytes);
    const Run run = workshop.Zaxmat(UseArguments(workshop, {"steel-2"}));
    QVERIFY2(run.err.startsWith("zaxmat: The document " + DocumentPath(workshop) + " cannot be read: "),
             qUtf8Printable(run.err));
    QCOMPARE(run.out, "");
    QCOMPARE(run.code, 3);
    QCOMPARE(Workshop::Read(DocumentPath(workshop)), bytes);
    QCOMPARE(Files(workshop), QStringList{"job ø 1.zaxdoc"});
}

void tst_ZaxmatUseRefusals::otherThingsThanFilesAreNoDocuments_data()
{
    QTest::addColumn<QString>("script");
    QTest::newRow("a folder") << "mkdir 'job ø 1.zaxdoc'; exec \"$@\"";
    QTest::newRow("a pipe") << "mkfifo 'job ø 1.zaxdoc'; exec \"$@\"";
    QTest::newRow("an endless device") << "ln -s /dev/zero 'job ø 1.zaxdoc'; exec \"$@\"";
    QTest::newRow("a full device") << "ln -s /dev/full 'job ø 1.zaxdoc'; exec \"$@\"";
}

void tst_ZaxmatUseRefusals::otherThingsThanFilesAreNoDocuments()
{
    QFETCH(QString, script);
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const Run run = workshop.ZaxmatThrough(script, UseArguments(workshop, {"steel-2"}));
    QCOMPARE(run.err, "zaxmat: The document \"" + DocumentPath(workshop) + "\" cannot be opened: it is no file.\n");
    QCOMPARE(run.out, "");
    QCOMPARE(run.code, 3);
}

void tst_ZaxmatUseRefusals::unwritableFileIsReported_data()
{
    QTest::addColumn<QString>("script");
    QTest::newRow("full disk") << Workshop::onFullDisk;
    QTest::newRow("folder not writable") << "chmod a-w .; " + Workshop::AsOrdinaryUser();
    QTest::newRow("file not writable") << "chmod a-w 'job ø 1.zaxdoc'; " + Workshop::AsOrdinaryUser();
}

void tst_ZaxmatUseRefusals::unwritableFileIsReported()
{
    QFETCH(QString, script);
    const Workshop workshop;
    const QByteArray document = MakeDocument(workshop);
    const Run run = workshop.ZaxmatThrough(script, UseArguments(workshop, {"steel-2"}));
    QVERIFY2(run.err.startsWith("zaxmat: The document " + DocumentPath(workshop) + " cannot be saved: "),
             qUtf8Printable(run.err));
    QCOMPARE(run.out, "");
    QCOMPARE(run.code, 3);
    QCOMPARE(Workshop::Read(DocumentPath(workshop)), document);
    QCOMPARE(Files(workshop), QStringList{"job ø 1.zaxdoc"});
    workshop.ZaxmatThrough("chmod u+w .", {});
}

void tst_ZaxmatUseRefusals::aDocumentThatNeedsNoChangeNeedNotBeWritable()
{
    const Workshop workshop;
    const QByteArray document = MakeDocument(workshop);
    const Run run = workshop.ZaxmatThrough("chmod a-w . 'job ø 1.zaxdoc'; " + Workshop::AsOrdinaryUser(),
                                           UseArguments(workshop, {"PMMA"}));
    QVERIFY2(run.out.endsWith("nothing was written.\n"), qUtf8Printable(run.out + run.err));
    QCOMPARE(run.code, 0);
    QCOMPARE(Workshop::Read(DocumentPath(workshop)), document);
    workshop.ZaxmatThrough("chmod u+w .", {});
}

void tst_ZaxmatUseRefusals::fullDiskMakesNoNewDocument()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const Run run = workshop.ZaxmatThrough(Workshop::onFullDisk, UseArguments(workshop, {"steel-2"}));
    QCOMPARE(run.err, "zaxmat: The document " + DocumentPath(workshop) +
                          " cannot be saved: No lock can be made beside " + DocumentPath(workshop) +
                          ": the folder takes no new file, or the disk is full.\n");
    QCOMPARE(run.code, 3);
    QCOMPARE(Files(workshop), QStringList());
}

void tst_ZaxmatUseRefusals::resultsThatCannotBeWrittenAreReported()
{
    const Workshop workshop;
    workshop.WriteCatalogue(SmallCatalogue());
    const Run run = workshop.ZaxmatThrough("exec \"$@\" >/dev/full", UseArguments(workshop, {"steel-2"}));
    QCOMPARE(run.err, "zaxmat: The command is done, but its results cannot be written: No space left on device.\n");
    QCOMPARE(run.code, 3);
    const Run again = workshop.Zaxmat(UseArguments(workshop, {"steel-2"}));
    QVERIFY2(again.out.endsWith("nothing was written.\n"), qUtf8Printable(again.out));
}

QTEST_GUILESS_MAIN(tst_ZaxmatUseRefusals)
#include "tst_ZaxmatUseRefusals.moc"
