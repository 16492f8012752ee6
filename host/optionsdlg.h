#pragma once

#include <QColor>
#include <QDialog>
#include <QList>
#include <QPointer>

class QCheckBox;
class QComboBox;
class QToolButton;

namespace kesu::toolvok {

// The host's Options dialog for a tool's drawing: bus radix, auto-save
// interval, guide line and colours. The colour list follows the tools'
// convention: entry 0 is the host's own foreground, entries 1 to 7 are the
// background, names, highlight, signal, bus, unknown and high-impedance
// colours. Entry 0 is passed through unchanged.
class OptionsDlg : public QDialog
{
    Q_OBJECT
public:
    enum { ColorCount = 8 };

    explicit OptionsDlg(QWidget* parent = nullptr);

    void setOptions(int busRadix, int autoSave, bool guideline);
    void setColors(const QList<QColor>& colors);
    int busRadix() const;
    // 0 one minute, 1 five minutes, 2 ten minutes, 3 off.
    int autoSave() const;
    bool guideline() const;
    QList<QColor> colors() const { return m_colors; }
    // The button that picks colour i (1 to 7).
    QToolButton* colorButton(int i) const { return m_colorButtons.value(i - 1); }

    // Opens the dialog whenever the tool emits sigOptionDialog(), filled from
    // its properties busRadix, autoSave, guideline and colors, and answers
    // with its slots applyOptions(int, int, bool) and applyColors(QList<QColor>).
    // A tool without that signal is left alone.
    static void serve(QWidget* tool);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void pickColor(int i);
    void showColor(int i);

    QComboBox* m_radix = nullptr;
    QComboBox* m_autoSave = nullptr;
    QCheckBox* m_guideline = nullptr;
    QList<QToolButton*> m_colorButtons;
    QList<QColor> m_colors;
};

// Opens the Options dialog for one tool; lives as the tool's child.
class OptionsServer : public QObject
{
    Q_OBJECT
public:
    explicit OptionsServer(QWidget* tool);

public Q_SLOTS:
    void openDialog();

private:
    QPointer<QWidget> m_tool;
};

} // namespace kesu::toolvok
