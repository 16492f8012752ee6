#include "wavedatadlg.h"

#include "dockhelp.h"
#include "undocommands.h"
#include "vokgui.h"
#include "wavedata.h"
#include "waveformdata.h"
#include "wavesummary.h"

#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QUndoStack>
#include <QVBoxLayout>

#include <limits>
#include <memory>

namespace kesu::toolvok {

namespace {
constexpr int PatternKind = 5;
// The undo step keeps offsets in 32 bits.
constexpr quint64 MaxOffset = quint64(std::numeric_limits<qint32>::max());
} // namespace

WaveDataDlg::WaveDataDlg(VokGUI* owner, QWidget* parent)
    : QDockWidget(tr("Waveform Properties View"), parent), owner_(owner)
{
    auto* contents = new QWidget(this);
    name_ = new QLabel(contents);
    name_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    type_ = new QComboBox(contents);
    type_->addItems({tr("Input"), tr("Output"), tr("Bidir"), tr("Test Pt"), tr("Global"), tr("Pattern")});
    offset_ = new QLineEdit(contents);
    summary_ = new TextEdit(contents);
    name_->setObjectName(QStringLiteral("name"));
    type_->setObjectName(QStringLiteral("polarity"));
    offset_->setObjectName(QStringLiteral("offset"));
    auto* form = new QFormLayout;
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    form->addRow(tr("Polarity"), type_);
    form->addRow(tr("Offset"), offset_);
    auto* column = new QVBoxLayout(contents);
    column->addWidget(name_);
    column->addLayout(form);
    column->addWidget(new QLabel(tr("Wave Data"), contents));
    column->addWidget(summary_, 1);
    DockHelp::setUp(this, QStringLiteral("WaveformPropertiesView"), contents);
    DockHelp::watch(this, contents);

    connect(type_, &QComboBox::currentIndexChanged, this, &WaveDataDlg::onChangeType);
    connect(offset_, &QLineEdit::returnPressed, this, &WaveDataDlg::onChangeOffset);
    // A wave that stops being active may be on its way out of the document;
    // every step on the stack may have changed the summary's patterns.
    connect(owner_, &VokGUI::activeWaveChanged, this, [this] { LoadData(owner_->activeWave()); });
    connect(owner_->undoStack(), &QUndoStack::indexChanged, this,
            [this] { summary_->summary()->setWave(summary_->summary()->wave()); });
    LoadData(nullptr);
}

bool WaveDataDlg::eventFilter(QObject* watched, QEvent* event)
{
    if (DockHelp::helpOnKeyRelease(event, QStringLiteral("WAVEFORM_PROPERTY")))
        return true;
    return QDockWidget::eventFilter(watched, event);
}

void WaveDataDlg::LoadData(WaveData* wave)
{
    WaveSummaryModel* summary = summary_->summary();
    if (!wave || owner_->isReadOnly()) {
        wave_ = nullptr;
        name_->clear();
        type_->setEnabled(false);
        offset_->setEnabled(false);
        offset_->setReadOnly(true);
        summary->setWave(nullptr);
        summary_->setEnabled(false);
        return;
    }
    type_->setEnabled(true);
    offset_->setEnabled(true);
    summary_->setEnabled(true);
    if (wave->polarity == PatternKind) {
        // Named patterns have no kind or offset to edit here.
        wave_ = nullptr;
        name_->clear();
        type_->setCurrentIndex(PatternKind);
        type_->setEnabled(false);
        offset_->setEnabled(false);
        offset_->setReadOnly(true);
        offset_->setText(QStringLiteral("0"));
    } else {
        wave_ = wave;
        name_->setText(wave->name);
        type_->setCurrentIndex(wave->polarity);
        offset_->setReadOnly(false);
        offset_->setText(QString::number(wave->offset));
    }
    summary->setWave(wave);
}

WaveData* WaveDataDlg::editable() const
{
    return wave_ && wave_ == owner_->activeWave() ? wave_ : nullptr;
}

void WaveDataDlg::refuse(const QString& message)
{
    VokGUI::showerrormsg(message, this);
}

void WaveDataDlg::onChangeType()
{
    WaveData* wave = editable();
    const int type = type_->currentIndex();
    if (!wave || type < 0 || wave->polarity == type)
        return;
    const bool rename = type == PatternKind && !wave->name.startsWith(QLatin1Char('$'));
    const QString newName = QLatin1Char('$') + wave->name;
    if (wave->offset > MaxOffset || (rename && owner_->document()->findWavebyName(newName))) {
        refuse(wave->offset > MaxOffset ? tr("The offset is overflowed.") : tr("The name is used."));
        type_->setCurrentIndex(wave->polarity);
        return;
    }
    const int oldType = wave->polarity;
    wave->polarity = type;
    if (rename) {
        // Named patterns always begin with "$"; undo leaves the name.
        wave->isPattern = true;
        wave->name = newName;
    }
    owner_->undoStack()->push(new NodeParaCommand(wave, oldType, static_cast<int>(wave->offset), owner_));
}

void WaveDataDlg::onChangeOffset()
{
    WaveData* wave = editable();
    if (!wave)
        return;
    bool ok = false;
    const quint64 offset = owner_->convertTime(ok, offset_->text());
    if (!ok) {
        refuse(tr("Invalid offset."));
        return;
    }
    if (offset == wave->offset)
        return;
    if (offset > MaxOffset || wave->offset > MaxOffset) {
        refuse(tr("The offset is overflowed."));
        offset_->setText(QString::number(wave->offset));
        return;
    }
    const int oldOffset = static_cast<int>(wave->offset);
    wave->offset = offset;
    owner_->undoStack()->push(new NodeParaCommand(wave, wave->polarity, oldOffset, owner_));
}

} // namespace kesu::toolvok
