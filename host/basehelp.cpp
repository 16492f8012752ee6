#include "basehelp.h"

#include <QDialog>
#include <QFile>
#include <QHash>
#include <QPointer>
#include <QRegularExpression>
#include <QStyle>
#include <QTextBrowser>
#include <QToolBar>
#include <QVBoxLayout>

namespace kesu::toolvok {

namespace {

constexpr const char* MainPage = "waveform_editor";
constexpr const char* ContentsPage = "index";

class HelpWindow : public QDialog
{
public:
    HelpWindow()
    {
        setWindowTitle(QStringLiteral("Waveform Editor Help"));
        setAttribute(Qt::WA_DeleteOnClose, false);
        browser_ = new QTextBrowser(this);
        browser_->setSearchPaths({QStringLiteral(":/help")});
        browser_->setOpenExternalLinks(true);
        // The pages link to each other: the viewer needs a way back.
        auto* bar = new QToolBar(this);
        QAction* back = bar->addAction(style()->standardIcon(QStyle::SP_ArrowBack), tr("Back"), browser_,
                                       &QTextBrowser::backward);
        QAction* forward = bar->addAction(style()->standardIcon(QStyle::SP_ArrowForward), tr("Forward"),
                                          browser_, &QTextBrowser::forward);
        bar->addAction(style()->standardIcon(QStyle::SP_DirHomeIcon), tr("Contents"), this, [this] {
            const QString contents = BaseHelp::pageOf(QLatin1String(ContentsPage));
            show(contents.isEmpty() ? BaseHelp::pageOf(QLatin1String(MainPage)) : contents);
        });
        back->setEnabled(false);
        forward->setEnabled(false);
        connect(browser_, &QTextBrowser::backwardAvailable, back, &QAction::setEnabled);
        connect(browser_, &QTextBrowser::forwardAvailable, forward, &QAction::setEnabled);
        auto* layout = new QVBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->setSpacing(0);
        layout->addWidget(bar);
        layout->addWidget(browser_);
        resize(640, 560);
    }
    void show(const QString& page)
    {
        page_ = page;
        browser_->setSource(QUrl(QStringLiteral("qrc") + page));
        QDialog::show();
        raise();
        activateWindow();
    }
    QString page() const { return page_; }

private:
    QTextBrowser* browser_;
    QString page_;
};

QPointer<HelpWindow>& window()
{
    static QPointer<HelpWindow> w;
    return w;
}

void showTopic(const QString& topic)
{
    if (!window())
        window() = new HelpWindow;
    window()->show(BaseHelp::locationOf(topic));
}

QString readPage(const QString& path)
{
    static QHash<QString, QString> cache;
    const auto found = cache.constFind(path);
    if (found != cache.cend())
        return *found;
    QFile file(path);
    const QString text = file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    cache.insert(path, text);
    return text;
}

} // namespace

QString BaseHelp::pageOf(const QString& topic)
{
    const QString path = QStringLiteral(":/help/%1.html").arg(topic.toLower());
    return QFile::exists(path) ? path : QString();
}

QString BaseHelp::locationOf(const QString& topic)
{
    // The tool itself, by name or none, is the main page; a topic without a
    // page of its own is a section of it.
    if (topic.isEmpty() || topic == QLatin1String("WAVE_EDITOR"))
        return pageOf(QLatin1String(MainPage));
    const QString page = pageOf(topic);
    return page.isEmpty() ? pageOf(QLatin1String(MainPage)) + QLatin1Char('#') + topic : page;
}

void BaseHelp::openHelpUrl(const QString& tool)
{
    showTopic(tool);
}

void BaseHelp::openDialogHelpUrl(const QString& topic)
{
    showTopic(topic);
}

void BaseHelp::openViewHelpUrl(const QString& topic)
{
    showTopic(topic);
}

QString BaseHelp::getWhatsThisText(const QString& topic, const QString& key)
{
    const QString page = pageOf(topic);
    if (page.isEmpty())
        return QString();
    const QRegularExpression element(
        QStringLiteral("<(\\w+)[^>]*\\bid=\"%1\"[^>]*>(.*?)</\\1>").arg(QRegularExpression::escape(key)),
        QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch m = element.match(readPage(page));
    return m.hasMatch() ? m.captured(2).trimmed() : QString();
}

QWidget* BaseHelp::helpWindow()
{
    return window();
}

QString BaseHelp::currentPage()
{
    return window() ? window()->page() : QString();
}

} // namespace kesu::toolvok
