#include "Values.h"

#include "DocumentFile.h"
#include "Failure.h"
#include "Properties.h"
#include "RecordDifference.h"
#include "Schema.h"
#include "Text.h"

#include "ZAXFeatObject.h"
#include "ZAXMatMaterial.h"
#include "ZAXMatMaterialExtension.h"
#include "ZAXMatPackaging.h"
#include "ZAXMatPackagingExtension.h"
#include "ZAXMatRoot.h"
#include "ZAXSysAbstractEnumLocalization.h"
#include "ZAXSysDefinedValue.h"

#include <QColor>
#include <QMetaEnum>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numeric>
#include <optional>
#include <utility>

namespace zaxmat {

namespace {

QString KindOf(ZAXMatDefinition::Type type)
{
    return type == ZAXMatDefinition::Material ? Text::tr("A material") : Text::tr("A stock form");
}

/// How many letters must be changed, put in or left out to make one text of the other.
qsizetype Distance(const QString& a, const QString& b)
{
    QList<qsizetype> row(b.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (qsizetype i = 0; i < a.size(); ++i) {
        qsizetype diagonal = std::exchange(row[0], i + 1);
        for (qsizetype j = 0; j < b.size(); ++j) {
            const qsizetype replaced = diagonal + (a[i] == b[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({row[j] + 1, diagonal + 1, replaced});
        }
    }
    return row.constLast();
}

bool IsSimilar(const QString& a, const QString& b)
{
    return a.contains(b, Qt::CaseInsensitive) || b.contains(a, Qt::CaseInsensitive) ||
           Distance(a.toLower(), b.toLower()) <= 2;
}

Failure UnknownProperty(ZAXMatDefinition::Type type, const PropertyName& name)
{
    const QList<QByteArray> known = Schema().GetProperties(type, name.extension);
    QStringList all;
    QStringList similar;
    for (const QByteArray& property : known) {
        all.append(NameText({name.extension, property}));
        if (IsSimilar(QString::fromLatin1(property), QString::fromLatin1(name.property)))
            similar.append(all.constLast());
    }
    if (all.isEmpty()) {
        return {ExitCode::WrongUsage, Text::tr("No module provides the extension %1, which %2 belongs to.")
                                          .arg(Quoted(QString::fromLatin1(name.extension)), Quoted(NameText(name)))};
    }
    const QString what = Text::tr("%1 has no property %2 to set.").arg(KindOf(type), Quoted(NameText(name)));
    return {ExitCode::WrongUsage,
            what + u'\n' +
                (similar.isEmpty() ? Text::tr("It has: %1").arg(all.join(QLatin1String(", ")))
                                   : Text::tr("Similar: %1").arg(similar.join(QLatin1String(", "))))};
}

Failure InvalidValue(const PropertyName& name, const QString& text, const QString& why)
{
    return {ExitCode::InvalidValues, Text::tr("%1: %2 %3").arg(Printable(NameText(name)), Quoted(text), why)};
}

using DecimalComma = ValueReading::DecimalComma;

/// \throws Failure (InvalidValues) when AmbiguityOf() has something to say of \a text.
void RequireUnambiguous(const PropertyName& name, const QString& text, const ValueReading& reading)
{
    if (const QString why = AmbiguityOf(text, reading.decimalComma); !why.isEmpty())
        throw InvalidValue(name, text, why);
}

std::optional<double> ReadNumber(const QString& text, const ValueReading& reading)
{
    QString number = text.trimmed();
    if (reading.decimalComma != DecimalComma::Refused)
        number.replace(u',', u'.');
    bool ok = false;
    const double value = number.toDouble(&ok);
    return ok && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

/// A length or a density.
QVariant ReadQuantity(ZAXSysQuantity quantity, const PropertyName& name, const QString& text,
                      const ValueReading& reading)
{
    RequireUnambiguous(name, text, reading);
    const bool isBare = ReadNumber(text, reading).has_value();
    const QString full = isBare && !reading.unit.isEmpty() ? text + u' ' + reading.unit : text;
    const auto value = reading.decimalComma == DecimalComma::Refused && text.contains(u',')
                           ? std::nullopt
                           : ZAXSysValue::FromString(quantity, full);
    if (value)
        return *value;
    throw InvalidValue(
        name, text,
        quantity == ZAXSysQuantity::Length
            ? Text::tr(
                  "is no length. Give a number of millimetres, or a number with its unit: 2, \"2 mm\", \"0.5 in\".")
            : Text::tr("is no density. Give a number of grams per cubic centimetre, or a number with its unit: 7.85, "
                       "\"7850 kg/m³\"."));
}

QVariant ReadEnumerator(const QMetaProperty& property, const PropertyName& name, const QString& text)
{
    const QMetaEnum enumerator = property.enumerator();
    bool ok = false;
    int value = ZAXSysAbstractEnumLocalization::StringToInteger(property.metaType().id(), text);
    ok = enumerator.valueToKey(value) != nullptr;
    if (!ok)
        value = enumerator.keyToValue(text.toUtf8(), &ok);
    if (ok)
        return QString::fromLatin1(enumerator.valueToKey(value));
    QStringList names;
    for (int i = 0; i < enumerator.keyCount(); ++i)
        names.append(QString::fromLatin1(enumerator.key(i)));
    throw InvalidValue(name, text, Text::tr("is none of %1.").arg(names.join(QLatin1String(", "))));
}

QVariant RequireBoolean(const PropertyName& name, const QString& text)
{
    if (const auto value = ReadBoolean(text))
        return *value;
    throw InvalidValue(name, text, Text::tr("is neither true nor false."));
}

QVariant RequireNumber(const PropertyName& name, const QString& text, const ValueReading& reading)
{
    RequireUnambiguous(name, text, reading);
    if (const auto value = ReadNumber(text, reading))
        return *value;
    throw InvalidValue(name, text, Text::tr("is no number."));
}

QVariant RequireInteger(const PropertyName& name, const QString& text)
{
    bool ok = false;
    const qlonglong value = text.trimmed().toLongLong(&ok);
    if (ok)
        return value;
    throw InvalidValue(name, text, Text::tr("is no whole number."));
}

QVariant RequireColor(const PropertyName& name, const QString& text)
{
    const QColor color(text.trimmed());
    if (!color.isValid())
        throw InvalidValue(name, text, Text::tr("is no colour. Give one such as \"#ff8000\" or \"red\"."));
    return color.name(color.alpha() == 255 ? QColor::HexRgb : QColor::HexArgb);
}

} // namespace

QString AmbiguityOf(const QString& text, DecimalComma comma)
{
    if (comma == DecimalComma::Refused)
        return {};
    static const QRegularExpression grouped(QLatin1String(R"(^[+-]?[1-9][0-9]{0,2}([.,])[0-9]{3}(?![0-9.,]))"));
    const auto match = grouped.match(text.trimmed());
    const QLatin1String sign(comma == DecimalComma::Usual ? "," : ".");
    const bool isThousands = match.hasMatch() && match.captured(1) != sign;
    if (!isThousands)
        return {};
    const QStringList parts = match.captured().split(match.captured(1));
    QString decimals = parts.constLast();
    while (decimals.endsWith(u'0') && decimals.size() > 1)
        decimals.chop(1);
    // With three digits again it would be no clearer.
    const QString padding = decimals.size() == 3 ? QString(u'0') : QString();
    const QString unit = text.trimmed().sliced(match.capturedLength());
    return Text::tr("is ambiguous; write %1 or %2.")
        .arg(parts.join(QString()) + unit, parts.constFirst() + sign + decimals + padding + unit);
}

std::optional<bool> ReadBoolean(const QString& text)
{
    const QString word = text.trimmed().toLower();
    if (word == QLatin1String("true") || word == QLatin1String("yes"))
        return true;
    if (word == QLatin1String("false") || word == QLatin1String("no"))
        return false;
    return std::nullopt;
}

PropertyName ParsePropertyName(const QString& text)
{
    const qsizetype point = text.indexOf(u'.');
    const PropertyName name{text.first(std::max(point, qsizetype(0))).toLatin1(), text.sliced(point + 1).toLatin1()};
    if (name.property.isEmpty() || point == 0)
        throw Failure(ExitCode::WrongUsage, Text::tr("%1 names no property. Write it as thickness or as "
                                                     "Extension.property.")
                                                .arg(Quoted(text)));
    return name;
}

QString LimitOf(const QMetaProperty& property, const QVariant& value)
{
    // What the features take for nothing.
    constexpr double least = 0.001;
    QVariant taken = value;
    if (!taken.convert(property.metaType()))
        return {};
    const auto quantity = QuantityOf(property);
    if (quantity == ZAXSysQuantity::Density)
        return taken.toDouble() > 0 ? QString() : Text::tr("it must be greater than zero");
    if (quantity == ZAXSysQuantity::Length)
        return taken.toDouble() >= least ? QString() : Text::tr("it must be at least 0.001 mm");
    const bool isCost = QLatin1String(property.name()) == QLatin1String(ZAXMatPackaging::Property_cost);
    return !isCost || taken.toDouble() >= least ? QString() : Text::tr("it must be at least 0.001");
}

QString NameText(const PropertyName& name)
{
    return FieldName(name.extension, name.property);
}

QMetaProperty RequireProperty(ZAXMatDefinition::Type type, const PropertyName& name)
{
    const QMetaProperty property = FindProperty(ClassOf(type, name.extension), name.property);
    if (!property.isValid() || !Schema().GetProperties(type, name.extension).contains(name.property))
        throw UnknownProperty(type, name);
    return property;
}

QVariant ParseValue(const QMetaProperty& property, const PropertyName& name, const QString& text,
                    const ValueReading& reading)
{
    if (text.isEmpty())
        return {};
    const QMetaType type = property.metaType();
    if (type == QMetaType::fromType<ZAXSysLengthValue>())
        return ReadQuantity(ZAXSysQuantity::Length, name, text, reading);
    if (type == QMetaType::fromType<ZAXSysDensityValue>())
        return ReadQuantity(ZAXSysQuantity::Density, name, text, reading);
    if (property.isEnumType())
        return ReadEnumerator(property, name, text);
    switch (type.id()) {
    case QMetaType::Bool:
        return RequireBoolean(name, text);
    case QMetaType::Double:
    case QMetaType::Float:
        return RequireNumber(name, text, reading);
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        return RequireInteger(name, text);
    case QMetaType::QColor:
        return RequireColor(name, text);
    case QMetaType::QString:
    case QMetaType::QByteArray:
        return text;
    default:
        break;
    }
    if (!QMetaType::canConvert(QMetaType::fromType<QString>(), type))
        throw InvalidValue(name, text, Text::tr("cannot be set: the property takes no text."));
    return text;
}

QVariant ParseValueLike(const QVariant& present, const PropertyName& name, const QString& text,
                        const ValueReading& reading)
{
    if (text.isEmpty())
        return {};
    switch (present.typeId()) {
    case QMetaType::Bool:
        return RequireBoolean(name, text);
    case QMetaType::Double:
    case QMetaType::LongLong:
        return RequireNumber(name, text, reading);
    case QMetaType::QString:
        return text;
    default:
        break;
    }
    if (!IsMissing(present))
        throw InvalidValue(name, text, Text::tr("cannot be set: the catalogue holds a list or an object there."));
    if (const auto number = ReadNumber(text, reading)) {
        RequireUnambiguous(name, text, reading);
        return *number;
    }
    const auto boolean = ReadBoolean(text);
    return boolean ? QVariant(*boolean) : QVariant(text);
}

ValueSetting ParseSetting(const QString& text, const ZAXMatDefinition& record)
{
    const qsizetype sign = text.indexOf(u'=');
    if (sign < 0)
        throw Failure(ExitCode::WrongUsage, Text::tr("%1 is no property=value.").arg(Quoted(text)));
    const PropertyName name = ParsePropertyName(text.first(sign));
    const QString value = text.sliced(sign + 1);
    const bool isDeclared = FindProperty(ClassOf(record.GetType(), name.extension), name.property).isValid();
    if (!isDeclared && record.IsDefined(name.property, name.extension))
        return {name, ParseValueLike(record.GetValue(name.property, name.extension), name, value)};
    return {name, ParseValue(RequireProperty(record.GetType(), name), name, value)};
}

void Apply(const ValueSetting& setting, ZAXMatDefinition& record)
{
    const auto& [extension, property] = setting.name;
    if (!IsMissing(setting.value))
        record.SetValue(property, setting.value, extension);
    else
        record.RemoveAllowedProperty(extension, property);
}

void ApplySettings(const QStringList& texts, ZAXMatDefinition& record)
{
    ValueChecker checker;
    ZAXMatDefinition changed = record;
    QStringList complaints;
    QStringList names;
    for (const QString& text : texts) {
        try {
            const ValueSetting setting = ParseSetting(text, record);
            const QString name = NameText(setting.name);
            if (names.contains(name))
                throw Failure(ExitCode::WrongUsage, Text::tr("%1 is given twice.").arg(Quoted(name)));
            names.append(name);
            const QString why = checker.Check(record.GetType(), setting.name, setting.value);
            if (!why.isEmpty())
                complaints.append(Text::tr("%1: %2").arg(Printable(NameText(setting.name)), Printable(why)));
            Apply(setting, changed);
        } catch (const Failure& failure) {
            if (failure.GetCode() != ExitCode::InvalidValues)
                throw;
            complaints.append(failure.GetMessage());
        }
    }
    if (!complaints.isEmpty())
        throw Failure(ExitCode::InvalidValues, Text::tr("Nothing was written. These values are invalid:\n  %1")
                                                   .arg(complaints.join(QLatin1String("\n  "))));
    record = changed;
}

/// Features to try values on.
class ValueChecker::Features
{
public:
    Features()
    {
        ZAXMatRoot* const root = MaterialsRootOf(m_document);
        material = Create<ZAXMatMaterial>(root);
        stockForm = Create<ZAXMatPackaging>(material);
    }

    ZAXFeatObject* Get(ZAXMatDefinition::Type type, const QByteArray& extension) const
    {
        if (extension.isEmpty())
            return type == ZAXMatDefinition::Material ? static_cast<ZAXFeatObject*>(material) : stockForm;
        return type == ZAXMatDefinition::Material ? static_cast<ZAXFeatObject*>(material->GetExtension(extension, true))
                                                  : stockForm->GetExtension(extension, true);
    }

private:
    template <typename Feature>
    Feature* Create(ZAXFeatObject* parent)
    {
        return qobject_cast<Feature*>(CreateFeature(m_document, Feature::staticMetaObject.className(), parent));
    }

    ClassDefaults m_defaults;
    ZAXHostDocument m_document;
    ZAXMatMaterial* material;
    ZAXMatPackaging* stockForm;
};

ValueChecker::ValueChecker() = default;

ValueChecker::~ValueChecker() = default;

QString ValueChecker::Check(ZAXMatDefinition::Type type, const PropertyName& name, const QVariant& value)
{
    const QMetaProperty property = FindProperty(ClassOf(type, name.extension), name.property);
    if (IsMissing(value) || !property.isValid())
        return {};
    if (!IsAccepted(property, value))
        return Text::tr("%1 is no value for it.").arg(Quoted(ValueText({}, value)));
    if (!m_features)
        m_features = std::make_unique<Features>();
    ZAXFeatObject* const feature = m_features->Get(type, name.extension);
    // One that is not enabled does not mind.
    if (!name.extension.isEmpty())
        feature->setProperty(ZAXMatMaterialExtension::Property_isExtensionEnabled, true);
    property.write(feature, value);
    feature->UpdateResult();
    QStringList texts;
    const auto messages = feature->GetPropertyMessages(name.property);
    std::ranges::transform(messages, std::back_inserter(texts), &ZAXFeatObject::PropertyMessage::text);
    if (texts.isEmpty() && name.extension.isEmpty())
        return LimitOf(property, value);
    return texts.join(u' ');
}

} // namespace zaxmat
