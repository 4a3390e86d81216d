#include "ZAXSysAbstractEnumLocalization.h"

#include "ZAXSysModules.h"

#include <QHash>
#include <QMetaEnum>
#include <QMetaType>

#include <algorithm>

namespace {

struct Localization
{
    QList<int> values;
    std::function<QString(int)> label;
    const void* module = nullptr;
};

QHash<int, Localization>& Localizations()
{
    // Never destroyed: modules may leave after the statics of this library are gone.
    static auto* const localizations = [] {
        auto* const table = new QHash<int, Localization>;
        ZAXSysModules::OnLeave([table](const void* module) {
            table->removeIf([module](const auto& entry) { return entry.value().module == module; });
        });
        return table;
    }();
    return *localizations;
}

/// The enumerator of the enumeration with \a metaTypeId; invalid when Qt knows none.
QMetaEnum EnumeratorOf(int metaTypeId)
{
    const QMetaType type(metaTypeId);
    if (!type.metaObject())
        return {};
    const QByteArray name = QByteArray(type.name());
    return type.metaObject()->enumerator(
        type.metaObject()->indexOfEnumerator(name.mid(name.lastIndexOf(':') + 1).constData()));
}

} // namespace

void ZAXSysAbstractEnumLocalization::RegisterValueLocalization(int metaTypeId, const QList<int>& values,
                                                               const std::function<QString(int)>& label)
{
    if (metaTypeId == 0 || !label)
        return;
    Localizations().insert(metaTypeId, {values, label, ZAXSysModules::ModuleOf(__builtin_return_address(0))});
}

int ZAXSysAbstractEnumLocalization::StringToInteger(int metaTypeId, const QString& text)
{
    const Localization localization = Localizations().value(metaTypeId);
    const auto labelled =
        std::ranges::find_if(localization.values, [&](int value) { return localization.label(value) == text; });
    if (labelled != localization.values.end())
        return *labelled;
    const QMetaEnum enumerator = EnumeratorOf(metaTypeId);
    // Not QMetaEnum::keyToValue(), which takes scoped keys ("Form::Roll") as well.
    for (int i = 0; i < enumerator.keyCount(); ++i) {
        if (text == QLatin1String(enumerator.key(i)))
            return enumerator.value(i);
    }
    return -1;
}

QString ZAXSysAbstractEnumLocalization::IntegerToString(int metaTypeId, int value)
{
    const Localization localization = Localizations().value(metaTypeId);
    return localization.values.contains(value) ? localization.label(value) : QString();
}

QList<int> ZAXSysAbstractEnumLocalization::GetValues(int metaTypeId)
{
    return Localizations().value(metaTypeId).values;
}
