#include "CatalogueEditor.h"
#include "Failure.h"
#include "FileReplacement.h"
#include "Output.h"
#include "RecordMerge.h"
#include "Schema.h"
#include "Workshop.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QSaveFile>
#include <QTest>
#include <QThread>

#include <sys/stat.h>

using namespace zaxmat;

/// What becomes of edits of a catalogue when somebody else changes its file meanwhile.
class tst_CatalogueEditor : public QObject
{
    Q_OBJECT

private slots:
    void otherRecordsAreMerged_data();
    void otherRecordsAreMerged();
    void conflictsAreRefused_data();
    void conflictsAreRefused();
    void aConflictDoesNotTouchTheFile();
    void theSameChangeIsNoConflict();
    void theSameRemovalIsNoConflict();
    void anotherSpellingOfTheFileIsNoChange();
    void damagedMeanwhileIsRefused();
    void removedMeanwhileIsRefused();
    void madeMeanwhileIsMerged();
    void writerWithoutALockLosesNothing();
    void mendedFileIsNotPutOverAChange();
    void nothingStagedIsNothingWritten();
    void theLastStateOfARecordCounts();
    void theLockKeepsOthersOut();
    void theLockOfADeadProcessIsNone();
    void conflictsAreTold();
};

namespace {

QByteArray Text(const QList<QJsonObject>& records)
{
    QJsonObject root;
    for (const QJsonObject& record : records)
        root.insert(record["key"].toString(), record);
    return QJsonDocument(root).toJson();
}

QJsonObject Root(const Workshop& workshop)
{
    return QJsonDocument::fromJson(Workshop::Read(workshop.CatalogueFile())).object();
}

CatalogueOptions OptionsOf(const Workshop& workshop)
{
    return {workshop.CatalogueFolder()};
}

const Output& Quiet()
{
    static const Output output({.isQuiet = true});
    return output;
}

/// Reads the catalogue, has \a ours change it and, before that is written, \a theirs the file.
CommitResult Edit(const Workshop& workshop, const std::function<void(CatalogueEditor&)>& ours, const QByteArray& theirs)
{
    CatalogueEditor editor(OptionsOf(workshop), Quiet(), CatalogueEditor::MissingFile::Refuse,
                           [&] { Workshop::Write(workshop.CatalogueFile(), theirs); });
    ours(editor);
    return editor.Commit();
}

QString MessageOf(const std::function<void()>& action, ExitCode code)
{
    try {
        action();
    } catch (const Failure& failure) {
        return failure.GetCode() == code ? failure.GetMessage() : "another code: " + failure.GetMessage();
    }
    return "no failure";
}

QJsonObject A(const QString& comment)
{
    return Material("a", "A", {{"comment", comment}, {"thickness", 1}});
}

QJsonObject B(const QString& comment)
{
    return Material("b", "B", {{"comment", comment}});
}

QJsonObject S(const QString& comment)
{
    return StockForm("s", "a", "S", {{"comment", comment}});
}

ZAXMatDefinition Record(const QJsonObject& object)
{
    return CatalogueRecord(object).ToDefinition();
}

} // namespace

void tst_CatalogueEditor::otherRecordsAreMerged_data()
{
    QTest::addColumn<QByteArray>("theirs");
    QTest::addColumn<QByteArray>("merged");
    QTest::newRow("changed") << Text({A("0"), B("theirs"), S("0")}) << Text({A("ours"), B("theirs"), S("0")});
    QTest::newRow("removed") << Text({A("0"), S("0")}) << Text({A("ours"), S("0")});
    QTest::newRow("added") << Text({A("0"), B("0"), S("0"), Material("c", "C", {})})
                           << Text({A("ours"), B("0"), S("0"), Material("c", "C", {})});
    QTest::newRow("a stock form of it") << Text({A("0"), B("0"), S("theirs")})
                                        << Text({A("ours"), B("0"), S("theirs")});
}

void tst_CatalogueEditor::otherRecordsAreMerged()
{
    QFETCH(QByteArray, theirs);
    QFETCH(QByteArray, merged);
    const Workshop workshop;
    workshop.WriteCatalogue({A("0"), B("0"), S("0")});
    const CommitResult result = Edit(
        workshop, [](CatalogueEditor& editor) { editor.SetRecord(Record(A("ours"))); }, theirs);
    QVERIFY(result.isMerged);
    QVERIFY(result.isWritten);
    QCOMPARE(result.changed, 1);
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), merged);
}

