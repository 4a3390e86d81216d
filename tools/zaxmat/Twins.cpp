#include "Twins.h"

#include "Catalogue.h"
#include "Properties.h"
#include "Records.h"
#include "Text.h"

#include "ZAXMatMaterial.h"

#include <QHash>

#include <algorithm>
#include <optional>
#include <tuple>
#include <utility>
#include <vector>

namespace zaxmat {

namespace {

/// What documents know a material by, and what people do.
struct Identity
{
    QString type;
    double thickness = 0;
    QByteArray key;
    QString name;

    auto Place() const { return std::tie(type, thickness, key); }
};

/// Empty for a material that documents never find by type and thickness.
std::optional<Identity> IdentityOf(const ZAXMatDefinition& material)
{
    const QString type = material.GetValue(ZAXMatMaterial::Property_materialType).toString();
    const auto thickness = ThicknessOf(material);
    if (material.GetType() != ZAXMatDefinition::Material || !material.IsValid() || type.isEmpty() || !thickness)
        return std::nullopt;
    return Identity{type, *thickness, material.GetKey(), material.GetName()};
}

/// Empty for the same reasons.
std::optional<Identity> IdentityOf(const CatalogueRecord& material)
{
    const QString type = material.GetValue(QLatin1String(ZAXMatMaterial::Property_materialType)).toString();
    const auto thickness = ThicknessOf(material);
    if (type.isEmpty() || !thickness)
        return std::nullopt;
    return Identity{type, *thickness, material.GetKey(), material.GetName()};
}

bool IsSame(const std::optional<Identity>& a, const std::optional<Identity>& b)
{
    return a.has_value() == b.has_value() && (!a || (a->type == b->type && a->thickness == b->thickness));
}

/// The materials that \a edits make, or give another type or thickness.
std::vector<Identity> NewIdentities(const QList<RecordEdit>& edits)
{
    std::vector<Identity> identities;
    for (const RecordEdit& edit : edits) {
        const auto after = IdentityOf(edit.after);
        if (after && !IsSame(IdentityOf(edit.before), after))
            identities.push_back(*after);
    }
    return identities;
}

/// The materials of \a catalogue after \a edits, sorted.
std::vector<Identity> AllIdentities(const Catalogue& catalogue, const QList<RecordEdit>& edits)
{
    QHash<QByteArray, std::optional<Identity>> byKey;
    for (const CatalogueRecord& material : catalogue.ReadMaterials())
        byKey.insert(material.GetKey(), IdentityOf(material));
    for (const RecordEdit& edit : edits) {
        const ZAXMatDefinition& either = edit.after.IsValid() ? edit.after : edit.before;
        if (either.GetType() == ZAXMatDefinition::Material)
            byKey.insert(either.GetKey(), IdentityOf(edit.after));
    }
    std::vector<Identity> all;
    for (const auto& identity : std::as_const(byKey)) {
        if (identity)
            all.push_back(*identity);
    }
    std::ranges::sort(all, {}, &Identity::Place);
    return all;
}

/// Another material of the same type and thickness; null when there is none.
const Identity* TwinOf(const Identity& identity, const std::vector<Identity>& all)
{
    // Wider than what counts as the same.
    constexpr double margin = 0.01;
    const auto begin =
        std::ranges::lower_bound(all, std::tuple(identity.type, identity.thickness - margin), {},
                                 [](const Identity& each) { return std::tuple(each.type, each.thickness); });
    const auto end = std::find_if(begin, all.end(), [&](const Identity& each) {
        return each.type != identity.type || each.thickness > identity.thickness + margin;
    });
    const auto found = std::find_if(begin, end, [&](const Identity& each) {
        return each.key != identity.key && IsSameThickness(each.thickness, identity.thickness);
    });
    return found != end ? &*found : nullptr;
}

} // namespace

void NoteTwins(const Catalogue& catalogue, const QList<RecordEdit>& edits, Output& output)
{
    constexpr int most = 5;
    const std::vector<Identity> changed = NewIdentities(edits);
    if (changed.empty())
        return;
    const std::vector<Identity> all = AllIdentities(catalogue, edits);
    int count = 0;
    for (const Identity& identity : changed) {
        const Identity* const twin = TwinOf(identity, all);
        if (!twin || ++count > most)
            continue;
        output.AddNote(Text::tr("%1 and %2 (%3) are both %4 of %5; documents cannot tell them apart.")
                           .arg(Quoted(identity.name), Quoted(twin->name), Printable(QString::fromLatin1(twin->key)),
                                Quoted(identity.type), LengthText(identity.thickness, output.GetUnit())));
    }
    if (count > most)
        output.AddNote(
            Text::tr("so it is with %1 more; \"zaxmat check\" lists them.").arg(QString::number(count - most)));
}

} // namespace zaxmat
