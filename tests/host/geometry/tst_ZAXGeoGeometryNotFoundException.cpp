#include "ZAXGeoGeometryNotFoundException.h"

#include "ZAXGeoGeometryRef.h"

#include <QTest>

#include <memory>

static_assert(std::is_base_of_v<ZAXSysException, ZAXGeoGeometryNotFoundException>);
static_assert(std::is_nothrow_copy_constructible_v<ZAXGeoGeometryNotFoundException>);
static_assert(std::is_nothrow_copy_assignable_v<ZAXGeoGeometryNotFoundException>);

namespace {

const QByteArray message("The object with the reference 42 was not found, or is of another kind.");

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
    throw ZAXGeoGeometryNotFoundException(ZAXGeoGeometryRef::FromId(42));
}

} // namespace

class tst_ZAXGeoGeometryNotFoundException : public QObject
{
    Q_OBJECT

private slots:
    void messageNamesTheId();
    void isCaughtAsItself();
    void isCaughtAsItsBases();
    void raiseThrowsTheSameKind();
    void cloneOfTheBaseKeepsTheKind();
    void assignmentTakesTheMessageOver();
};

void tst_ZAXGeoGeometryNotFoundException::messageNamesTheId()
{
    const ZAXGeoGeometryNotFoundException exception(ZAXGeoGeometryRef::FromId(42));
    QCOMPARE(exception.GetMessage(), QString::fromUtf8(message));
    const auto largest = ZAXGeoGeometryRef::FromId(std::numeric_limits<quint64>::max());
    QCOMPARE(ZAXGeoGeometryNotFoundException(largest).GetMessage(),
             QStringLiteral("The object with the reference 18446744073709551615 was not found, or is of another "
                            "kind."));
}

void tst_ZAXGeoGeometryNotFoundException::isCaughtAsItself()
{
    QCOMPARE(TextCaughtAs<ZAXGeoGeometryNotFoundException>(Throw), message);
}

void tst_ZAXGeoGeometryNotFoundException::isCaughtAsItsBases()
{
    QCOMPARE(TextCaughtAs<ZAXSysException>(Throw), message);
    QCOMPARE(TextCaughtAs<QException>(Throw), message);
    QCOMPARE(TextCaughtAs<std::exception>(Throw), message);
}

void tst_ZAXGeoGeometryNotFoundException::raiseThrowsTheSameKind()
{
    const ZAXGeoGeometryNotFoundException exception(ZAXGeoGeometryRef::FromId(42));
    const QException& base = exception;
    QCOMPARE(TextCaughtAs<ZAXGeoGeometryNotFoundException>([&] { base.raise(); }), message);
}

void tst_ZAXGeoGeometryNotFoundException::cloneOfTheBaseKeepsTheKind()
{
    const ZAXGeoGeometryNotFoundException exception(ZAXGeoGeometryRef::FromId(42));
    const std::unique_ptr<QException> clone(static_cast<const QException&>(exception).clone());
    QCOMPARE(TextCaughtAs<ZAXGeoGeometryNotFoundException>([&] { clone->raise(); }), message);
}

void tst_ZAXGeoGeometryNotFoundException::assignmentTakesTheMessageOver()
{
    ZAXGeoGeometryNotFoundException exception(ZAXGeoGeometryRef::FromId(1));
    exception = ZAXGeoGeometryNotFoundException(ZAXGeoGeometryRef::FromId(42));
    QCOMPARE(QByteArray(exception.what()), message);
}

QTEST_GUILESS_MAIN(tst_ZAXGeoGeometryNotFoundException)
#include "tst_ZAXGeoGeometryNotFoundException.moc"