void tst_CatalogueEditor::conflictsAreRefused_data()
{
    using Action = std::function<void(CatalogueEditor&)>;
    QTest::addColumn<Action>("ours");
    QTest::addColumn<QByteArray>("theirs");
    QTest::addColumn<QString>("lines");
    const Action change = [](CatalogueEditor& editor) { editor.SetRecord(Record(A("ours"))); };
    const Action remove = [](CatalogueEditor& editor) {
        editor.RemoveRecord(ZAXMatDefinition::Material, "a");
        editor.RemoveRecord(ZAXMatDefinition::Packaging, "s");
    };
    QTest::newRow("the same field")
        << change << Text({A("theirs"), B("0"), S("0")})
        << "  \"A\" (a)\n    comment: was \"0\", is \"ours\" here and \"theirs\" in the file";
    QTest::newRow("another field") << change
                                   << Text({Material("a", "A", {{"comment", "0"}, {"thickness", 2}}), B("0"), S("0")})
                                   << "  \"A\" (a)\n"
                                      "    comment: was \"0\", is \"ours\" here and \"0\" in the file\n"
                                      "    thickness: was \"1 mm\", is \"1 mm\" here and \"2 mm\" in the file";
    QTest::newRow("the name") << change
                              << Text({Material("a", "Z", {{"comment", "0"}, {"thickness", 1}}), B("0"), S("0")})
                              << "  \"A\" (a)\n"
                                 "    comment: was \"0\", is \"ours\" here and \"0\" in the file\n"
                                 "    name: was \"A\", is \"A\" here and \"Z\" in the file";
    QTest::newRow("removed there") << change << Text({B("0")})
                                   << "  \"A\" (a)\n"
                                      "    comment: was \"0\", is \"ours\" here and \"no record\" in the file\n"
                                      "    name: was \"A\", is \"A\" here and \"no record\" in the file\n"
                                      "    type: was \"0\", is \"0\" here and \"no record\" in the file\n"
                                      "    thickness: was \"1 mm\", is \"1 mm\" here and \"no record\" in the file";
    QTest::newRow("removed here") << remove << Text({A("theirs"), B("0"), S("0")})
                                  << "  \"A\" (a)\n"
                                     "    name: was \"A\", is \"no record\" here and \"A\" in the file\n"
                                     "    type: was \"0\", is \"no record\" here and \"0\" in the file\n"
                                     "    comment: was \"0\", is \"no record\" here and \"theirs\" in the file\n"
                                     "    thickness: was \"1 mm\", is \"no record\" here and \"1 mm\" in the file";
    QTest::newRow("a stock form under what is removed here")
        << remove << Text({A("0"), B("0"), S("0"), StockForm("t", "a", "T", {})})
        << "  \"T\" (t)\n    its material is removed here";
    QTest::newRow("a stock form of what is removed there")
        << Action([](CatalogueEditor& editor) { editor.SetRecord(Record(StockForm("t", "a", "T", {}))); })
        << Text({B("0")}) << "  \"T\" (t)\n    its material is no longer in the file";
    QTest::newRow("two new ones of one key")
        << Action([](CatalogueEditor& editor) {
               editor.SetRecord(Record(Material("n", "N", {{"comment", "ours"}})));
           })
        << Text({A("0"), B("0"), S("0"), Material("n", "N", {{"comment", "theirs"}})})
        << "  \"N\" (n)\n"
           "    name: was \"no record\", is \"N\" here and \"N\" in the file\n"
           "    type: was \"no record\", is \"0\" here and \"0\" in the file\n"
           "    comment: was \"no record\", is \"ours\" here and \"theirs\" in the file";
}

void tst_CatalogueEditor::conflictsAreRefused()
{
    QFETCH(std::function<void(CatalogueEditor&)>, ours);
    QFETCH(QByteArray, theirs);
    QFETCH(QString, lines);
    const Workshop workshop;
    workshop.WriteCatalogue({A("0"), B("0"), S("0")});
    QCOMPARE(MessageOf([&] { Edit(workshop, ours, theirs); }, ExitCode::FileChanged),
             "The catalogue \"" + workshop.CatalogueFile() +
                 "\" was changed by somebody else meanwhile, and so were the same records. Nothing was written:\n" +
                 lines + "\nLook at them, and try again.");
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), theirs);
}

