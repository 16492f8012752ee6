// Construction of the tool window and its contract with the host.
#include "vokgui.h"

#include "aboutdialog.h"
#include "basehelp.h"
#include "baseusrsettings.h"
#include "editdlg.h"
#include "patterndlg.h"
#include "recentfiles.h"
#include "rulerview.h"
#include "voknavigator.h"
#include "wavedatadlg.h"
#include "waveformdata.h"
#include "wavelstview.h"
#include "waveview.h"
#include "wheelscroller.h"

#include <QAction>
#include <QDebug>
#include <QFileInfo>
#include <QFrame>
#include <QGridLayout>
#include <QKeyEvent>
#include <QMenu>
#include <QPrinter>
#include <QScrollBar>
#include <QSettings>
#include <QSplitter>
#include <QStatusBar>
#include <QTimer>
#include <QUndoStack>

// The resources live in a static library: without a reference to their
// initialiser the linker drops them, and with them every icon and the help page.
static void initToolResources()
{
    Q_INIT_RESOURCE(vokgui);
}

namespace kesu::toolvok {

int VokGUI::m_untitleNum = 1;

VokGUI::VokGUI(QWidget* parent, QStringList files, QString& /*project*/, bool standalone)
    : BasGUITool(parent, standalone)
{
    qDebug("New VokGUI.");
    initToolResources();
    setAttribute(Qt::WA_DeleteOnClose, false);
    m_toolTitle = standalone ? QStringLiteral("Waveform Editor (Stand-alone)") : QStringLiteral("Waveform Editor");
    setWindowIcon(QIcon(QStringLiteral(":/images/waveform_editor.png")));

    m_usrSettings = std::make_unique<BaseUsrSettings>(QStringLiteral("WAVE_EDITOR"));
    readColors();

    m_centralFrame = new QFrame(this);
    m_data = new WaveformData;
    // Pages are laid out in the screen's pixels (rows 40 high, text at 8
    // points), so the printer works at the screen's resolution.
    m_printer = new QPrinter(QPrinter::ScreenResolution);
    m_undoStack = new QUndoStack(this);

    createViews();
    createScrollBars();
    layoutCentralFrame();

    m_navigator = new VokNavigator(this);
    m_waveView->installEventFilter(m_navigator);
    auto* wheel = new WheelScroller(this);
    m_waveView->installEventFilter(wheel);
    m_waveList->viewport()->installEventFilter(wheel);
    installEventFilter(this);
    m_waveView->installEventFilter(this);
    m_ruler->installEventFilter(this);
    m_waveList->installEventFilter(this);

    createActions();
    createDocks();
    createComfort();
    buildMenuLists();
    takeFirstFile(files);
    if (!m_fullFileName.isEmpty())
        m_lastModified = QFileInfo(m_fullFileName).lastModified();
    else
        ++m_untitleNum;

    m_autoSaveTimer = new QTimer(this);
    connect(m_autoSaveTimer, &QTimer::timeout, this, &VokGUI::onAutoSave);
    setUpRecovery();
}

VokGUI::~VokGUI()
{
    SaveWinSettings();
    // QWidget's destructor hides the docks of a shown window, and their
    // visibility signals would reach this object after it stopped being a VokGUI.
    for (QDockWidget* dock : {static_cast<QDockWidget*>(m_patternDlg), static_cast<QDockWidget*>(m_waveDataDlg),
                              static_cast<QDockWidget*>(m_editDlg)})
        disconnect(dock, nullptr, this, nullptr);
    // Likewise a stack with steps on it announces its clearing when it goes,
    // here and to the docks, which would read the document being torn down.
    disconnect(m_undoStack, nullptr, nullptr, nullptr);
    // The views read the document while they go; take them down first.
    delete m_centralFrame;
    m_centralFrame = nullptr;
    qDeleteAll(m_connections);
    m_sel.segments.clear();
    // A cut leaves its segments to the clipboard alone; a copy made new ones.
    m_sel.dropClipboard();
    delete m_data;
    delete m_printer;
}

void VokGUI::readColors()
{
    m_paletteColors = defaultColors(palette());
    const QList<ColorSetting> fields = colorSettings();
    for (int i = 0; i < fields.size(); ++i) {
        const QVariant stored = m_usrSettings->value(fields.at(i).key);
        // A stored value that is not a colour keeps the default.
        const QColor color = stored.metaType().id() == QMetaType::QColor ? stored.value<QColor>()
                                                                        : QColor(stored.toString());
        *fields.at(i).color = stored.isValid() && color.isValid() ? color : m_paletteColors.at(i);
    }
}

void VokGUI::createViews()
{
    m_splitter = new QSplitter(Qt::Horizontal, m_centralFrame);
    m_waveList = new WaveLstView(this, m_splitter);
    m_waveView = new WaveView(this, m_splitter);
    m_splitter->addWidget(m_waveList);
    m_splitter->addWidget(m_waveView);
    m_splitter->setHandleWidth(1);
    m_splitter->setSizes({150, 600});
    m_splitter->setChildrenCollapsible(false);
    connect(m_splitter, &QSplitter::splitterMoved, this, &VokGUI::onChangeSplitter);

    m_ruler = new RulerView(this, m_centralFrame);
    m_ruler->setFixedHeight(50);
}

void VokGUI::createScrollBars()
{
    m_listHBar = new QScrollBar(Qt::Horizontal, m_centralFrame);
    connect(m_listHBar, &QScrollBar::valueChanged, this, &VokGUI::onScrollLst_H);
    connect(m_waveList->horizontalScrollBar(), &QScrollBar::valueChanged, this, &VokGUI::doListHScrollChanged);

    m_waveHBar = new QScrollBar(Qt::Horizontal, m_centralFrame);
    m_waveHBar->setPageStep(1);
    connect(m_waveHBar, &QScrollBar::valueChanged, this, &VokGUI::onScrollWave_H);

    m_waveVBar = new QScrollBar(Qt::Vertical, m_centralFrame);
    connect(m_waveVBar, &QScrollBar::valueChanged, this, &VokGUI::onScrollWave_V);
    connect(m_waveList->verticalScrollBar(), &QScrollBar::valueChanged, this, &VokGUI::doListVScrollChanged);
}

void VokGUI::layoutCentralFrame()
{
    auto* grid = new QGridLayout(m_centralFrame);
    grid->setSpacing(0);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setColumnStretch(1, 1);
    grid->addWidget(m_ruler, 0, 0, 1, 2);
    grid->addWidget(m_splitter, 1, 0, 1, 2);
    grid->addWidget(m_waveVBar, 1, 2);
    grid->addWidget(m_listHBar, 2, 0);
    grid->addWidget(m_waveHBar, 2, 1);
    m_listHBar->setFixedWidth(150);
    m_centralFrame->setFrameShape(QFrame::NoFrame);
    setCentralWidget(m_centralFrame);
}

void VokGUI::takeFirstFile(const QStringList& files)
{
    if (files.isEmpty())
        return;
    QString name = files.first();
    if (name.startsWith(QLatin1Char('"')))
        name = name.mid(1, name.size() - 2);
    const QFileInfo info(name);
    if (!name.isEmpty() && info.exists() && info.isFile())
        m_fullFileName = info.absoluteFilePath();
}

bool VokGUI::initialize()
{
    m_settings = std::make_unique<QSettings>(QSettings::IniFormat, QSettings::UserScope,
                                             QStringLiteral("Vostranelle"), QStringLiteral("WAVE_EDITOR"));
    m_title = m_fullFileName.isEmpty() ? QStringLiteral("Untitled %1").arg(m_untitleNum - 1)
                                       : QFileInfo(m_fullFileName).fileName();
    m_fullTitle = m_toolTitle + QStringLiteral(" - ")
        + (m_fullFileName.isEmpty() ? m_title : m_fullFileName);
    BasGUITool::initialize();
    placeRecentFilesMenu();
    initMyMenus();
    initMyConnections();
    if (isStandalone())
        statusBar()->show();
    if (!m_fullFileName.isEmpty())
        LoadFile();
    else
        NewFile();
    setWindowTitle(m_fullTitle);
    GetWinSettings();
    // LoadFile above ran before the auto-save setting was read.
    if (m_autoSaveTimer->isActive())
        restartAutoSave();
    offerRecovery();
    return true;
}

QString VokGUI::toolName() const
{
    return QStringLiteral("WAVE_EDITOR");
}

void VokGUI::toolGUIInfo(QString& name, QString& title, QIcon& icon)
{
    name = QStringLiteral("Waveform Editor");
    title = QStringLiteral("Waveform Editor");
    icon = windowIcon();
}

QString VokGUI::fileName() const
{
    return m_fullFileName.isEmpty() ? QString() : QFileInfo(m_fullFileName).fileName();
}

QString VokGUI::fullFileName() const
{
    return m_fullFileName;
}

QString VokGUI::getVirtualFileName() const
{
    return m_fullFileName.isEmpty() ? m_title : m_fullFileName;
}

bool VokGUI::isModified() const
{
    return m_modified;
}

QList<Connection*>* VokGUI::activeConnections()
{
    return &m_connections;
}

QList<QMenu*>* VokGUI::myMenus()
{
    return nullptr;
}

bool VokGUI::needSpecialToolBar() const
{
    return true;
}

void VokGUI::onToolSwitched(bool on)
{
    if (on)
        onActivated();
}

void VokGUI::onAttached(bool attached, QWidget* frame)
{
    BasGUITool::onAttached(attached, frame);
    if (attached)
        return;
    if (QAction* zoomArea = sharedAction(QStringLiteral("zoom area"))) {
        if (zoomArea->isChecked() != isZooming())
            zoomArea->setChecked(isZooming());
    }
}

void VokGUI::helpTool()
{
    BaseHelp::openHelpUrl(toolName());
}

void VokGUI::helpAbout()
{
    QString name, title;
    QIcon icon;
    toolGUIInfo(name, title, icon);
    AboutDialog(name, title, icon, this).exec();
}

namespace {
QMessageBox::StandardButton messageBox(QMessageBox::Icon icon, const QString& text, QWidget* parent,
                                       QMessageBox::StandardButtons buttons)
{
    QMessageBox box(icon, QObject::tr("Waveform Editor"), text, buttons, parent);
    return static_cast<QMessageBox::StandardButton>(box.exec());
}
} // namespace

QMessageBox::StandardButton VokGUI::showerrormsg(const QString& text, QWidget* parent)
{
    return messageBox(QMessageBox::Critical, text, parent, QMessageBox::Ok);
}

QMessageBox::StandardButton VokGUI::showwarnmsg(const QString& text, QWidget* parent)
{
    return messageBox(QMessageBox::Warning, text, parent, QMessageBox::Ok);
}

QMessageBox::StandardButton VokGUI::showconfirmmsg(const QString& text, QWidget* parent)
{
    return messageBox(QMessageBox::Question, text, parent,
                      QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
}

QMessageBox::StandardButton VokGUI::showmsg(const QString& text, QWidget* parent)
{
    return messageBox(QMessageBox::Information, text, parent, QMessageBox::Ok);
}

void VokGUI::showEvent(QShowEvent* event)
{
    BasGUITool::showEvent(event);
    if (m_shownOnce)
        return;
    m_shownOnce = true;
    // The first fit needs the real width of the wave view, known only now.
    restoreListWidth();
    onChangeSplitter();
    if (!m_data->waves.isEmpty())
        viewZoomfit();
}

void VokGUI::keyReleaseEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape && m_sel.mode == ModeZoomArea) {
        m_sel.mode = action(ActEditMode)->isChecked() ? ModeEdit : ModeQuery;
        setModeCursor();
        return;
    }
    BasGUITool::keyReleaseEvent(event);
}

} // namespace kesu::toolvok
