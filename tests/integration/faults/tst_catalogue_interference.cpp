#include "CatalogueFolder.h"
#include "CatalogueText.h"
#include "SystemCalls.h"
#include "ZAXMatJsonFileProvider.h"

#include <QLoggingCategory>
#include <QTest>

#include <cerrno>
#include <memory>

// Other programs change a catalogue's file between any two operations of the provider, and between any two calls that
// one of them makes to the system.

namespace {

using Operation = void (*)(ZAXMatJsonFileProvider&);
/// What another program does: it has \a text for the file.
using Change = void (*)(CatalogueFolder& folder, const QByteArray& text);

/// A kind of operation or change by its name.
template <typename Function>
struct Named
{
    const char* name;
    Function function;
};

void UpdateMaterial(ZAXMatJsonFileProvider& provider)
{
    ZAXMatDefinition material = provider.GetMaterial("a");
    material.SetValue("thickness", 7.5);
    provider.Update(material);
}

const QList<Named<Operation>> operations{
    {"GetMaterialKeys", [](auto& provider) { provider.GetMaterialKeys(); }},
    {"GetMaterial", [](auto& provider) { provider.GetMaterial("a"); }},
    {"GetPackagingKeys", [](auto& provider) { provider.GetPackagingKeys("a"); }},
    {"GetPackaging", [](auto& provider) { provider.GetPackaging("p"); }},
    {"CreateMaterial", [](auto& provider) { provider.CreateMaterial(QLatin1String("New")); }},
    {"CreatePackaging", [](auto& provider) { provider.CreatePackaging(QLatin1String("New"), "a"); }},
    {"RemoveMaterial", [](auto& provider) { provider.RemoveMaterial("b"); }},
    {"RemovePackaging", [](auto& provider) { provider.RemovePackaging("p"); }},
    {"Update", UpdateMaterial},
};
const Named<Operation> commit{"Commit", [](auto& provider) { provider.Commit(); }};

/// Puts \a text into the place of the file.
void Replace(CatalogueFolder& folder, const QByteArray& text)
{
    const QString aside = folder.Path() + QLatin1String("/aside");
    CatalogueFolder::WriteTo(aside, text);
    QFile::remove(folder.FilePath());
    QFile::rename(aside, folder.FilePath());
    folder.SetTime(QDateTime(QDate(2030, 1, 1), QTime(12, 0)));
}

void RewriteEarlier(CatalogueFolder& folder, const QByteArray& text)
{
    folder.Write(text);
    folder.SetTime(QDateTime(QDate(1999, 1, 1), QTime(12, 0)));
}

void Link(CatalogueFolder& folder, const QByteArray& text)
{
    const QString target = folder.Path() + QLatin1String("/target.json");
    CatalogueFolder::WriteTo(target, text);
    folder.Remove();
    QFile::link(target, folder.FilePath());
    folder.SetTime(QDateTime(QDate(2031, 1, 1), QTime(12, 0)));
}

/// What leaves a file that can be read.
const QList<Named<Change>> changes{
    {"replaced", Replace},
    {"rewritten", [](auto& folder, const auto& text) { folder.Write(text); }},
    {"rewritten at an earlier time", RewriteEarlier},
    {"truncated", [](auto& folder, const auto&) { folder.Write({}); }},
    {"half-written", [](auto& folder, const auto& text) { folder.Write(text.first(text.size() / 2)); }},
    {"garbage behind", [](auto& folder, const auto& text) { folder.Write(text + "}"); }},
    {"zeros behind", [](auto& folder, const auto& text) { folder.Write(text + QByteArray(4096, '\0')); }},
    {"a link in its place", Link},
};

QByteArray First()
{
    return CatalogueOf({MaterialText("a", "{'':{'thickness':1}}"), MaterialText("b"), PackagingText("p", "a")});
}

QByteArray Second()
{
    return CatalogueOf({MaterialText("a", "{'':{'thickness':2}}"), MaterialText("b"), MaterialText("c"),
                        PackagingText("p", "b"), PackagingText("q", "a")});
}

std::unique_ptr<ZAXMatJsonFileProvider> Open(const QByteArray& id, const CatalogueFolder& folder)
{
    return std::make_unique<ZAXMatJsonFileProvider>(id, QString(), folder.Path());
}

/// What a provider holds that opens the file as it is and does nothing but \a operation.
QStringList Expected(const CatalogueFolder& folder, Operation operation)
{
    CatalogueFolder other;
    other.Write(folder.Read());
    const auto provider = Open("expected", other);
    operation(*provider);
    return ContentOf(*provider);
}

} // namespace

