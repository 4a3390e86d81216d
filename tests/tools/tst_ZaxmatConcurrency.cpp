#include "Workshop.h"

#include <QDir>
#include <QJsonDocument>
#include <QProcess>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSaveFile>
#include <QTest>
#include <QThread>

#include <atomic>
#include <memory>
#include <vector>

/// Many processes on one catalogue, and processes that are killed.
class tst_ZaxmatConcurrency : public QObject
{
    Q_OBJECT

private slots:
    void noUpdateOfParallelProcessesIsLost();
    void noUpdateOfOneRecordIsTorn();
    void aRecordThatSomebodyElseChangesIsAConflict();
    void noChangeOfOneDocumentIsLost();
    void killedProcessesLeaveTheOldOrTheNewCatalogue();
    void killedAndLivingProcessesLoseNothing();
};

namespace {

using Processes = std::vector<std::unique_ptr<QProcess>>;

/// A size that proves the point in a few seconds, or the full one.
int Sized(int small, int full)
{
    return qEnvironmentVariable("ZAX_FULL_TESTS") == QLatin1String("1") ? full : small;
}

std::unique_ptr<QProcess> Start(const Workshop& workshop, const QStringList& arguments)
{
    auto process = std::make_unique<QProcess>();
    process->setProcessEnvironment(workshop.environment);
    process->setProcessChannelMode(QProcess::MergedChannels);
    process->start(QStringLiteral(ZAXMAT_PROGRAM), arguments);
    return process;
}

bool IsDone(QProcess& process)
{
    return process.waitForFinished(300000) && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

QJsonObject Root(const Workshop& workshop)
{
    return QJsonDocument::fromJson(Workshop::Read(workshop.CatalogueFile())).object();
}

QString KeyOf(int i)
{
    return QString("m%1").arg(i, 4, 10, QLatin1Char('0'));
}

QJsonValue Value(const QJsonObject& root, const QString& key, const QString& property)
{
    return root[key].toObject()["properties"].toObject()[QString()].toObject()[property];
}

void WriteMaterials(const Workshop& workshop, int count)
{
    QList<QJsonObject> records;
    for (int i = 0; i < count; ++i)
        records.append(Material(KeyOf(i), "Material " + QString::number(i), {{"thickness", 1}, {"comment", "old"}}));
    workshop.WriteCatalogue(records);
}

QStringList Names(const QJsonObject& root)
{
    QStringList names;
    for (const QJsonValue& record : root)
        names.append(record["name"].toString());
    names.sort();
    return names;
}

QStringList Files(const Workshop& workshop)
{
    return QDir(workshop.CatalogueFolder()).entryList(QDir::Files | QDir::Hidden);
}

} // namespace

void tst_ZaxmatConcurrency::noUpdateOfParallelProcessesIsLost()
{
    const int count = Sized(50, 200);
    const Workshop workshop;
    WriteMaterials(workshop, count);
    Processes processes;
    for (int i = 0; i < count; ++i) {
        const QString number = QString::number(i);
        const QString prices = workshop.Path("prices " + number + ".csv");
        Workshop::Write(prices, "name,thickness\nImported " + number.toUtf8() + ",1\n");
        processes.push_back(Start(workshop, {"set", KeyOf(i), "thickness=" + QString::number(i + 2)}));
        processes.push_back(Start(workshop, {"import", prices}));
    }
    for (const auto& process : processes)
        QVERIFY2(IsDone(*process), process->readAll().constData());
    const QJsonObject root = Root(workshop);
    QCOMPARE(root.size(), 2 * count);
    for (int i = 0; i < count; ++i)
        QCOMPARE(Value(root, KeyOf(i), "thickness"), QJsonValue(i + 2));
    const QStringList names = Names(root);
    for (int i = 0; i < count; ++i)
        QCOMPARE(names.count("Imported " + QString::number(i)), 1);
    QCOMPARE(Files(workshop), QStringList{"materials.json"});
}

void tst_ZaxmatConcurrency::noUpdateOfOneRecordIsTorn()
{
    const int count = Sized(20, 100);
    const Workshop workshop;
    WriteMaterials(workshop, 1);
    Processes processes;
    for (int i = 0; i < count; ++i)
        processes.push_back(Start(
            workshop, {"set", KeyOf(0), "thickness=" + QString::number(i + 2), "comment=" + QString::number(i + 2)}));
    for (const auto& process : processes)
        QVERIFY2(IsDone(*process), process->readAll().constData());
    const QJsonObject root = Root(workshop);
    QVERIFY(Value(root, KeyOf(0), "comment").toString() != "old");
    QCOMPARE(Value(root, KeyOf(0), "comment").toString(),
             QString::number(Value(root, KeyOf(0), "thickness").toDouble()));
}

void tst_ZaxmatConcurrency::aRecordThatSomebodyElseChangesIsAConflict()
{
    const Workshop workshop;
    WriteMaterials(workshop, 1);
    std::atomic<bool> isDone = false;
    // As the application does, which knows of no lock.
    const std::unique_ptr<QThread> application(QThread::create([&] {
        for (int i = 0; !isDone; ++i) {
            QSaveFile file(workshop.CatalogueFile());
            const QJsonObject record = Material(KeyOf(0), "Material 0", {{"comment", "theirs " + QString::number(i)}});
            if (file.open(QIODevice::WriteOnly)) {
                file.write(QJsonDocument(QJsonObject{{KeyOf(0), record}}).toJson());
                file.commit();
            }
        }
    }));
    application->start();
    constexpr int conflict = 4;
    int code = 0;
    QString message;
    for (int i = 0; i < 500 && code != conflict; ++i) {
        const auto process = Start(workshop, {"set", KeyOf(0), "comment=ours " + QString::number(i)});
        process->waitForFinished();
        code = process->exitCode();
        message = QString::fromUtf8(process->readAll());
    }
    isDone = true;
    application->wait();
    QCOMPARE(code, conflict);
    QVERIFY2(message.contains(QRegularExpression("comment: was \"(old|theirs [0-9]+)\", is \"ours [0-9]+\" here and "
                                                 "\"theirs [0-9]+\" in the file")) ||
                 message.contains("again and again"),
             qUtf8Printable(message));
    QVERIFY(Value(Root(workshop), KeyOf(0), "comment").toString().startsWith("theirs "));
}

void tst_ZaxmatConcurrency::noChangeOfOneDocumentIsLost()
{
    const int count = Sized(20, 200);
    const Workshop workshop;
    WriteMaterials(workshop, count);
    const QString document = workshop.Path("job.zaxdoc");
    Processes processes;
    for (int i = 0; i < count; ++i)
        processes.push_back(Start(workshop, {"use", KeyOf(i), "--document", document}));
    for (const auto& process : processes)
        QVERIFY2(IsDone(*process), process->readAll().constData());
    processes.clear();
    for (int i = 0; i < count; ++i)
        processes.push_back(Start(workshop, {"document", "set", document, "Material " + QString::number(i) + " - 1 mm",
                                             "comment=" + QString::number(i)}));
    for (const auto& process : processes)
        QVERIFY2(IsDone(*process), process->readAll().constData());
    const auto tree = Start(workshop, {"document", "tree", document, "--format", "json"});
    QVERIFY(IsDone(*tree));
    QCOMPARE(tree->readAll().count("\"class\": \"ZAXMatMaterial\""), count);
    for (int i = 0; i < count; ++i) {
        const QString label = "Material " + QString::number(i) + " - 1 mm";
        const auto shown = Start(workshop, {"document", "show", document, label});
        QVERIFY(IsDone(*shown));
        QVERIFY(QString::fromUtf8(shown->readAll())
                    .contains(QRegularExpression("\nComment +" + QString::number(i) + "\n")));
    }
}

void tst_ZaxmatConcurrency::killedProcessesLeaveTheOldOrTheNewCatalogue()
{
    const Workshop workshop;
    WriteMaterials(workshop, 500);
    QRandomGenerator random(7);
    const int rounds = Sized(40, 400);
    for (int round = 0; round < rounds; ++round) {
        const QString comment = QString::number(round);
        const QJsonObject before = Root(workshop);
        QJsonObject after = before;
        QJsonObject record = before[KeyOf(0)].toObject();
        record["properties"] = QJsonObject{{QString(), QJsonObject{{"thickness", 1}, {"comment", comment}}}};
        after[KeyOf(0)] = record;
        const auto process = Start(workshop, {"set", KeyOf(0), "comment=" + comment});
        process->waitForStarted();
        process->waitForFinished(static_cast<int>(random.bounded(1, 60)));
        process->kill();
        process->waitForFinished();
        const QByteArray bytes = Workshop::Read(workshop.CatalogueFile());
        QVERIFY2(bytes == QJsonDocument(before).toJson() || bytes == QJsonDocument(after).toJson(), bytes.constData());
    }
    // What the killed ones left goes with the next edit.
    const auto last = Start(workshop, {"set", KeyOf(1), "comment=last"});
    QVERIFY2(IsDone(*last), last->readAll().constData());
    QCOMPARE(Value(Root(workshop), KeyOf(1), "comment"), QJsonValue("last"));
    QCOMPARE(Files(workshop), QStringList{"materials.json"});
}

void tst_ZaxmatConcurrency::killedAndLivingProcessesLoseNothing()
{
    const int count = Sized(30, 200);
    const Workshop workshop;
    WriteMaterials(workshop, count);
    QRandomGenerator random(11);
    Processes living;
    Processes killed;
    for (int i = 0; i < count; ++i) {
        living.push_back(Start(workshop, {"set", KeyOf(i), "thickness=7"}));
        killed.push_back(Start(workshop, {"set", KeyOf(i), "category=killed"}));
        killed[random.bounded(quint32(killed.size()))]->kill();
    }
    for (const auto& process : killed) {
        process->kill();
        process->waitForFinished();
    }
    for (const auto& process : living)
        QVERIFY2(IsDone(*process), process->readAll().constData());
    const QJsonObject root = Root(workshop);
    QCOMPARE(root.size(), count);
    for (int i = 0; i < count; ++i)
        QCOMPARE(Value(root, KeyOf(i), "thickness"), QJsonValue(7));
    const auto last = Start(workshop, {"set", KeyOf(0), "comment=last"});
    QVERIFY2(IsDone(*last), last->readAll().constData());
    QCOMPARE(Files(workshop), QStringList{"materials.json"});
}

QTEST_GUILESS_MAIN(tst_ZaxmatConcurrency)
#include "tst_ZaxmatConcurrency.moc"
