#include "baseusrsettings.h"

namespace kesu::toolvok {

BaseUsrSettings::BaseUsrSettings(const QString& key)
    : key_(key), settings_(QSettings::IniFormat, QSettings::UserScope, QLatin1String(Organization), key)
{
}

QVariant BaseUsrSettings::value(const QString& key, const QVariant& fallback) const
{
    return settings_.value(key, fallback);
}

void BaseUsrSettings::setValue(const QString& key, const QVariant& value)
{
    settings_.setValue(key, value);
}

} // namespace kesu::toolvok
