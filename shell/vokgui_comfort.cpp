// Comforts of a desktop program: recent files, documents dropped onto the
// window, and drawing colours that follow the desktop's light or dark palette.
#include "vokgui.h"

#include "baseusrsettings.h"
#include "desktopevents.h"
#include "progressgate.h"
#include "recentfiles.h"
#include "waveformdata.h"
#include "wavereader.h"

#include <QApplication>
#include <QFileInfo>
#include <QMenu>
#include <QStatusBar>

namespace kesu::toolvok {

QList<QColor> VokGUI::defaultColors(const QPalette& palette)
{
    // On a light palette these are the colours the editor always had; on a
    // dark one, waves light enough to stand out from the dark background.
    const QColor base = palette.color(QPalette::Active, QPalette::Base);
    const bool dark = base.lightness() < 128;
    const QColor wave = dark ? QColor(90, 160, 255) : QColor(Qt::blue);
    return {base, palette.color(QPalette::Active, QPalette::Text), dark ? QColor(90, 90, 100) : QColor(Qt::gray),
            wave, wave, dark ? QColor(255, 96, 96) : QColor(Qt::red), dark ? QColor(150, 150, 150) : QColor(Qt::gray)};
}

QList<VokGUI::ColorSetting> VokGUI::colorSettings()
{
    return {{QLatin1String("color_back"), &color_back},     {QLatin1String("color_names"), &color_names},
            {QLatin1String("color_h"), &color_h},           {QLatin1String("color_signal"), &color_signal},
            {QLatin1String("color_bus"), &color_bus},       {QLatin1String("color_x"), &color_x},
            {QLatin1String("color_z"), &color_z}};
}

void VokGUI::createComfort()
{
    m_recentFiles = std::make_unique<RecentFiles>(m_usrSettings->settings());
    m_recentMenu = new QMenu(tr("Recent Files"), this);
    m_recentMenu->setObjectName(QStringLiteral("recentFilesMenu"));
    connect(m_recentMenu, &QMenu::aboutToShow, this, &VokGUI::fillRecentFilesMenu);
    connect(this, &BasGUITool::sigFileSaved, this, &VokGUI::noteRecentFile);
    new DesktopEvents(this, [this](const QString& path) { openFile(path); }, [this] { followPalette(); });
}

void VokGUI::placeRecentFilesMenu()
{
    // Stand-alone the menu bar is ours: the list goes right below Open.
    QAction* open = sharedAction(QStringLiteral("open"));
    QAction* save = sharedAction(QStringLiteral("save"));
    if (!isStandalone() || !open || !save)
        return;
    for (QObject* holder : open->associatedObjects()) {
        auto* fileMenu = qobject_cast<QMenu*>(holder);
        if (!fileMenu)
            continue;
        fileMenu->removeAction(m_recentMenu->menuAction());
        fileMenu->insertAction(save, m_recentMenu->menuAction());
    }
}

void VokGUI::fillRecentFilesMenu()
{
    const QStringList missing = m_recentFiles->pruneMissing();
    if (!missing.isEmpty())
        statusBar()->showMessage(tr("No longer found, taken off the recent files: %1").arg(missing.join(QStringLiteral(", "))),
                                 10000);
    m_recentMenu->clear();
    const QStringList files = m_recentFiles->files();
    for (int i = 0; i < files.size(); ++i) {
        const QString& path = files.at(i);
        QAction* entry = m_recentMenu->addAction(QStringLiteral("&%1 %2").arg(i + 1).arg(QFileInfo(path).fileName()));
        entry->setData(path);
        entry->setStatusTip(path);
        entry->setToolTip(path);
        connect(entry, &QAction::triggered, this, [this, path] { openRecentFile(path); });
    }
    if (files.isEmpty())
        m_recentMenu->addAction(tr("(none)"))->setEnabled(false);
    m_recentMenu->addSeparator();
    QAction* clear = m_recentMenu->addAction(tr("Clear Recent Files"), this, [this] { m_recentFiles->clear(); });
    clear->setEnabled(!files.isEmpty());
}

void VokGUI::openRecentFile(const QString& path)
{
    if (!QFileInfo(path).isFile()) {
        m_recentFiles->remove(path);
        showmsg(tr("The file \"%1\" no longer exists. It was taken off the recent files.").arg(path), this);
        return;
    }
    openFile(path);
}

void VokGUI::noteRecentFile(const QString& path)
{
    if (m_recentFiles && !path.isEmpty())
        m_recentFiles->add(path);
}

bool VokGUI::preload(const QString& path)
{
    m_preloaded.reset();
    QFile file(path);
    // A file that cannot be read is reported by the load that follows.
    if (!file.open(QIODevice::ReadOnly))
        return true;
    auto document = std::make_unique<WaveformData>();
    ProgressGate progress(this, tr("Loading %1...").arg(QFileInfo(path).fileName()));
    if (!WaveReader(*document).readDevice(file, progress.callback()) || file.error() != QFileDevice::NoError)
        return !progress.cancelled();
    m_preloaded = std::move(document);
    m_preloadedPath = path;
    return true;
}

void VokGUI::followPalette()
{
    // Only the colours still at the old palette's defaults follow: the ones
    // the user chose stay.
    const QList<QColor> next = defaultColors(QApplication::palette(this));
    const QList<ColorSetting> fields = colorSettings();
    for (int i = 0; i < fields.size(); ++i) {
        if (*fields.at(i).color == m_paletteColors.value(i))
            *fields.at(i).color = next.at(i);
    }
    m_paletteColors = next;
    Refresh();
}

} // namespace kesu::toolvok
