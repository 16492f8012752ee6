#pragma once

#include <QSettings>
#include <QString>
#include <QVariant>

namespace kesu::toolvok {

// A tool's own user settings: an INI file in the user's configuration folder,
// one per tool key.
class BaseUsrSettings
{
public:
    static constexpr const char* Organization = "Vostranelle";

    explicit BaseUsrSettings(const QString& key);

    QVariant value(const QString& key, const QVariant& fallback = QVariant()) const;
    void setValue(const QString& key, const QVariant& value);
    QSettings& settings() { return settings_; }
    QString key() const { return key_; }

private:
    QString key_;
    QSettings settings_;
};

} // namespace kesu::toolvok
