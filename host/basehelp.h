#pragma once

#include <QString>

class QWidget;

namespace kesu::toolvok {

// The tools' help: HTML pages compiled into the resources under ":/help/",
// one per topic, shown in one shared help window. What's-this texts are the
// elements of a page marked with an id.
class BaseHelp
{
public:
    // The main page of a tool ("WAVE_EDITOR" opens the editor's page).
    static void openHelpUrl(const QString& tool = QString());
    // The page of a dialog ("add_wave", "import_wave", ...).
    static void openDialogHelpUrl(const QString& topic);
    // The page of a view ("wave_display", "WAVEFORM_PROPERTY", ...).
    static void openViewHelpUrl(const QString& topic);
    // The text of the element with id "key" on the page of "topic"; empty
    // when there is none.
    static QString getWhatsThisText(const QString& topic, const QString& key);

    // The resource path of a topic's page, or empty when there is no page.
    static QString pageOf(const QString& topic);
    // Where a topic is shown: its page, or a section ("page#topic") of the
    // main page.
    static QString locationOf(const QString& topic);
    // The window that shows the pages; created on first use.
    static QWidget* helpWindow();
    static QString currentPage();
};

} // namespace kesu::toolvok
