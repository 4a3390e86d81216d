#include "JobDocument.h"

#include "ZAXGeoContainer.h"
#include "ZAXHostDocument.h"

#include <QCoreApplication>
#include <QDir>
#include <QJsonDocument>
#include <QProcess>
#include <QTest>

/// What "zaxmat document set", "duplicate" and "remove" make of a document, and what they refuse.
class tst_ZaxmatDocumentChanges : public QObject
{
    Q_OBJECT

private slots:
    void setChangesValues();
    void setSaysWhatIsDifferent();
    void settingsAreTyped_data();
    void settingsAreTyped();
    void severalSettingsAreOneChange();
    void anIdThatWasSetStays();
    void theIdFollowsTheLabel();
    void settingWhatIsThereWritesNothing();
    void wrongSettingsAreRefused_data();
    void wrongSettingsAreRefused();
    void duplicateCopiesWithAllBelow();
    void duplicateTakesSettings();
    void rootCannotBeDuplicated();
    void invalidCopyIsRefused();
    void removeTakesObjectsOut();
    void removeNeedsConsentForWhatIsBelow();
    void removeSparesTheRoot();
    void removeTakesSeveral();
    void removeOfSomeUnknownRemovesNothing();
    void missingObjectsSurviveEveryCommand();
    void missingObjectsCanBeCopiedAndRemoved();
    void damagedDocumentIsNotChanged_data();
    void damagedDocumentIsNotChanged();
    void acceptedDamageKeepsACopy();
    void everyAcceptedDamageKeepsItsCopy();
    void acceptedDamageIsNotSavedWithoutItsCopy();
    void aDocumentInUseIsWaitedFor();
    void lockedDocumentIsNotChanged();
    void documentThatCannotBeWrittenIsReported_data();
    void documentThatCannotBeWrittenIsReported();
};

namespace {

Run Document(const Workshop& workshop, const QString& command, const QStringList& arguments = {})
{
    return workshop.Zaxmat(QStringList{"document", command, "job ø 1.zaxdoc"} + arguments);
}

/// What the object \a name holds.
QJsonObject Values(const Workshop& workshop, const QString& name)
{
    const Run run = Document(workshop, "show", {name, "--format", "json"});
    return QJsonDocument::fromJson(run.out.toUtf8()).object().value("properties").toObject();
}

/// The paths of all objects.
QStringList Paths(const Workshop& workshop)
{
    QStringList paths;
    for (const QString& line : Document(workshop, "tree", {"--format", "csv"}).out.split('\n', Qt::SkipEmptyParts))
        paths.append(line.section(',', 3).trimmed());
    return paths.mid(1);
}

QStringList Files(const Workshop& workshop)
{
    return QDir(workshop.Path("")).entryList(QDir::Files | QDir::Hidden | QDir::System);
}

/// Every command that changes a document.
void AddChangingCommands()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("set") << QStringList{"set", "job ø 1.zaxdoc", "@3", "length=2500"};
    QTest::newRow("duplicate") << QStringList{"duplicate", "job ø 1.zaxdoc", "@3"};
    QTest::newRow("remove") << QStringList{"remove", "job ø 1.zaxdoc", "@3"};
}

} // namespace

void tst_ZaxmatDocumentChanges::setChangesValues()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    const Run run = Document(workshop, "set", {"@3", "length=2500"});
    QVERIFY2(run.out.endsWith("\nDocument \"job ø 1.zaxdoc\" saved; reopened, it is identical.\n"),
             qUtf8Printable(run.out));
    QCOMPARE(run.code, 0);
    QCOMPARE(Values(workshop, "@3").value("length"), 2500);
    QCOMPARE(Values(workshop, "@3").value("width"), 1000);
    QCOMPARE(Files(workshop), QStringList{"job ø 1.zaxdoc"});
}

void tst_ZaxmatDocumentChanges::setSaysWhatIsDifferent()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    const Run run = Document(workshop, "set", {"@6", "thickness=4", "--format", "json"});
    const QString path = "Materials Root/Steel - 4 mm";
    QCOMPARE(QJsonDocument::fromJson(run.out.toUtf8()).array(),
             (QJsonArray{QJsonObject{{"id", 6},
                                     {"path", path},
                                     {"property", "materialId"},
                                     {"old", "Steel - 3 mm"},
                                     {"new", "Steel - 4 mm"}},
                         QJsonObject{{"id", 6}, {"path", path}, {"property", "thickness"}, {"old", 3}, {"new", 4}}}));
}