Q_DECLARE_METATYPE(Operation)
Q_DECLARE_METATYPE(Change)

class tst_catalogue_interference : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void theNextOperationTakesWhatIsThere_data();
    void theNextOperationTakesWhatIsThere();
    void aFileThatIsGoneTakesNothingAlong_data();
    void aFileThatIsGoneTakesNothingAlong();
    void commitWritesWhatTheProviderHolds_data();
    void commitWritesWhatTheProviderHolds();
    void whatIsHalfWrittenIsReadOnceItIsWhole();

    void aChangeWhileTheFileIsReadIsSeenNext_data();
    void aChangeWhileTheFileIsReadIsSeenNext();
    void theTimeKeptIsThatOfTheFileThatIsRead();
    void aFileThatGoesWhileItIsReadLeavesTheCatalogue();
    void ofTwoThatWriteTheLastOneWins_data();
    void ofTwoThatWriteTheLastOneWins();
    void ofTwoThatWriteInPlaceTheLastOneWins_data();
    void ofTwoThatWriteInPlaceTheLastOneWins();
    void aFileThatOthersWroteBeforeAFailureInPlaceIsReadNext();
    void commitThatCannotTakeThePlaceOfTheFileLeavesIt();
};

void tst_catalogue_interference::init()
{
    // Malformed files are what many rows are about.
    QLoggingCategory::setFilterRules(QLatin1String("zax.material.json=false"));
}

void tst_catalogue_interference::cleanup()
{
    QLoggingCategory::setFilterRules(QString());
}

void tst_catalogue_interference::theNextOperationTakesWhatIsThere_data()
{
    QTest::addColumn<Operation>("before");
    QTest::addColumn<Change>("change");
    QTest::addColumn<Operation>("after");
    const auto befores = operations + QList{commit};
    for (const auto& before : befores) {
        for (const auto& change : changes) {
            for (const auto& after : operations)
                QTest::addRow("%s, %s, %s", before.name, change.name, after.name)
                    << before.function << change.function << after.function;
        }
    }
}

void tst_catalogue_interference::theNextOperationTakesWhatIsThere()
{
    QFETCH(const Operation, before);
    QFETCH(const Change, change);
    QFETCH(const Operation, after);
    CatalogueFolder folder;
    folder.Write(First());
    const auto provider = Open("tested", folder);
    before(*provider);
    change(folder, Second());
    const QStringList expected = Expected(folder, after);
    after(*provider);
    QCOMPARE(ContentOf(*provider), expected);
}

void tst_catalogue_interference::aFileThatIsGoneTakesNothingAlong_data()
{
    QTest::addColumn<Operation>("before");
    QTest::addColumn<Operation>("after");
    const auto befores = operations + QList{commit};
    for (const auto& before : befores) {
        for (const auto& after : operations)
            QTest::addRow("%s, %s", before.name, after.name) << before.function << after.function;
    }
}

void tst_catalogue_interference::aFileThatIsGoneTakesNothingAlong()
{
    QFETCH(const Operation, before);
    QFETCH(const Operation, after);
    CatalogueFolder undisturbed;
    undisturbed.Write(First());
    const auto expected = Open("expected", undisturbed);
    before(*expected);
    after(*expected);

    CatalogueFolder folder;
    folder.Write(First());
    const auto provider = Open("tested", folder);
    before(*provider);
    folder.Remove();
    after(*provider);
    QCOMPARE(ContentOf(*provider), ContentOf(*expected));
    QVERIFY(!QFile::exists(folder.FilePath()));
    // And nothing is lost for good.
    provider->Commit();
    QCOMPARE(ContentOf(*Open("again", folder)), ContentOf(*expected));
}

