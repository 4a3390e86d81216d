#ifndef ZAXMATTESTLISTENERS_H
#define ZAXMATTESTLISTENERS_H

#include "ZAXFeatLastSavedStore.h"
#include "ZAXSysException.h"

#include <QHash>
#include <QObject>
#include <QStringList>
#include <QTranslator>

#include <map>
#include <utility>

/// Notes every signal that an object raises, of its own class and of its bases, by name and in order.
class ZAXTestSignalLog : public QObject
{
    Q_OBJECT

public:
    explicit ZAXTestSignalLog(QObject* sender);

    QStringList names;

private slots:
    void Note();
};

/// Keeps last-saved values for the time that it lives, and notes what is kept: "ZAXMatPackaging.cost = 2".
class ZAXTestLastSavedStore : public ZAXFeatLastSavedStore
{
public:
    ZAXTestLastSavedStore();
    ~ZAXTestLastSavedStore() override;

    QVariant GetValue(const QByteArray& className, const QByteArray& property) const override;
    void SetValue(const QByteArray& className, const QByteArray& property, const QVariant& value) override;

    QStringList noted;

private:
    std::map<std::pair<QByteArray, QByteArray>, QVariant> m_values;
};

/// Another language, for the time that it lives: answers with the context and the text, "<ZAXMatMaterial:Copy>",
/// for the texts it is given, in any context, and leaves all others alone.
class ZAXTestTranslator : public QTranslator
{
    Q_OBJECT

public:
    explicit ZAXTestTranslator(const QStringList& texts);
    ~ZAXTestTranslator() override;

    QString translate(const char* context, const char* text, const char* disambiguation, int n) const override;
    bool isEmpty() const override;

private:
    QStringList m_texts;
};

/// The message of the exception that \a action throws.
template <typename Action>
QString MessageThrownBy(Action action)
{
    try {
        action();
    } catch (const ZAXSysException& exception) {
        return exception.GetMessage();
    }
    return QLatin1String("(nothing was thrown)");
}

#endif