void tst_ZaxmatDocumentChanges::settingsAreTyped_data()
{
    QTest::addColumn<QString>("object");
    QTest::addColumn<QString>("setting");
    QTest::addColumn<QString>("property");
    QTest::addColumn<QJsonValue>("value");
    QTest::newRow("length in millimetres") << "@3"
                                           << "length=2500"
                                           << "length" << QJsonValue(2500);
    QTest::newRow("length in inches") << "@3"
                                      << "length=0.5 in"
                                      << "length" << QJsonValue(12.7);
    QTest::newRow("decimal comma") << "@3"
                                   << "cost=1,5"
                                   << "cost" << QJsonValue(1.5);
    QTest::newRow("density with its unit") << "@6"
                                           << "density=2700 kg/m³"
                                           << "density" << QJsonValue(2.7);
    QTest::newRow("enumerator") << "@3"
                                << "form=Roll"
                                << "form" << QJsonValue("Roll");
    QTest::newRow("boolean") << "@4"
                             << "isActive=yes"
                             << "isActive" << QJsonValue(true);
    QTest::newRow("colour") << "@6"
                            << "nestingColor=red"
                            << "nestingColor" << QJsonValue("#ff0000");
    QTest::newRow("text") << "@6"
                          << "comment=a = b"
                          << "comment" << QJsonValue("a = b");
    QTest::newRow("empty text") << "@6"
                                << "category="
                                << "category" << QJsonValue("");
    QTest::newRow("catalogue key") << "@6"
                                   << "remoteKey=schlüssel"
                                   << "remoteKey" << QJsonValue("schlüssel");
    QTest::newRow("label") << "@3"
                           << "label=Rest"
                           << "label" << QJsonValue("Rest");
    QTest::newRow("default label") << "@3"
                                   << "label="
                                   << "label" << QJsonValue("Packaging");
    QTest::newRow("label of a root") << "@1"
                                     << "label=All"
                                     << "label" << QJsonValue("All");
}

void tst_ZaxmatDocumentChanges::settingsAreTyped()
{
    QFETCH(QString, object);
    QFETCH(QString, setting);
    QFETCH(QString, property);
    QFETCH(QJsonValue, value);
    const Workshop workshop;
    const JobDocument document(workshop);
    const Run run = Document(workshop, "set", {object, setting});
    QVERIFY2(run.code == 0, qUtf8Printable(run.err));
    QCOMPARE(Values(workshop, object).value(property), value);
}

void tst_ZaxmatDocumentChanges::severalSettingsAreOneChange()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    QCOMPARE(Document(workshop, "set", {"@3", "length=2500", "label=Rest", "isActive=no"}).code, 0);
    const QJsonObject values = Values(workshop, "@3");
    QCOMPARE(values.value("length"), 2500);
    QCOMPARE(values.value("label"), "Rest");
    QCOMPARE(values.value("isActive"), false);

    const QByteArray before = document.GetBytes();
    const Run run = Document(workshop, "set", {"@3", "length=3000", "width=-1"});
    QCOMPARE(run.code, 1);
    QCOMPARE(document.GetBytes(), before);
}

void tst_ZaxmatDocumentChanges::anIdThatWasSetStays()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    QCOMPARE(Document(workshop, "set", {"@6", "materialId=Mine", "thickness=4"}).code, 0);
    QCOMPARE(Values(workshop, "@6").value("materialId"), "Mine");
    QCOMPARE(Values(workshop, "@6").value("isMaterialIdCustomized"), true);
    QCOMPARE(Document(workshop, "set", {"Mine", "label=Other", "thickness=5"}).code, 0);
    QCOMPARE(Values(workshop, "@6").value("materialId"), "Mine");
}

void tst_ZaxmatDocumentChanges::theIdFollowsTheLabel()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    QCOMPARE(Document(workshop, "set", {"@6", "label=Plate"}).code, 0);
    QCOMPARE(Values(workshop, "@6").value("materialId"), "Plate - 3 mm");
}