void tst_catalogue_interference::commitWritesWhatTheProviderHolds_data()
{
    QTest::addColumn<Operation>("before");
    QTest::addColumn<Change>("change");
    for (const auto& before : operations) {
        for (const auto& change : changes)
            QTest::addRow("%s, %s", before.name, change.name) << before.function << change.function;
    }
}

void tst_catalogue_interference::commitWritesWhatTheProviderHolds()
{
    QFETCH(const Operation, before);
    QFETCH(const Change, change);
    CatalogueFolder folder;
    folder.Write(First());
    const QStringList expected = Expected(folder, before);
    const auto provider = Open("tested", folder);
    before(*provider);
    change(folder, Second());
    provider->Commit();
    QCOMPARE(ContentOf(*Open("again", folder)), expected);
    QCOMPARE(ContentOf(*provider), expected);
}

void tst_catalogue_interference::whatIsHalfWrittenIsReadOnceItIsWhole()
{
    CatalogueFolder folder;
    folder.Write(First());
    const auto provider = Open("tested", folder);
    const QByteArray text = Second();
    folder.Write(text.first(10));
    QCOMPARE(ContentOf(*provider), QStringList());
    folder.Write(text.chopped(1));
    QCOMPARE(ContentOf(*provider), QStringList());
    folder.Write(text);
    QCOMPARE(ContentOf(*provider), ContentOf(*Open("expected", folder)));
    QCOMPARE(provider->GetMaterialKeys().size(), 3);
}

void tst_catalogue_interference::aChangeWhileTheFileIsReadIsSeenNext_data()
{
    QTest::addColumn<SystemCalls::Call>("call");
    QTest::addColumn<int>("nth");
    QTest::addColumn<Change>("change");
    for (const auto& change : changes) {
        QTest::addRow("%s, before the file is opened", change.name) << SystemCalls::Open << 0 << change.function;
        QTest::addRow("%s, before it is read", change.name) << SystemCalls::Read << 0 << change.function;
        QTest::addRow("%s, while it is read", change.name) << SystemCalls::Read << 1 << change.function;
        QTest::addRow("%s, before the end of it is read", change.name) << SystemCalls::Read << 39 << change.function;
    }
}

void tst_catalogue_interference::aChangeWhileTheFileIsReadIsSeenNext()
{
    QFETCH(const SystemCalls::Call, call);
    QFETCH(const int, nth);
    QFETCH(const Change, change);
    CatalogueFolder folder;
    folder.Write(First());
    const auto provider = Open("tested", folder);
    // Long enough for more than one read.
    folder.Write(First() + QByteArray(40000, ' '));
    {
        const SystemCalls::Interruption meanwhile(call, nth, [&] { change(folder, Second()); });
        provider->GetMaterialKeys();
        QVERIFY(meanwhile.Count() > nth);
    }
    QCOMPARE(ContentOf(*provider), ContentOf(*Open("expected", folder)));
}

void tst_catalogue_interference::theTimeKeptIsThatOfTheFileThatIsRead()
{
    CatalogueFolder folder;
    folder.Write(First());
    const auto provider = Open("tested", folder);
    folder.Write(First() + " ");
    {
        // The file that is open is no longer the one under this name: the other is read by the next operation.
        const SystemCalls::Interruption meanwhile(SystemCalls::Status, 0, [&] { Replace(folder, Second()); });
        QCOMPARE(provider->GetMaterialKeys().size(), 2);
        QVERIFY(meanwhile.Count() > 0);
    }
    QCOMPARE(provider->GetMaterialKeys().size(), 3);
}

void tst_catalogue_interference::aFileThatGoesWhileItIsReadLeavesTheCatalogue()
{
    CatalogueFolder folder;
    folder.Write(First());
    const auto provider = Open("tested", folder);
    const QStringList before = ContentOf(*provider);
    folder.Write(Second());
    {
        const SystemCalls::Interruption meanwhile(SystemCalls::Open, 0, [&] { folder.Remove(); });
        QCOMPARE(provider->GetMaterialKeys().size(), 2);
    }
    QCOMPARE(ContentOf(*provider), before);
}