void tst_CatalogueEditor::aConflictDoesNotTouchTheFile()
{
    const Workshop workshop;
    workshop.WriteCatalogue({A("0")});
    struct stat before = {};
    const QByteArray path = QFile::encodeName(workshop.CatalogueFile());
    CatalogueEditor editor(OptionsOf(workshop), Quiet(), CatalogueEditor::MissingFile::Refuse, [&] {
        Workshop::Write(workshop.CatalogueFile(), Text({A("theirs")}));
        QCOMPARE(stat(path.constData(), &before), 0);
    });
    editor.SetRecord(Record(A("ours")));
    QVERIFY(MessageOf([&] { editor.Commit(); }, ExitCode::FileChanged).contains("theirs"));
    // Whoever is killed between exchanging and taking that back would leave the wrong one.
    struct stat after = {};
    QCOMPARE(stat(path.constData(), &after), 0);
    QCOMPARE(after.st_ino, before.st_ino);
    QCOMPARE(after.st_ctim.tv_sec, before.st_ctim.tv_sec);
    QCOMPARE(after.st_ctim.tv_nsec, before.st_ctim.tv_nsec);
}

void tst_CatalogueEditor::theSameChangeIsNoConflict()
{
    const Workshop workshop;
    workshop.WriteCatalogue({A("0")});
    Edit(
        workshop, [](CatalogueEditor& editor) { editor.SetRecord(Record(A("same"))); }, Text({A("same"), B("1")}));
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), Text({A("same"), B("1")}));
}

void tst_CatalogueEditor::theSameRemovalIsNoConflict()
{
    const Workshop workshop;
    workshop.WriteCatalogue({A("0"), B("0")});
    Edit(
        workshop, [](CatalogueEditor& editor) { editor.RemoveRecord(ZAXMatDefinition::Material, "a"); },
        Text({B("1")}));
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), Text({B("1")}));
}

void tst_CatalogueEditor::anotherSpellingOfTheFileIsNoChange()
{
    const Workshop workshop;
    workshop.WriteCatalogue({A("0")});
    const QByteArray compact = QJsonDocument(Root(workshop)).toJson(QJsonDocument::Compact);
    Edit(
        workshop, [](CatalogueEditor& editor) { editor.SetRecord(Record(A("ours"))); }, compact);
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()),
             QJsonDocument::fromJson(Text({A("ours")})).toJson(QJsonDocument::Compact));
}

void tst_CatalogueEditor::damagedMeanwhileIsRefused()
{
    const Workshop workshop;
    workshop.WriteCatalogue({A("0")});
    const auto edit = [&] {
        Edit(
            workshop, [](CatalogueEditor& editor) { editor.SetRecord(Record(A("ours"))); }, "{ \"a\"");
    };
    QVERIFY(MessageOf(edit, ExitCode::FileFailure).contains("is damaged"));
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), QByteArray("{ \"a\""));
}

void tst_CatalogueEditor::removedMeanwhileIsRefused()
{
    const Workshop workshop;
    workshop.WriteCatalogue({A("0")});
    CatalogueEditor editor(OptionsOf(workshop), Quiet(), CatalogueEditor::MissingFile::Refuse,
                           [&] { QFile::remove(workshop.CatalogueFile()); });
    editor.SetRecord(Record(A("ours")));
    QVERIFY(MessageOf([&] { editor.Commit(); }, ExitCode::FileFailure).contains("cannot be read"));
    QVERIFY(!QFile::exists(workshop.CatalogueFile()));
}

void tst_CatalogueEditor::madeMeanwhileIsMerged()
{
    const Workshop workshop;
    CatalogueEditor editor(OptionsOf(workshop), Quiet(), CatalogueEditor::MissingFile::Create,
                           [&] { Workshop::Write(workshop.CatalogueFile(), Text({B("theirs")})); });
    QVERIFY(editor.IsNew());
    editor.SetRecord(Record(A("ours")));
    QVERIFY(editor.Commit().isMerged);
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), Text({A("ours"), B("theirs")}));
}

void tst_CatalogueEditor::writerWithoutALockLosesNothing()
{
    const Workshop workshop;
    workshop.WriteCatalogue({B("0")});
    constexpr int last = 300;
    // As the application does: it knows of no lock, and what it has not read it does not keep.
    const std::unique_ptr<QThread> application(QThread::create([&] {
        for (int i = 1; i <= last; ++i) {
            QSaveFile file(workshop.CatalogueFile());
            if (file.open(QIODevice::WriteOnly)) {
                file.write(Text({B(QByteArray::number(i))}));
                file.commit();
            }
        }
    }));
    application->start();
    for (int i = 0; !application->isFinished(); ++i) {
        try {
            CatalogueEditor editor(OptionsOf(workshop), Quiet());
            editor.SetRecord(Record(A(QByteArray::number(i))));
            editor.Commit();
        } catch (const Failure&) {
            // Changed again and again, or by both.
        }
    }
    application->wait();
    const QJsonObject root = QJsonDocument::fromJson(Workshop::Read(workshop.CatalogueFile())).object();
    QCOMPARE(root["b"], QJsonDocument::fromJson(Text({B(QByteArray::number(last))})).object()["b"]);
}