void tst_ZaxmatDocumentChanges::settingWhatIsThereWritesNothing()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    const QByteArray before = document.GetBytes();
    const Run run = Document(workshop, "set", {"@3", "length=3000 mm"});
    QCOMPARE(run.out, "Document \"job ø 1.zaxdoc\" holds all this already; nothing was written.\n");
    QCOMPARE(run.code, 0);
    QCOMPARE(document.GetBytes(), before);
}

void tst_ZaxmatDocumentChanges::wrongSettingsAreRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    QTest::addColumn<int>("code");
    const QString invalid = "The document \"job ø 1.zaxdoc\" is not saved. These values are invalid:\n";
    QTest::newRow("invalid value") << QStringList{"@6", "thickness=0"}
                                   << invalid + "  \"Steel\": Thickness: The thickness is not a positive non-zero "
                                                "length.\n"
                                   << 1;
    QTest::newRow("two invalid values") << QStringList{"@3", "length=0", "width=-1"}
                                        << invalid +
                                               "  \"Sheet large\": Length: Length must be a positive, non-zero value.\n"
                                               "  \"Sheet large\": Width: Width must be a positive, non-zero value.\n"
                                        << 1;
    QTest::newRow("no length") << QStringList{"@3", "length=long"} << "length: \"long\" is no length. " << 1;
    QTest::newRow("unit of something else")
        << QStringList{"@3", "length=2 kg/m³"} << "length: \"2 kg/m³\" is no length. " << 1;
    QTest::newRow("no value") << QStringList{"@3", "length="}
                              << "length needs a value: an object of a document always has one.\n"
                              << 1;
    QTest::newRow("unknown property") << QStringList{"@3", "lenght=2"}
                                      << "A stock form has no property \"lenght\" to set." << 2;
    QTest::newRow("property of a material")
        << QStringList{"@3", "thickness=2"} << "A stock form has no property \"thickness\" to set." << 2;
    QTest::newRow("unknown extension") << QStringList{"@2", "ForeignExtension.isExtensionEnabled=yes"}
                                       << "No module provides the extension \"ForeignExtension\"" << 2;
    QTest::newRow("list of extensions") << QStringList{"@2", "materialExtensions=x"}
                                        << "A material has no property \"materialExtensions\" to set." << 2;
    QTest::newRow("no setting") << QStringList{"@3", "length"} << "\"length\" is no property=value.\n" << 2;
    QTest::newRow("no name") << QStringList{"@3", "=2"} << "\"=2\" is no property=value.\n" << 2;
    QTest::newRow("property of a root") << QStringList{"@1", "materials=none"}
                                        << "\"Materials Root\" has no property \"materials\", only a label.\n"
                                        << 2;
    QTest::newRow("what is missing")
        << QStringList{"@5", "isExtensionEnabled=yes"}
        << "\"Materials Root/Steel - 2 mm/ForeignExtension\" is not available and cannot be changed: no loaded module "
           "provides the class.\n"
        << 2;
    QTest::newRow("twice") << QStringList{"@3", "length=2500", "length=2600"} << "\"length\" is given twice.\n" << 2;
    QTest::newRow("good before bad") << QStringList{"@3", "length=2500", "width=wide"}
                                     << "width: \"wide\" is no length. " << 1;
    QTest::newRow("ambiguous") << QStringList{"Steel", "thickness=2"} << "Several objects are called \"Steel\"." << 2;
}

void tst_ZaxmatDocumentChanges::wrongSettingsAreRefused()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    QFETCH(int, code);
    const Workshop workshop;
    const JobDocument document(workshop);
    const QByteArray before = document.GetBytes();
    const Run run = Document(workshop, "set", arguments + QStringList{"--quiet"});
    QVERIFY2(run.err.startsWith("zaxmat: " + message), qUtf8Printable(run.err));
    QCOMPARE(run.out, "");
    QCOMPARE(run.code, code);
    QCOMPARE(document.GetBytes(), before);
    QCOMPARE(Files(workshop), QStringList{"job ø 1.zaxdoc"});
}