void tst_catalogue_interference::ofTwoThatWriteTheLastOneWins_data()
{
    QTest::addColumn<SystemCalls::Call>("call");
    QTest::addColumn<Change>("change");
    for (const auto& change : changes) {
        QTest::addRow("%s, before the new file is made", change.name) << SystemCalls::Open << change.function;
        QTest::addRow("%s, before it is written", change.name) << SystemCalls::Write << change.function;
        QTest::addRow("%s, before it takes its place", change.name) << SystemCalls::Rename << change.function;
    }
}

void tst_catalogue_interference::ofTwoThatWriteTheLastOneWins()
{
    QFETCH(const SystemCalls::Call, call);
    QFETCH(const Change, change);
    CatalogueFolder folder;
    folder.Write(First());
    const auto provider = Open("tested", folder);
    UpdateMaterial(*provider);
    const QStringList expected = ContentOf(*provider);
    {
        const SystemCalls::Interruption meanwhile(call, 0, [&] { change(folder, Second()); });
        provider->Commit();
        QVERIFY(meanwhile.Count() > 0);
    }
    QCOMPARE(ContentOf(*provider), expected);
    QCOMPARE(ContentOf(*Open("again", folder)), expected);
}

void tst_catalogue_interference::ofTwoThatWriteInPlaceTheLastOneWins_data()
{
    QTest::addColumn<SystemCalls::Call>("call");
    QTest::addColumn<int>("nth");
    QTest::newRow("before the file is opened") << SystemCalls::Open << 1;
    QTest::newRow("before it is read") << SystemCalls::Read << 0;
    QTest::newRow("before it is written") << SystemCalls::Write << 0;
}

void tst_catalogue_interference::ofTwoThatWriteInPlaceTheLastOneWins()
{
    QFETCH(const SystemCalls::Call, call);
    QFETCH(const int, nth);
    CatalogueFolder folder;
    folder.Write(First());
    const auto provider = Open("tested", folder);
    UpdateMaterial(*provider);
    const QStringList expected = ContentOf(*provider);
    CatalogueFolder::SetMode(folder.FilePath(), 0666);
    CatalogueFolder::SetMode(folder.Path(), 0555);
    {
        const OrdinaryUser user;
        const SystemCalls::Interruption meanwhile(call, nth, [&] { folder.Write(Second() + QByteArray(9000, ' ')); });
        provider->Commit();
        QVERIFY(meanwhile.Count() > nth);
    }
    QCOMPARE(ContentOf(*provider), expected);
    QCOMPARE(ContentOf(*Open("again", folder)), expected);
}

void tst_catalogue_interference::aFileThatOthersWroteBeforeAFailureInPlaceIsReadNext()
{
    CatalogueFolder folder;
    folder.Write(First());
    const auto provider = Open("tested", folder);
    UpdateMaterial(*provider);
    folder.Write(Second());
    CatalogueFolder::SetMode(folder.FilePath(), 0666);
    CatalogueFolder::SetMode(folder.Path(), 0555);
    {
        const OrdinaryUser user;
        const SystemCalls::Failure failure(SystemCalls::Write, 0, ENOSPC, 1);
        provider->Commit();
    }
    QCOMPARE(folder.Read(), Second());
    QCOMPARE(ContentOf(*provider), ContentOf(*Open("expected", folder)));
}

void tst_catalogue_interference::commitThatCannotTakeThePlaceOfTheFileLeavesIt()
{
    QLoggingCategory::setFilterRules(QString());
    CatalogueFolder folder;
    folder.Write(First());
    const auto provider = Open("tested", folder);
    UpdateMaterial(*provider);
    const QStringList expected = ContentOf(*provider);
    ExpectWarning(QLatin1String("^Cannot write .*/materials\\.json: "));
    {
        const SystemCalls::Failure failure(SystemCalls::Rename, 0, EIO);
        provider->Commit();
    }
    QCOMPARE(folder.Read(), First());
    QCOMPARE(folder.Entries(), QStringList{QLatin1String("materials.json")});
    QCOMPARE(ContentOf(*provider), expected);
    provider->Commit();
    QCOMPARE(ContentOf(*Open("again", folder)), expected);
}

QTEST_GUILESS_MAIN(tst_catalogue_interference)
#include "tst_catalogue_interference.moc"
