#include "ZAXFeatLastSavedStore.h"

#include "ZAXFeatLoading.h"
#include "ZAXSysModules.h"

#include <QHash>

#include <utility>

namespace {

class MemoryStore : public ZAXFeatLastSavedStore
{
public:
    QVariant GetValue(const QByteArray& className, const QByteArray& property) const override
    {
        return m_values.value({className, property});
    }

    void SetValue(const QByteArray& className, const QByteArray& property, const QVariant& value) override
    {
        if (value.isValid())
            m_values.insert({className, property}, value);
        else
            m_values.remove({className, property});
    }

    void ReleaseModule(const void* module) override
    {
        for (auto& value : m_values) {
            if (IsPartOf(value, module))
                value = Detached(value);
        }
        m_values.removeIf([module](const auto& entry) { return IsPartOf(entry.value(), module); });
    }

private:
    static bool IsPartOf(const QVariant& value, const void* module)
    {
        // A type is also part of the module that its meta-object lies in, whoever instantiated its interface.
        return ZAXSysModules::ModuleOf(value.metaType().iface()) == module ||
               ZAXSysModules::ModuleOf(value.metaType().metaObject()) == module;
    }

    QHash<std::pair<QByteArray, QByteArray>, QVariant> m_values;
};

struct Current
{
    Current()
    {
        ZAXSysModules::OnLeave([this](const void* module) { store->ReleaseModule(module); });
    }

    std::unique_ptr<MemoryStore> memory = std::make_unique<MemoryStore>();
    ZAXFeatLastSavedStore* store = memory.get();
};

Current& Instance()
{
    // Never destroyed: modules may leave after the statics of this library are gone.
    static auto* const current = new Current;
    return *current;
}

} // namespace

ZAXFeatLastSavedStore::ZAXFeatLastSavedStore() = default;

ZAXFeatLastSavedStore::~ZAXFeatLastSavedStore() = default;

void ZAXFeatLastSavedStore::ReleaseModule(const void*) {}

QVariant ZAXFeatLastSavedStore::Detached(const QVariant& value)
{
    if (value.metaType().flags() & QMetaType::IsEnumeration)
        return value.toInt();
    // The description of a type is compiled into each module that uses it, even where the type is Qt's.
    const int type = value.typeId();
    return type < QMetaType::User ? QVariant(QMetaType(type), value.constData()) : value;
}

ZAXFeatLastSavedStore& ZAXFeatLastSavedStore::GetCurrent()
{
    ZAXFeatLoading::Flush();
    return *Instance().store;
}

void ZAXFeatLastSavedStore::SetCurrent(ZAXFeatLastSavedStore* store)
{
    ZAXFeatLoading::Flush();
    auto& current = Instance();
    if (store) {
        current.store = store;
        return;
    }
    current.memory = std::make_unique<MemoryStore>();
    current.store = current.memory.get();
}
