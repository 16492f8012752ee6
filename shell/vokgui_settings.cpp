// Window settings and dock layout that persist between runs.
#include "vokgui.h"

#include "baseusrsettings.h"
#include "editdlg.h"
#include "patterndlg.h"
#include "wavedatadlg.h"

#include <QSettings>
#include <QSplitter>

namespace kesu::toolvok {

namespace {
QString flag(bool on)
{
    return on ? QStringLiteral("1") : QStringLiteral("0");
}
} // namespace

void VokGUI::GetWinSettings()
{
    BaseUsrSettings& s = *m_usrSettings;
    m_splitter->setSizes({s.value(QStringLiteral("main_splitter_0"), 150).toInt(),
                          s.value(QStringLiteral("main_splitter_1"), 600).toInt()});
    m_busRadix = s.value(QStringLiteral("bus_radix"), QStringLiteral("0")).toString().toInt();
    m_autoSave = s.value(QStringLiteral("auto_save"), QStringLiteral("0")).toString().toInt();
    m_showGuideline = s.value(QStringLiteral("show_guideline"), QStringLiteral("0")).toString() == QLatin1String("1");
    m_waveDataDlg->setVisible(s.value(QStringLiteral("show_dataview"), QStringLiteral("1")).toString() == QLatin1String("1"));
    m_editDlg->setVisible(s.value(QStringLiteral("show_propview"), QStringLiteral("1")).toString() == QLatin1String("1"));
    m_patternDlg->setVisible(s.value(QStringLiteral("show_patternview"), QStringLiteral("0")).toString() == QLatin1String("1"));
    // A dock hidden before the window first shows reports no change: the
    // view actions are brought in line here.
    onToggleDataView(false);
    onTogglePropView(false);
    onTogglePatternView(!m_patternDlg->isHidden());
    onChangeSplitter();
}

void VokGUI::SaveWinSettings()
{
    BaseUsrSettings& s = *m_usrSettings;
    const QList<int> sizes = m_splitter->sizes();
    s.setValue(QStringLiteral("main_splitter_0"), sizes.value(0, 150));
    s.setValue(QStringLiteral("main_splitter_1"), sizes.value(1, 600));
    s.setValue(QStringLiteral("color_back"), color_back);
    s.setValue(QStringLiteral("color_names"), color_names);
    s.setValue(QStringLiteral("color_h"), color_h);
    s.setValue(QStringLiteral("color_signal"), color_signal);
    s.setValue(QStringLiteral("color_bus"), color_bus);
    s.setValue(QStringLiteral("color_x"), color_x);
    s.setValue(QStringLiteral("color_z"), color_z);
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
    struct Dock { QDockWidget* dock; const char* show; const char* docked; const char* fallback; };
    const Dock docks[] = {
        {m_waveDataDlg, "show_dataview", "dock_dataview", "1"},
        {m_editDlg, "show_propview", "dock_propview", "1"},
        {m_patternDlg, "show_patternview", "dock_patternview", "0"},
    };
    for (const Dock& d : docks) {
        d.dock->setVisible(settings->value(QLatin1String(d.show), QLatin1String(d.fallback)).toString() == QLatin1String("1"));
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

} // namespace kesu::toolvok