void tst_ZaxmatDocumentChanges::duplicateCopiesWithAllBelow()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    const Run run = Document(workshop, "duplicate", {"@2"});
    QCOMPARE(run.code, 0);
    QVERIFY2(run.out.contains("\n    @7  Material: Steel - 2 mm (Copy) (S235JR, 2 mm, 7.85 g/cm³)\n"),
             qUtf8Printable(run.out));
    QCOMPARE(Paths(workshop),
             (QStringList{"Materials Root", "Materials Root/Steel - 2 mm", "Materials Root/Steel - 2 mm/Sheet large",
                          "Materials Root/Steel - 2 mm/Sheet small", "Materials Root/Steel - 2 mm/ForeignExtension",
                          "Materials Root/Steel - 2 mm (Copy)", "Materials Root/Steel - 2 mm (Copy)/Sheet large",
                          "Materials Root/Steel - 2 mm (Copy)/Sheet small",
                          "Materials Root/Steel - 2 mm (Copy)/ForeignExtension", "Materials Root/Steel - 3 mm"}));
    QCOMPARE(Values(workshop, "@2").value("remoteKey"), "steel-2");
    QCOMPARE(Values(workshop, "@7").value("remoteKey"), "");
}

void tst_ZaxmatDocumentChanges::duplicateTakesSettings()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    QCOMPARE(Document(workshop, "duplicate", {"@4", "label=Rest", "length=1 in"}).code, 0);
    QCOMPARE(Values(workshop, "Rest").value("length"), 25.4);
    QCOMPARE(Values(workshop, "@4").value("length"), 2000);
}

void tst_ZaxmatDocumentChanges::rootCannotBeDuplicated()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    const QByteArray before = document.GetBytes();
    const Run run = Document(workshop, "duplicate", {"@1", "--quiet"});
    QCOMPARE(run.err, "zaxmat: \"Materials Root\" cannot be duplicated.\n");
    QCOMPARE(run.code, 2);
    QCOMPARE(document.GetBytes(), before);
}

void tst_ZaxmatDocumentChanges::invalidCopyIsRefused()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    const QByteArray before = document.GetBytes();
    const Run run = Document(workshop, "duplicate", {"@4", "length=0", "--quiet"});
    QCOMPARE(run.err, "zaxmat: The document \"job ø 1.zaxdoc\" is not saved. These values are invalid:\n"
                      "  \"Sheet small\": Length: Length must be a positive, non-zero value.\n");
    QCOMPARE(run.code, 1);
    QCOMPARE(document.GetBytes(), before);
}

void tst_ZaxmatDocumentChanges::removeTakesObjectsOut()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    const Run run = Document(workshop, "remove", {"Sheet small"});
    QCOMPARE(run.out, "Number  Removed\n"
                      "------  ---------------------------------------\n"
                      "    @4  Materials Root/Steel - 2 mm/Sheet small\n"
                      "\n"
                      "Document \"job ø 1.zaxdoc\" saved; reopened, it is identical.\n");
    QCOMPARE(run.code, 0);
    QVERIFY(!Paths(workshop).contains("Materials Root/Steel - 2 mm/Sheet small"));
    QCOMPARE(Paths(workshop).size(), 5);
}

void tst_ZaxmatDocumentChanges::removeNeedsConsentForWhatIsBelow()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    const QByteArray before = document.GetBytes();
    const Run run = Document(workshop, "remove", {"@2", "--quiet"});
    QCOMPARE(run.err, "zaxmat: With \"Materials Root/Steel - 2 mm\" these objects would go. Say --yes to remove them "
                      "too:\n"
                      "  @3 Materials Root/Steel - 2 mm/Sheet large\n"
                      "  @4 Materials Root/Steel - 2 mm/Sheet small\n"
                      "  @5 Materials Root/Steel - 2 mm/ForeignExtension\n");
    QCOMPARE(run.code, 2);
    QCOMPARE(document.GetBytes(), before);
    QCOMPARE(Document(workshop, "remove", {"@2", "--yes"}).code, 0);
    QCOMPARE(Paths(workshop), (QStringList{"Materials Root", "Materials Root/Steel - 3 mm"}));
}

void tst_ZaxmatDocumentChanges::removeSparesTheRoot()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    const QByteArray before = document.GetBytes();
    const Run run = Document(workshop, "remove", {"@1", "--yes", "--quiet"});
    QCOMPARE(run.err, "zaxmat: \"Materials Root\" cannot be removed: every document keeps it.\n");
    QCOMPARE(run.code, 2);
    QCOMPARE(document.GetBytes(), before);
}

