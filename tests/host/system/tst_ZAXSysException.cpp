#include "ZAXSysException.h"

#include <QTest>

#include <memory>
#include <type_traits>

static_assert(std::is_base_of_v<QException, ZAXSysException>);
static_assert(std::is_base_of_v<std::exception, ZAXSysException>);
static_assert(std::is_nothrow_copy_constructible_v<ZAXSysException>);
static_assert(std::is_nothrow_copy_assignable_v<ZAXSysException>);
static_assert(std::is_nothrow_move_constructible_v<ZAXSysException>);
static_assert(!std::is_convertible_v<QString, ZAXSysException>);

namespace {

/// The text of \a thrown when it is caught as an \a Expected.
template <typename Expected>
QByteArray TextCaughtAs(const std::function<void()>& thrower)
{
    try {
        thrower();
    } catch (const Expected& exception) {
        return exception.what();
    }
    return "nothing was thrown";
}

void Throw()
{
    throw ZAXSysException(QStringLiteral("Types do not match."));
}

} // namespace

class tst_ZAXSysException : public QObject
{
    Q_OBJECT

private slots:
    void messageIsKeptExactly_data();
    void messageIsKeptExactly();
    void isCaughtAsItself();
    void isCaughtAsQException();
    void isCaughtAsStdException();
    void raiseThrowsTheSameKind();
    void cloneOfTheBaseKeepsKindAndMessage();
    void copyHasTheSameMessage();
    void assignmentTakesTheMessageOver();
    void textStaysValidAsLongAsACopyLives();
};

void tst_ZAXSysException::messageIsKeptExactly_data()
{
    QTest::addColumn<QString>("message");
    QTest::addColumn<QByteArray>("utf8");
    QTest::newRow("plain") << "Types do not match." << QByteArray("Types do not match.");
    QTest::newRow("empty") << "" << QByteArray("");
    QTest::newRow("two-byte characters") << u"0,5 µm ø"_qs << QByteArray("0,5 \xC2\xB5m \xC3\xB8");
    QTest::newRow("outside the basic plane") << QString::fromUtf8("\xF0\x9F\x94\xA9") << QByteArray("\xF0\x9F\x94\xA9");
    QTest::newRow("placeholders") << "100 %1 %2 %s" << QByteArray("100 %1 %2 %s");
    QTest::newRow("line ends and spaces") << " a\r\nb\n " << QByteArray(" a\r\nb\n ");
    QTest::newRow("quotes") << "\"type\" is 'not' a material extension"
                            << QByteArray("\"type\" is 'not' a material extension");
}

void tst_ZAXSysException::messageIsKeptExactly()
{
    QFETCH(QString, message);
    QFETCH(QByteArray, utf8);
    const ZAXSysException exception(message);
    QCOMPARE(exception.GetMessage(), message);
    QCOMPARE(QByteArray(exception.what()), utf8);
}

void tst_ZAXSysException::isCaughtAsItself()
{
    QCOMPARE(TextCaughtAs<ZAXSysException>(Throw), QByteArray("Types do not match."));
}

void tst_ZAXSysException::isCaughtAsQException()
{
    QCOMPARE(TextCaughtAs<QException>(Throw), QByteArray("Types do not match."));
}

void tst_ZAXSysException::isCaughtAsStdException()
{
    QCOMPARE(TextCaughtAs<std::exception>(Throw), QByteArray("Types do not match."));
}

void tst_ZAXSysException::raiseThrowsTheSameKind()
{
    const ZAXSysException exception(QStringLiteral("from raise()"));
    const QException& base = exception;
    QCOMPARE(TextCaughtAs<ZAXSysException>([&] { base.raise(); }), QByteArray("from raise()"));
}

void tst_ZAXSysException::cloneOfTheBaseKeepsKindAndMessage()
{
    std::unique_ptr<QException> clone;
    {
        const ZAXSysException exception(QStringLiteral("from clone()"));
        clone.reset(static_cast<const QException&>(exception).clone());
    }
    QCOMPARE(TextCaughtAs<ZAXSysException>([&] { clone->raise(); }), QByteArray("from clone()"));
}

void tst_ZAXSysException::copyHasTheSameMessage()
{
    const ZAXSysException exception(QStringLiteral("original"));
    const ZAXSysException copy(exception); // NOLINT(performance-unnecessary-copy-initialization)
    QCOMPARE(copy.GetMessage(), QStringLiteral("original"));
    QCOMPARE(exception.GetMessage(), QStringLiteral("original"));
}

void tst_ZAXSysException::assignmentTakesTheMessageOver()
{
    ZAXSysException exception(QStringLiteral("before"));
    exception = ZAXSysException(QStringLiteral("after"));
    QCOMPARE(exception.GetMessage(), QStringLiteral("after"));
    QCOMPARE(QByteArray(exception.what()), QByteArray("after"));
}

void tst_ZAXSysException::textStaysValidAsLongAsACopyLives()
{
    auto exception = std::make_unique<ZAXSysException>(QStringLiteral("kept"));
    const ZAXSysException copy(*exception);
    const char* const text = exception->what();
    exception.reset();
    QCOMPARE(QByteArray(text), QByteArray("kept"));
    QCOMPARE(copy.what(), text);
}

QTEST_GUILESS_MAIN(tst_ZAXSysException)
#include "tst_ZAXSysException.moc"