void tst_CatalogueEditor::mendedFileIsNotPutOverAChange()
{
    const Workshop workshop;
    Workshop::Write(workshop.CatalogueFile(), "before");
    const auto replace = [&] {
        ReplaceCatalogueFile(workshop.CatalogueFile(), "before", "after",
                             [&] { Workshop::Write(workshop.CatalogueFile(), "theirs"); });
    };
    QVERIFY(MessageOf(replace, ExitCode::FileChanged).contains("meanwhile"));
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), QByteArray("theirs"));
    QCOMPARE(QDir(workshop.CatalogueFolder()).entryList(QDir::Files | QDir::Hidden), QStringList("materials.json"));
    ReplaceCatalogueFile(workshop.CatalogueFile(), "theirs", "after");
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), QByteArray("after"));
}

void tst_CatalogueEditor::nothingStagedIsNothingWritten()
{
    const Workshop workshop;
    workshop.WriteCatalogue({A("0")});
    const CommitResult result = Edit(
        workshop, [](CatalogueEditor& editor) { editor.SetRecord(Record(A("0"))); }, "not even looked at");
    QVERIFY(!result.isWritten);
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), Text({A("0")}));
}

void tst_CatalogueEditor::theLastStateOfARecordCounts()
{
    const Workshop workshop;
    workshop.WriteCatalogue({A("0"), B("0")});
    {
        CatalogueEditor editor(OptionsOf(workshop), Quiet());
        editor.SetRecord(Record(A("first")));
        editor.RemoveRecord(ZAXMatDefinition::Material, "a");
        QVERIFY(!editor.GetRecord(ZAXMatDefinition::Material, "a").IsValid());
        editor.SetRecord(Record(A("last")));
        QCOMPARE(editor.GetRecord(ZAXMatDefinition::Material, "a"), Record(A("last")));
        QCOMPARE(editor.GetRecord(ZAXMatDefinition::Material, "b"), Record(B("0")));
        editor.Commit();
    }
    QCOMPARE(Workshop::Read(workshop.CatalogueFile()), Text({A("last"), B("0")}));
}

void tst_CatalogueEditor::theLockKeepsOthersOut()
{
    const Workshop workshop;
    workshop.WriteCatalogue({A("0")});
    const FileLock lock(workshop.CatalogueFile(), Quiet(), 0);
    const QString message =
        MessageOf([&] { const FileLock second(workshop.CatalogueFile(), Quiet(), 20); }, ExitCode::FileFailure);
    QVERIFY2(message.startsWith("\"" + workshop.CatalogueFile() + "\" is locked by process " +
                                QString::number(QCoreApplication::applicationPid()) + " (tst_CatalogueEditor) on "),
             qUtf8Printable(message));
}

void tst_CatalogueEditor::theLockOfADeadProcessIsNone()
{
    const Workshop workshop;
    workshop.WriteCatalogue({A("0")});
    Workshop::Write(workshop.CatalogueFile() + ".lock", "1\nsystemd\nelsewhere\n");
    {
        const FileLock lock(workshop.CatalogueFile(), Quiet(), 0);
    }
    QVERIFY(!QFile::exists(workshop.CatalogueFile() + ".lock"));
}

void tst_CatalogueEditor::conflictsAreTold()
{
    const ZAXMatDefinition before = Record(A("0"));
    const Catalogue base("c", {{"a", A("0")}});
    const Catalogue theirs("c", {{"a", A("theirs")}});
    QCOMPARE(ConflictsOf({}, base, theirs).size(), 0);
    QCOMPARE(ConflictsOf({{before, Record(A("ours"))}}, base, base).size(), 0);
    QCOMPARE(ConflictsOf({{before, Record(A("theirs"))}}, base, theirs).size(), 0);
    const auto conflicts = ConflictsOf({{before, Record(A("ours"))}}, base, theirs);
    QCOMPARE(conflicts.size(), 1);
    QCOMPARE(conflicts[0].before, before);
    QCOMPARE(conflicts[0].ours, Record(A("ours")));
    QCOMPARE(conflicts[0].theirs, Record(A("theirs")));
}

QTEST_GUILESS_MAIN(tst_CatalogueEditor)
#include "tst_CatalogueEditor.moc"