void tst_ZaxmatDocumentChanges::removeTakesSeveral()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    // The second goes with the first.
    const Run run = Document(workshop, "remove", {"@2", "@4", "@6", "--yes", "--format", "csv"});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out.count("ZAXMatPackaging"), 2);
    QCOMPARE(Paths(workshop), QStringList{"Materials Root"});
}

void tst_ZaxmatDocumentChanges::removeOfSomeUnknownRemovesNothing()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    const QByteArray before = document.GetBytes();
    QCOMPARE(Document(workshop, "remove", {"@4", "@99"}).code, 2);
    QCOMPARE(Document(workshop, "remove", {"@4", "@2"}).code, 2);
    QCOMPARE(document.GetBytes(), before);
}

void tst_ZaxmatDocumentChanges::missingObjectsSurviveEveryCommand()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    QCOMPARE(Document(workshop, "set", {"@2", "density=7.9"}).code, 0);
    QCOMPARE(Document(workshop, "duplicate", {"@4"}).code, 0);
    QCOMPARE(Document(workshop, "remove", {"@4"}).code, 0);
    QVERIFY(Paths(workshop).contains("Materials Root/Steel - 2 mm/ForeignExtension"));

    // Where the module is there, the object comes to life.
    ZAXGeoContainer::RegisterType(&ForeignExtension::staticMetaObject);
    ZAXHostDocument opened;
    QVERIFY(opened.Open(document.GetPath()));
    QCOMPARE(opened.GetInstances(&ForeignExtension::staticMetaObject).size(), 1);
    QVERIFY(opened.GetProblems().isEmpty());
    ZAXGeoContainer::UnregisterType(&ForeignExtension::staticMetaObject);
}

void tst_ZaxmatDocumentChanges::missingObjectsCanBeCopiedAndRemoved()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    QCOMPARE(Document(workshop, "duplicate", {"@5"}).code, 0);
    QCOMPARE(Paths(workshop).count("Materials Root/Steel - 2 mm/ForeignExtension"), 2);
    QCOMPARE(Document(workshop, "remove", {"@5"}).code, 0);
    QCOMPARE(Paths(workshop).count("Materials Root/Steel - 2 mm/ForeignExtension"), 1);
}

void tst_ZaxmatDocumentChanges::damagedDocumentIsNotChanged_data()
{
    AddChangingCommands();
}

void tst_ZaxmatDocumentChanges::damagedDocumentIsNotChanged()
{
    QFETCH(QStringList, arguments);
    const Workshop workshop;
    const JobDocument document(workshop);
    document.Damage("Sheet small");
    const QByteArray before = document.GetBytes();
    const Run run = workshop.Zaxmat(QStringList{"document"} + arguments);
    QVERIFY2(
        run.err.startsWith("zaxmat: The document \"job ø 1.zaxdoc\" is damaged:\n  The document is damaged at byte "),
        qUtf8Printable(run.err));
    QVERIFY2(
        run.err.endsWith("Nothing is done with it. --accept-damage works with what is left of it, and keeps a copy "
                         "of the file.\n"),
        qUtf8Printable(run.err));
    QCOMPARE(run.out, "");
    QCOMPARE(run.code, 3);
    QCOMPARE(document.GetBytes(), before);
    QCOMPARE(Files(workshop), QStringList{"job ø 1.zaxdoc"});
}

void tst_ZaxmatDocumentChanges::acceptedDamageKeepsACopy()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    document.Damage("Sheet small");
    const QByteArray damaged = document.GetBytes();
    const Run run = Document(workshop, "set", {"@3", "length=2500", "--accept-damage"});
    QVERIFY2(run.err.contains("zaxmat: note: The damaged file is kept as \"job ø 1.zaxdoc.damaged\".\n"),
             qUtf8Printable(run.err));
    QCOMPARE(run.code, 0);
    QCOMPARE(Workshop::Read(document.GetPath() + ".damaged"), damaged);
    QCOMPARE(Document(workshop, "tree").code, 0);
    QCOMPARE(Values(workshop, "@3").value("length"), 2500);
    QCOMPARE(Paths(workshop).size(), 5);
}

