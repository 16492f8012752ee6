// The three property docks. They are created with their titles; their
// contents come with the editing features they serve.
#include "editdlg.h"
#include "patterndlg.h"
#include "wavedatadlg.h"

#include <QWidget>

namespace kesu::toolvok {

namespace {
void setUpDock(QDockWidget* dock, const QString& name)
{
    dock->setObjectName(name);
    auto* contents = new QWidget(dock);
    contents->setMinimumWidth(220);
    dock->setWidget(contents);
    dock->setAllowedAreas(Qt::AllDockWidgetAreas);
}
} // namespace

EditDlg::EditDlg(VokGUI* owner, QWidget* parent)
    : QDockWidget(QObject::tr("Pulse Properties View"), parent), owner_(owner)
{
    setUpDock(this, QStringLiteral("PulsePropertiesView"));
}

void EditDlg::LoadData(WaveData* wave, const QList<Pattern*>&)
{
    wave_ = wave;
}

WaveDataDlg::WaveDataDlg(VokGUI* owner, QWidget* parent)
    : QDockWidget(QObject::tr("Waveform Properties View"), parent), owner_(owner)
{
    setUpDock(this, QStringLiteral("WaveformPropertiesView"));
}

void WaveDataDlg::LoadData(WaveData* wave)
{
    wave_ = wave;
}

PatternDlg::PatternDlg(VokGUI* owner, QWidget* parent)
    : QDockWidget(QObject::tr("Pattern View"), parent), owner_(owner)
{
    setUpDock(this, QStringLiteral("PatternView"));
}

void PatternDlg::LoadData() {}

void PatternDlg::updateButton() {}

} // namespace kesu::toolvok
