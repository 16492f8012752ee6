// Crash recovery: a copy of a document with unsaved changes in the user's
// data folder, and the copies a program that ended without closing its
// documents left behind.
#pragma once

#include <QDateTime>
#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>

class QLockFile;

namespace kesu::toolvok {

class RecoveryCopy : public QObject
{
    Q_OBJECT
public:
    // What a copy keeps of a document.
    struct Document {
        QString path;        // empty for an untitled document
        QString title;
        QDateTime fileTime;  // the file's time as the document last read or wrote it
        QByteArray text;     // the document as the editor saves it
    };
    // A copy on disk, and when it was written.
    struct Copy {
        Document document;
        QDateTime written;
        QString file;
    };

    // source gives the document as it is now, whenever a copy is written.
    RecoveryCopy(std::function<Document()> source, QObject* parent);
    // A clean end (the document closed or the program quitting) takes the copy along.
    ~RecoveryCopy() override;

    // The document has unsaved changes: a copy is written within the
    // interval, and never more often.
    void changed();
    // The document was saved, read again or closed: its copy goes.
    void discard();
    // Writes the copy now; false when the folder or the disk refused it.
    bool writeNow();
    bool pending() const { return m_timer.isActive(); }

    // 30 s unless set otherwise; it counts from the next change.
    void setInterval(int milliseconds) { m_interval = milliseconds; }
    static QString folder();
    // Copies no running program holds, newest first.
    static QList<Copy> leftovers();
    static void remove(const Copy& copy);

private:
    std::function<Document()> m_source;
    QTimer m_timer;
    int m_interval = 30000;
    QString m_base;   // the copy's path without extension, unique to this document
    std::unique_ptr<QLockFile> m_lock;
};

} // namespace kesu::toolvok
