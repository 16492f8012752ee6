#pragma once

#include <QTest>
#include <QtWidgets>

#include <functional>
#include <tuple>

// One answer to one modal window, in the order they appear.
struct Answer {
    enum Kind { Button, File, Dismiss, Text, Act } kind;
    QMessageBox::StandardButton button = QMessageBox::NoButton;
    QString path;
    std::function<void(QWidget*)> act = {};
};
inline Answer press(QMessageBox::StandardButton b) { return {Answer::Button, b, {}}; }
inline Answer choose(const QString& path) { return {Answer::File, QMessageBox::NoButton, path}; }
inline Answer dismiss() { return {Answer::Dismiss, QMessageBox::NoButton, {}}; }
inline Answer type(const QString& text) { return {Answer::Text, QMessageBox::NoButton, text}; }
// Any other dialog: the test fills and closes it (queue a click that opens another modal).
inline Answer act(std::function<void(QWidget*)> f) { return {Answer::Act, QMessageBox::NoButton, {}, std::move(f)}; }

// What a modal window showed when it came up.
struct Seen {
    QString title, text;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QMessageBox::StandardButtons buttons;
    QStringList filters;
    QString directory, preselected;
    QFileDialog::AcceptMode acceptMode = QFileDialog::AcceptOpen;
};

// Answers every modal window while it lives, in order; one it has no answer
// for, or that stays up too long, is closed and reported in `problems`.
class ModalAnswerer : public QObject
{
public:
    explicit ModalAnswerer(QList<Answer> answers, int limitMs = 5000)
        : m_answers(std::move(answers)), m_limitMs(limitMs)
    {
        connect(&m_poll, &QTimer::timeout, this, &ModalAnswerer::poll);
        m_poll.start(10);
    }

    QList<Seen> seen;
    QStringList problems;
    // What the answered windows said: a box's text, a dialog's title.
    QStringList said() const
    {
        QStringList texts;
        for (const Seen& s : seen)
            texts << (s.text.isEmpty() ? s.title : s.text);
        return texts;
    }
    int unanswered() const { return int(m_answers.size()); }

private:
    void poll()
    {
        QWidget* modal = QApplication::activeModalWidget();
        if (modal && modal == m_current) {
            chooseFile(qobject_cast<QFileDialog*>(modal));
            if (m_shown.elapsed() > m_limitMs) {
                problems << QStringLiteral("still open after %1 ms: %2").arg(m_limitMs).arg(modal->windowTitle());
                modal->close();
            }
        } else if (modal) {
            m_current = modal;
            m_shown.start();
            m_pendingPath.clear();
            const bool planned = !m_answers.isEmpty();
            answer(modal, planned ? m_answers.takeFirst() : dismiss(), planned);
        }
    }

    void answer(QWidget* modal, const Answer& answer, bool planned)
    {
        auto* box = qobject_cast<QMessageBox*>(modal);
        auto* files = qobject_cast<QFileDialog*>(modal);
        auto* input = qobject_cast<QInputDialog*>(modal);
        Seen s;
        s.title = modal->windowTitle();
        if (box && answer.kind != Answer::Act)
            std::tie(s.text, s.icon, s.buttons) = std::tuple(box->text(), box->icon(), box->standardButtons());
        if (files)
            std::tie(s.filters, s.directory, s.preselected, s.acceptMode) = std::tuple(files->nameFilters(),
                files->directory().absolutePath(), files->selectedFiles().value(0), files->acceptMode());
        seen.append(s);
        QAbstractButton* button = box && answer.kind == Answer::Button ? box->button(answer.button) : nullptr;
        if (answer.kind == Answer::Act) {
            answer.act(modal);
        } else if (button) {
            button->click();
        } else if (files && answer.kind == Answer::File) {
            m_pendingPath = answer.path;
            chooseFile(files);
        } else if (input && answer.kind == Answer::Text) {
            input->setTextValue(answer.path);
            input->accept();
        } else {
            // Only a file or text asked for may be planned away unanswered.
            if (box || !(files || input) || !planned || answer.kind != Answer::Dismiss)
                problems << QStringLiteral("no answer for \"%1\"").arg(box ? s.text : s.title);
            qobject_cast<QDialog*>(modal) ? qobject_cast<QDialog*>(modal)->reject() : void(modal->close());
        }
    }

    // The dialog fills its folder view in the background and may select a file
    // of its own: type the name once it settled, take it when it still shows.
    void chooseFile(QFileDialog* dialog)
    {
        if (!dialog || m_pendingPath.isEmpty() || m_shown.elapsed() < 100)
            return;
        const QString wanted = QFileInfo(m_pendingPath).absoluteFilePath();
        if (QFileInfo(dialog->selectedFiles().value(0)).absoluteFilePath() != wanted) {
            dialog->selectFile(m_pendingPath);
            // selectFile() leaves a focused name field alone.
            if (auto* name = dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit")))
                name->setText(wanted);
            return;
        }
        m_pendingPath.clear();
        // accept() would wait on the background model to know the file exists.
        static_cast<QDialog*>(dialog)->done(QDialog::Accepted);
    }

    QString m_pendingPath;
    QList<Answer> m_answers;
    int m_limitMs;
    QPointer<QWidget> m_current;
    QElapsedTimer m_shown;
    QTimer m_poll;
};

// Every answer used, nothing unexpected, nothing left waiting.
#define VERIFY_ANSWERED(answerer)                                                                 \
    QVERIFY2((answerer).problems.isEmpty() && (answerer).unanswered() == 0,                       \
             qPrintable((answerer).problems.join("; ") + QStringLiteral(" (%1 unused)").arg((answerer).unanswered())))
