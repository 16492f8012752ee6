// The Pulse Properties View: loading a selection into the widgets, and the
// state, value, duration and forever edits. Scale and repeat, which act on
// the whole selection, are in pulseedits.cpp.
#include "editdlg.h"

#include "dockhelp.h"
#include "pulseedits.h"
#include "timetext.h"
#include "undocommands.h"
#include "vokgui.h"
#include "wavedata.h"
#include "waveview.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLineEdit>
#include <QRegularExpressionValidator>
#include <QSet>
#include <QUndoStack>
#include <QVBoxLayout>

#include <limits>
#include <memory>

namespace kesu::toolvok {

namespace {
const char* const NumberRule = "((0x){1,1}([0-9]|[A-F]|[a-f])+)|([0-9]+)";
// In the hexadecimal radix the prefix may be left out.
const char* const HexRule = "((0x){1,1}([0-9]|[A-F]|[a-f])+)|(([0-9]|[A-F]|[a-f])+)";
constexpr int HexRadix = 3;

QLineEdit* numberEdit(QWidget* parent)
{
    auto* edit = new QLineEdit(parent);
    edit->setValidator(new QRegularExpressionValidator(QRegularExpression(QLatin1String(NumberRule)), edit));
    return edit;
}
} // namespace

EditDlg::EditDlg(VokGUI* owner, QWidget* parent)
    : QDockWidget(tr("Pulse Properties View"), parent), owner_(owner)
{
    auto* contents = new QWidget(this);
    auto* box = new QGroupBox(tr("Pulse"), contents);
    state_ = new QComboBox(box);
    duration_ = new QLineEdit(box);
    value_ = new QLineEdit(box);
    hexDigits_ = new QRegularExpressionValidator(QRegularExpression(QLatin1String(HexRule)), value_);
    numberDigits_ = new QRegularExpressionValidator(QRegularExpression(QLatin1String(NumberRule)), value_);
    scale_ = numberEdit(box);
    repeat_ = numberEdit(box);
    forever_ = new QCheckBox(box);
    for (auto [widget, name] : {std::pair<QWidget*, const char*>{state_, "state"}, {duration_, "duration"},
                                {value_, "value"}, {scale_, "scale"}, {repeat_, "repeat"}, {forever_, "forever"}})
        widget->setObjectName(QLatin1String(name));
    auto* form = new QFormLayout(box);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    form->addRow(tr("State"), state_);
    form->addRow(tr("Duration"), duration_);
    form->addRow(tr("Value"), value_);
    form->addRow(tr("Scale"), scale_);
    form->addRow(tr("Repeat"), repeat_);
    form->addRow(tr("Forever"), forever_);
    auto* column = new QVBoxLayout(contents);
    column->addWidget(box);
    column->addStretch();
    DockHelp::setUp(this, QStringLiteral("PulsePropertiesView"), contents);
    DockHelp::watch(this, contents);

    connect(state_, &QComboBox::currentIndexChanged, this, &EditDlg::onEditState);
    connect(duration_, &QLineEdit::returnPressed, this, &EditDlg::onEditDuration);
    connect(value_, &QLineEdit::returnPressed, this, &EditDlg::onEditValue);
    connect(scale_, &QLineEdit::returnPressed, this, &EditDlg::onEditScale);
    connect(repeat_, &QLineEdit::returnPressed, this, &EditDlg::onEditRepeat);
    connect(forever_, &QCheckBox::stateChanged, this, &EditDlg::onEditForever);
    disableAll();
}

bool EditDlg::eventFilter(QObject* watched, QEvent* event)
{
    if (DockHelp::helpOnKeyRelease(event, QStringLiteral("PULSE_PROPERTY")))
        return true;
    return QDockWidget::eventFilter(watched, event);
}

void EditDlg::enable(QLineEdit* edit, bool enabled, bool writable)
{
    edit->setEnabled(enabled);
    edit->setReadOnly(!writable);
}

void EditDlg::disableAll()
{
    busy_ = true;
    wave_ = nullptr;
    selection_.clear();
    state_->setEnabled(false);
    for (QLineEdit* edit : {duration_, value_, scale_, repeat_})
        enable(edit, false, false);
    forever_->setChecked(false);
    forever_->setEnabled(false);
    busy_ = false;
}

void EditDlg::LoadData(WaveData* wave, const QList<Pattern*>& selection)
{
    if (!wave || owner_->isReadOnly()) {
        disableAll();
        return;
    }
    busy_ = true;
    wave_ = wave;
    selection_ = selection;
    const qsizetype n = selection_.size();
    const bool bus = wave->isBus;
    state_->setEnabled(n == 1);
    enable(duration_, n == 1, n == 1);
    enable(value_, n == 1 && bus, n == 1 && bus);
    enable(scale_, n >= 1, n >= 1);
    enable(repeat_, n >= 2, n >= 1);
    scale_->setText(QStringLiteral("1"));
    repeat_->setText(QStringLiteral("1"));
    if (n != 1) {
        duration_->clear();
        value_->clear();
    }

    forever_->setChecked(false);
    forever_->setEnabled(false);
    bool inTail = false;
    if (n >= 1) {
        const qint32 tail = wave->foreverIndex;
        const qsizetype first = wave->patterns.indexOf(selection_.first());
        const qsizetype last = wave->patterns.indexOf(selection_.last());
        const bool reachesEnd = n >= 2 && last == wave->patterns.size() - 1;
        const bool nearTail = tail != -1 && (first >= tail || (first < tail && tail <= last));
        forever_->setEnabled(!wave->isPattern && (reachesEnd || nearTail));
        inTail = tail != -1 && tail <= last;
        forever_->setChecked(inTail);
    }
    if (n == 1)
        showPulse(selection_.first());
    if (inTail) {
        // Pulses that repeat without end have no state, value or count of
        // their own to edit here; only a single pulse's duration is.
        state_->setEnabled(false);
        value_->setEnabled(false);
        enable(repeat_, false, false);
        enable(scale_, false, false);
        repeat_->setText(QStringLiteral("##"));
        if (n != 1) {
            duration_->setText(QStringLiteral("##"));
            value_->setText(QStringLiteral("##"));
        }
    }
    busy_ = false;
}

void EditDlg::fillStates(bool bus)
{
    state_->clear();
    if (bus)
        state_->addItems({tr("Set Value"), tr("Don't Care"), tr("High-Z")});
    else
        state_->addItems({tr("Low"), tr("High"), tr("Don't Care"), tr("High-Z")});
}

void EditDlg::showPulse(const Pattern* pulse)
{
    const bool bus = wave_->isBus;
    fillStates(bus);
    duration_->setText(owner_->getTimeString(quint64(qint64(pulse->duration)), true));
    const std::string& v = pulse->value;
    const bool hex = owner_->busRadix() == HexRadix;
    value_->setValidator(hex ? hexDigits_ : numberDigits_);
    if (!bus) {
        state_->setCurrentIndex(Values::isDontCare(v) ? 2 : Values::isHighZ(v) ? 3 : v == "0" ? 0 : 1);
        value_->clear();
        return;
    }
    if (Values::isSpecial(v)) {
        state_->setCurrentIndex(Values::isDontCare(v) ? 1 : 2);
        value_->clear();
        enable(value_, false, false);
        return;
    }
    state_->setCurrentIndex(0);
    enable(value_, true, true);
    value_->setText(hex ? QStringLiteral("0x") + QString::fromStdString(v)
                        : owner_->getBusValueString(v, wave_->busWidth));
}

void EditDlg::refuse(const QString& message)
{
    busy_ = true;
    VokGUI::showerrormsg(message, this);
    busy_ = false;
}

void EditDlg::resync()
{
    const QList<Pattern*>& kept = owner_->selection();
    const QSet<Pattern*> live(kept.cbegin(), kept.cend());
    selection_.removeIf([&live](Pattern* p) { return !live.contains(p); });
}

void EditDlg::push(std::unique_ptr<WaveData> before)
{
    owner_->undoStack()->push(new EditPatternCommand(wave_, before.get(), owner_));
    resync();
}

// --- state, duration, value -------------------------------------------------

void EditDlg::onEditState(int index)
{
    if (busy_ || index < 0)
        return;
    resync();
    if (selection_.isEmpty() || wave_ != owner_->activeWave())
        return;
    std::unique_ptr<WaveData> before(snapshotOf(wave_));
    Pattern* pulse = selection_.first();
    const QString text = state_->itemText(index);
    if (text == tr("Set Value")) {
        busy_ = true;
        value_->setText(QStringLiteral("1"));
        busy_ = false;
        enable(value_, true, true);
        pulse->value = "1";
        owner_->mergeAfterEdit(wave_);
    } else {
        pulse->value = text == tr("Low") ? "0" : text == tr("High") ? "1" : text == tr("Don't Care") ? "-1" : "-2";
        enable(value_, false, false);
    }
    const bool reselect = before->patterns.size() >= 2 && !wave_->isBus;
    push(std::move(before));
    if (reselect)
        owner_->waveView()->reselect();
}

void EditDlg::onEditDuration()
{
    if (busy_)
        return;
    resync();
    if (selection_.isEmpty() || wave_ != owner_->activeWave())
        return;
    Pattern* pulse = selection_.first();
    const QString current = owner_->getTimeString(quint64(qint64(pulse->duration)), true);
    bool ok = false;
    const quint64 value = owner_->convertTime(ok, duration_->text());
    if (!ok || value == 0 || value > quint64(std::numeric_limits<qint32>::max())) {
        refuse(ok && value != 0 ? tr("The duration is overflowed.") : tr("Invalid duration."));
        duration_->setText(current);
        return;
    }
    if (value == quint64(qint64(pulse->duration)))
        return;
    std::unique_ptr<WaveData> before(snapshotOf(wave_));
    pulse->duration = static_cast<qint32>(value);
    wave_->segmentsChanged(static_cast<int>(wave_->patterns.indexOf(pulse)));
    const quint64 start = owner_->getRangeStart();
    owner_->changeRange(double(start), double(start + value) - 1);
    push(std::move(before));
    duration_->setText(owner_->getTimeString(value, true));
    owner_->waveView()->setFocus();
}

void EditDlg::onEditValue()
{
    if (busy_)
        return;
    resync();
    if (selection_.isEmpty() || wave_ != owner_->activeWave() || !wave_->isBus)
        return;
    QString text = value_->text();
    const bool hex = text.startsWith(QLatin1String("0x")) || owner_->busRadix() == HexRadix;
    const BigInteger typed = PulseEdits::readNumber(text, TimeText::radixBase(owner_->busRadix()));
    if (!typed.isValid(wave_->busWidth)) {
        refuse(tr("The bit number of the value is over the bus width."));
        return;
    }
    if (text.startsWith(QLatin1String("0x")))
        text.remove(0, 2);
    // Hexadecimal input is kept as typed; other radices are stored as the
    // hexadecimal text that every bus value is.
    const std::string stored = hex ? text.toStdString() : typed.toString(16);
    Pattern* pulse = selection_.first();
    if (stored == pulse->value)
        return;
    std::unique_ptr<WaveData> before(snapshotOf(wave_));
    pulse->value = stored;
    owner_->mergeAfterEdit(wave_);
    push(std::move(before));
    owner_->waveView()->setFocus();
    owner_->waveView()->reselect();
    value_->setFocus();
}

// --- scale, repeat, forever -------------------------------------------------

void EditDlg::onEditScale()
{
    if (busy_)
        return;
    resync();
    if (selection_.isEmpty() || wave_ != owner_->activeWave())
        return;
    std::unique_ptr<WaveData> before(snapshotOf(wave_));
    quint64 total = 0;
    switch (PulseEdits::scaleDurations(selection_, scale_->text(), total)) {
    case PulseEdits::Outcome::Invalid:
        refuse(tr("Invalid scale."));
        return;
    case PulseEdits::Outcome::Overflow:
        refuse(tr("The duration is overflowed."));
        return;
    case PulseEdits::Outcome::Done:
        break;
    default:
        return;
    }
    push(std::move(before));
    scale_->setText(QStringLiteral("1"));
    const double start = double(owner_->getRangeStart());
    owner_->changeRange(start + 0.5, start + double(total) - 0.5);
    if (selection_.size() == 1)
        duration_->setText(owner_->getTimeString(quint64(qint64(selection_.first()->duration)), true));
}

void EditDlg::onEditRepeat()
{
    if (busy_)
        return;
    resync();
    if (selection_.isEmpty() || wave_ != owner_->activeWave())
        return;
    bool tooLarge = false;
    const qint64 count = PulseEdits::readRepeatCount(repeat_->text(), tooLarge);
    if (!tooLarge && count == 1)
        return;
    std::unique_ptr<WaveData> before(snapshotOf(wave_));
    QList<Pattern*> added;
    quint64 total = 0;
    const auto outcome = tooLarge ? PulseEdits::Outcome::TooMany
                                  : PulseEdits::repeatSelection(wave_, selection_, count, added, total);
    if (outcome == PulseEdits::Outcome::TooMany || outcome == PulseEdits::Outcome::Overflow) {
        refuse(outcome == PulseEdits::Outcome::Overflow ? tr("The duration is overflowed.")
                                                        : tr("The repeat count is too large."));
        return;
    }
    if (outcome != PulseEdits::Outcome::Done)
        return;
    selection_.append(added);
    owner_->selection().append(added);
    push(std::move(before));
    const double start = double(owner_->getRangeStart());
    owner_->changeRange(start + 0.5, start + double(total) - 0.5);
    repeat_->setText(QStringLiteral("1"));
}

void EditDlg::onEditForever()
{
    if (busy_)
        return;
    resync();
    if (selection_.isEmpty() || wave_ != owner_->activeWave() || wave_->foreverIndex >= wave_->patterns.size())
        return;
    if (wave_->foreverIndex != -1)
        wave_->patterns.at(wave_->foreverIndex)->forever = false;
    const bool on = forever_->isChecked();
    const int from = on ? static_cast<int>(wave_->patterns.indexOf(selection_.first())) : -1;
    owner_->undoStack()->push(new ForeverCommand(wave_, from, owner_));
    resync();
    repeat_->setText(on ? QStringLiteral("##") : QStringLiteral("1"));
    enable(repeat_, false, false);
    scale_->setEnabled(false);
}

} // namespace kesu::toolvok
