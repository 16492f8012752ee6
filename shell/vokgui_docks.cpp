// The three property docks and the View menu's actions that show and hide them.
#include "vokgui.h"

#include "editdlg.h"
#include "patterndlg.h"
#include "wavedatadlg.h"

#include <QAction>
#include <QMenu>

namespace kesu::toolvok {

void VokGUI::createDocks()
{
    m_patternDlg = new PatternDlg(this, this);
    m_waveDataDlg = new WaveDataDlg(this, this);
    m_editDlg = new EditDlg(this, this);
    addDockWidget(Qt::RightDockWidgetArea, m_patternDlg);
    addDockWidget(Qt::RightDockWidgetArea, m_waveDataDlg);
    addDockWidget(Qt::RightDockWidgetArea, m_editDlg);
    tabifyDockWidget(m_editDlg, m_waveDataDlg);
    tabifyDockWidget(m_waveDataDlg, m_patternDlg);

    struct ViewAction { const char* text; QDockWidget* dock; void (VokGUI::*toggled)(bool); };
    const ViewAction views[] = {
        {"Waveform Properties View", m_waveDataDlg, &VokGUI::onToggleDataView},
        {"Pulse Properties View", m_editDlg, &VokGUI::onTogglePropView},
        {"Pattern View", m_patternDlg, &VokGUI::onTogglePatternView},
    };
    for (const ViewAction& v : views) {
        auto* action = new QAction(QLatin1String(v.text), this);
        action->setCheckable(true);
        action->setChecked(true);
        // Showing a dock that is tabbed behind another brings its tab forward.
        connect(action, &QAction::toggled, v.dock, [dock = v.dock](bool on) {
            dock->setVisible(on);
            if (on)
                dock->raise();
        });
        connect(v.dock, &QDockWidget::visibilityChanged, this, v.toggled);
        m_viewActions.append(action);
    }
    auto* separator = new QAction(this);
    separator->setSeparator(true);
    m_viewActions.append(separator);
    m_jumpMenu = new QMenu(QStringLiteral("Jump to"), this);
}

void VokGUI::onDefLayout()
{
    for (QDockWidget* dock : {static_cast<QDockWidget*>(m_waveDataDlg), static_cast<QDockWidget*>(m_editDlg),
                              static_cast<QDockWidget*>(m_patternDlg)}) {
        dock->setFloating(false);
    }
    m_waveDataDlg->show();
    m_editDlg->show();
    m_patternDlg->hide();
    onToggleDataView(true);
    onTogglePropView(true);
    onTogglePatternView(false);
}

// A dock's visibility also changes when its tab goes behind another or the
// window hides; only a dock closed or hidden on purpose is unchecked, so that
// the actions and the docks never switch each other off.
void VokGUI::onToggleDataView(bool)
{
    m_viewActions.at(0)->setChecked(!m_waveDataDlg->isHidden());
}

void VokGUI::onTogglePropView(bool)
{
    m_viewActions.at(1)->setChecked(!m_editDlg->isHidden());
}

void VokGUI::onTogglePatternView(bool visible)
{
    m_patternViewShown = !m_patternDlg->isHidden();
    m_viewActions.at(2)->setChecked(m_patternViewShown);
    if (visible)
        m_patternDlg->LoadData();
}

} // namespace kesu::toolvok