void tst_ZaxmatDocumentChanges::everyAcceptedDamageKeepsItsCopy()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    document.Damage("Sheet small");
    const QByteArray first = document.GetBytes();
    // Even a change of nothing, since the file is not what the document is.
    QCOMPARE(Document(workshop, "set", {"@3", "length=3000", "--accept-damage"}).code, 0);
    document.Damage("Sheet large");
    const QByteArray second = document.GetBytes();
    QCOMPARE(Document(workshop, "set", {"@6", "thickness=4", "--accept-damage"}).code, 0);
    QCOMPARE(Workshop::Read(document.GetPath() + ".damaged"), first);
    QCOMPARE(Workshop::Read(document.GetPath() + ".damaged2"), second);
    QCOMPARE(Document(workshop, "validate").code, 0);
}

void tst_ZaxmatDocumentChanges::acceptedDamageIsNotSavedWithoutItsCopy()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    document.Damage("Sheet small");
    const QByteArray damaged = document.GetBytes();
    // The lock file can still be made empty, but no file can grow.
    const Run run = workshop.ZaxmatThrough(
        Workshop::onFullDisk, {"document", "set", "job ø 1.zaxdoc", "@3", "length=2500", "--accept-damage"});
    QCOMPARE(run.code, 3);
    QCOMPARE(document.GetBytes(), damaged);
}

void tst_ZaxmatDocumentChanges::aDocumentInUseIsWaitedFor()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    auto open = std::make_unique<ZAXHostDocument>();
    QVERIFY(open->Open(document.GetPath()));
    QProcess process;
    process.setProcessEnvironment(workshop.environment);
    process.start(QStringLiteral(ZAXMAT_PROGRAM), {"document", "set", document.GetPath(), "@3", "length=2500"});
    QVERIFY(!process.waitForFinished(500));
    open.reset();
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 0);
    QVERIFY(workshop.Zaxmat({"document", "show", document.GetPath(), "@3"}).out.contains("2500 mm"));
}

void tst_ZaxmatDocumentChanges::lockedDocumentIsNotChanged()
{
    const Workshop workshop;
    const JobDocument document(workshop);
    const QByteArray before = document.GetBytes();
    ZAXHostDocument open;
    QVERIFY(open.Open(document.GetPath()));
    const Run run = workshop.Zaxmat({"document", "set", "job ø 1.zaxdoc", "@3", "length=2500"});
    const QString process = QString::number(QCoreApplication::applicationPid());
    QVERIFY2(run.err.startsWith("zaxmat: The document job ø 1.zaxdoc is opened by "), qUtf8Printable(run.err));
    QVERIFY2(run.err.contains(" on " + QSysInfo::machineHostName() + " (process " + process +
                              ", tst_ZaxmatDocumentChanges).\n"),
             qUtf8Printable(run.err));
    QCOMPARE(run.out, "");
    QCOMPARE(run.code, 3);
    QCOMPARE(document.GetBytes(), before);
}

void tst_ZaxmatDocumentChanges::documentThatCannotBeWrittenIsReported_data()
{
    QTest::addColumn<QString>("script");
    QTest::newRow("full disk") << Workshop::onFullDisk;
    QTest::newRow("folder not writable") << "chmod a-w .; " + Workshop::AsOrdinaryUser();
    QTest::newRow("file not writable") << "chmod a-w 'job ø 1.zaxdoc'; " + Workshop::AsOrdinaryUser();
}

void tst_ZaxmatDocumentChanges::documentThatCannotBeWrittenIsReported()
{
    QFETCH(QString, script);
    const Workshop workshop;
    const JobDocument document(workshop);
    const QByteArray before = document.GetBytes();
    const Run run = workshop.ZaxmatThrough(script, {"document", "set", "job ø 1.zaxdoc", "@3", "length=2500"});
    QCOMPARE(run.code, 3);
    QCOMPARE(run.out, "");
    QVERIFY(run.err.startsWith("zaxmat: "));
    QCOMPARE(document.GetBytes(), before);
    QCOMPARE(Files(workshop), QStringList{"job ø 1.zaxdoc"});
    workshop.ZaxmatThrough("chmod u+w .", {});
}

QTEST_GUILESS_MAIN(tst_ZaxmatDocumentChanges)
#include "tst_ZaxmatDocumentChanges.moc"
