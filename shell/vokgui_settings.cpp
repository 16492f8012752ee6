// Window settings and dock layout that persist between runs, and the options
// the host's dialog hands back.
#include "vokgui.h"

#include "baseusrsettings.h"
#include "editdlg.h"
#include "patterndlg.h"
#include "wavedatadlg.h"

#include <QSettings>
#include <QSplitter>
#include <QTimer>

#include <climits>

namespace kesu::toolvok {

namespace {
QString flag(bool on)
{
    return on ? QStringLiteral("1") : QStringLiteral("0");
}

// A settings file may have been edited by hand or written by another
// version: whatever does not read as the expected type keeps the default.
int storedInt(const BaseUsrSettings& s, const char* key, int fallback, int lowest, int highest)
{
    bool ok = false;
    const int value = s.value(QLatin1String(key)).toString().trimmed().toInt(&ok);
    return ok && value >= lowest && value <= highest ? value : fallback;
}

bool storedFlag(const QVariant& stored, bool fallback)
{
    const QString text = stored.toString();
    return text == QLatin1String("1") ? true : text == QLatin1String("0") ? false : fallback;
}
} // namespace

void VokGUI::GetWinSettings()
{
    const BaseUsrSettings& s = *m_usrSettings;
    // A width of 0 would hide a pane for good.
    m_storedListWidth = storedInt(s, "main_splitter_0", 150, 1, QWIDGETSIZE_MAX);
    m_splitter->setSizes({m_storedListWidth, storedInt(s, "main_splitter_1", 600, 1, QWIDGETSIZE_MAX)});
    m_busRadix = storedInt(s, "bus_radix", 0, 0, 3);
    // Any index of 3 or more switches auto-save off; that is kept as stored.
    m_autoSave = storedInt(s, "auto_save", 0, 0, INT_MAX);
    m_showGuideline = storedFlag(s.value(QStringLiteral("show_guideline")), false);
    m_waveDataDlg->setVisible(storedFlag(s.value(QStringLiteral("show_dataview")), true));
    m_editDlg->setVisible(storedFlag(s.value(QStringLiteral("show_propview")), true));
    m_patternDlg->setVisible(storedFlag(s.value(QStringLiteral("show_patternview")), false));
    // A dock hidden before the window first shows reports no change: the
    // view actions are brought in line here.
    onToggleDataView(false);
    onTogglePropView(false);
    onTogglePatternView(!m_patternDlg->isHidden());
    onChangeSplitter();
}

void VokGUI::restoreListWidth()
{
    const QList<int> sizes = m_splitter->sizes();
    const int total = sizes.value(0) + sizes.value(1);
    const int listWidth = qMin(m_storedListWidth, total - 1);
    if (listWidth > 0)
        m_splitter->setSizes({listWidth, total - listWidth});
}

void VokGUI::SaveWinSettings()
{
    BaseUsrSettings& s = *m_usrSettings;
    const QList<int> sizes = m_splitter->sizes();
    s.setValue(QStringLiteral("main_splitter_0"), sizes.value(0, 150));
    s.setValue(QStringLiteral("main_splitter_1"), sizes.value(1, 600));
    // A colour at the palette's default is not stored, so that it keeps
    // following the desktop's palette, light or dark.
    const QList<ColorSetting> fields = colorSettings();
    for (int i = 0; i < fields.size(); ++i) {
        if (*fields.at(i).color == m_paletteColors.value(i))
            s.settings().remove(fields.at(i).key);
        else
            s.setValue(fields.at(i).key, *fields.at(i).color);
    }
    s.setValue(QStringLiteral("bus_radix"), QString::number(m_busRadix));
    s.setValue(QStringLiteral("auto_save"), QString::number(m_autoSave));
    s.setValue(QStringLiteral("show_guideline"), flag(m_showGuideline));
    s.setValue(QStringLiteral("show_dataview"), flag(!m_waveDataDlg->isHidden()));
    s.setValue(QStringLiteral("show_propview"), flag(!m_editDlg->isHidden()));
    s.setValue(QStringLiteral("show_patternview"), flag(!m_patternDlg->isHidden()));
}

void VokGUI::onLoadLayout(QSettings* settings)
{
    if (!settings)
        return;
    struct Dock { QDockWidget* dock; const char* show; const char* docked; bool shown; };
    const Dock docks[] = {
        {m_waveDataDlg, "show_dataview", "dock_dataview", true},
        {m_editDlg, "show_propview", "dock_propview", true},
        {m_patternDlg, "show_patternview", "dock_patternview", false},
    };
    for (const Dock& d : docks) {
        d.dock->setVisible(storedFlag(settings->value(QLatin1String(d.show)), d.shown));
        d.dock->setFloating(settings->value(QLatin1String(d.docked), QStringLiteral("1")).toString() != QLatin1String("1"));
    }
    onToggleDataView(false);
    onTogglePropView(false);
    onTogglePatternView(!m_patternDlg->isHidden());
}

void VokGUI::onSaveLayout(QSettings* settings)
{
    if (!settings)
        return;
    settings->setValue(QStringLiteral("show_dataview"), flag(!m_waveDataDlg->isHidden()));
    settings->setValue(QStringLiteral("dock_dataview"), flag(!m_waveDataDlg->isFloating()));
    settings->setValue(QStringLiteral("show_propview"), flag(!m_editDlg->isHidden()));
    settings->setValue(QStringLiteral("dock_propview"), flag(!m_editDlg->isFloating()));
    settings->setValue(QStringLiteral("show_patternview"), flag(!m_patternDlg->isHidden()));
    settings->setValue(QStringLiteral("dock_patternview"), flag(!m_patternDlg->isFloating()));
}

void VokGUI::applyOptions(int busRadix, int autoSave, bool guideline)
{
    // Restarting on an unchanged interval would put off the next save each
    // time the dialog is confirmed. An untitled document has nowhere to be
    // saved to; its first save starts the timer.
    if (autoSave != m_autoSave) {
        m_autoSave = autoSave;
        if (!m_fullFileName.isEmpty())
            restartAutoSave();
    }
    m_busRadix = busRadix;
    m_showGuideline = guideline;
    // The Pulse Properties show bus values in the radix.
    LoadEditData();
    Refresh();
}

void VokGUI::applyColors(QList<QColor> colors)
{
    const QList<ColorSetting> ours = colorSettings();
    for (int i = 0; i < ours.size(); ++i) {
        const QColor given = colors.value(i + 1);
        if (given.isValid())
            *ours.at(i).color = given;
    }
    Refresh();
}

QList<QColor> VokGUI::colors() const
{
    return {color_names, color_back, color_names, color_h, color_signal, color_bus, color_x, color_z};
}

} // namespace kesu::toolvok
