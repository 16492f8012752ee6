#pragma once

#include "basguitool.h"
#include "pattern.h"
#include "printsettings.h"
#include "rowstyle.h"
#include "recoverycopy.h"
#include "selection.h"
#include "viewport.h"

#include <QColor>
#include <QDateTime>
#include <QList>
#include <QMap>
#include <QMessageBox>
#include <QStringList>

#include <functional>
#include <memory>
#include <string>

class QFile;
class QFrame;
class QPalette;
class QIODevice;
class QPainter;
class QPrinter;
class QScrollBar;
class QSettings;
class QSplitter;
class QTimer;
class QUndoStack;

namespace kesu::toolvok {

class BaseUsrSettings;
class DocumentFileWatch;
class EditDlg;
class PatternDlg;
class RecentFiles;
class RulerView;
class SegmentRange;
class VokNavigator;
class WaveData;
class WaveDataDlg;
class WaveformData;
class WaveLstView;
class WaveView;

// The waveform editor's tool window: one document, its views, docks, actions
// and undo stack. Its members live in the folder of the concern they serve:
// shell/ (construction, host contract, actions, lifecycle), edit/ (editing),
// view/ (navigation and the text of times and values).
class VokGUI : public BasGUITool
{
    Q_OBJECT
    // What the host's options dialog starts from.
    Q_PROPERTY(int busRadix READ busRadix)
    Q_PROPERTY(int autoSave READ autoSave)
    Q_PROPERTY(bool guideline READ showGuideline)
    Q_PROPERTY(QList<QColor> colors READ colors)
public:
    // Interaction modes.
    enum Mode {
        ModeIgnore = InteractionMode::Ignore,
        ModeZoomArea = InteractionMode::ZoomArea,
        ModeQuery = InteractionMode::Query,
        ModeEdit = InteractionMode::Edit
    };
    // Identifiers of the tool's own actions.
    enum ActionId {
        ActExport = 20, ActImportVcd = 26, ActEditMode = 37, ActNewWave = 38, ActImportWave = 39, ActDupWave = 40,
        ActShowWave = 41, ActHideWave = 42, ActRemoveWave = 43, ActInsertPattern = 45,
        ActTimeSettings = 48, ActPlaceMarker = 65, ActHideMarker = 66, ActNextChange = 67,
        ActJumpMarker = 68, ActJumpTime = 69, ActJumpZero = 70, ActJumpEnd = 71, ActTickLeft = 72,
        ActTickRight = 73, ActLeft10 = 74, ActRight10 = 75, ActOptions = 91,
        ActExportImage = 92
    };

    VokGUI(QWidget* parent, QStringList files, QString& project, bool standalone);
    ~VokGUI() override;

    // --- host contract -----------------------------------------------------
    bool initialize() override;
    QString toolName() const override;
    void toolGUIInfo(QString& name, QString& title, QIcon& icon) override;
    QString fileName() const override;
    QString fullFileName() const override;
    QString getVirtualFileName() const override;
    bool isModified() const override;
    QList<Connection*>* activeConnections() override;
    QStringList* stdMenuItems(StdMenu menu) override;
    QList<QAction*>* myMenuItems(StdMenu menu) override;
    QList<QMenu*>* myMenus() override;
    QStringList* stdToolbarButtons() override;
    bool needSpecialToolBar() const override;

    static int untitledCounter() { return m_untitleNum; }

    // --- message boxes, all titled "Waveform Editor" --------------------------
    static QMessageBox::StandardButton showerrormsg(const QString& text, QWidget* parent);
    static QMessageBox::StandardButton showwarnmsg(const QString& text, QWidget* parent);
    static QMessageBox::StandardButton showconfirmmsg(const QString& text, QWidget* parent);
    static QMessageBox::StandardButton showmsg(const QString& text, QWidget* parent);

    // --- document, times and values ---------------------------------------
    WaveformData* document() const { return m_data; }
    bool loadData(QFile& file);
    bool saveData(QIODevice& file);
    // A file read only in part stays read-only and is never saved over.
    bool keepsUnreadFile() const { return !m_unreadFile.isEmpty() && m_unreadFile == m_fullFileName; }
    bool mayOverwrite(const QString& path);
    QString getTimeString(quint64 t, bool withUnit) const;
    quint64 convertTime(bool& ok, const QString& text) const;
    QString getBusValueString(const std::string& value, int width) const;
    // The colours and bus radix the waves are drawn with, in the wave font
    // made from base.
    RowStyle rowStyle(const QFont& base) const;
    quint64 getMaxEnd() const;
    quint64 getEndTime() const;

    // --- view state -------------------------------------------------------
    // What the wave view, the ruler and the mouse show of the time axis.
    const Viewport& viewport() const { return m_viewport; }
    quint64 startTime() const { return m_viewport.startTime; }
    quint64 step() const { return m_viewport.step; }
    void setStartTime(quint64 t) { m_viewport.startTime = t; }
    // Mode, active wave, selected range and segments, drag and clipboard.
    Selection& selectionState() { return m_sel; }
    const Selection& selectionState() const { return m_sel; }
    int mode() const { return m_sel.mode; }
    void setMode(int mode) { m_sel.mode = mode; }
    int busRadix() const { return m_busRadix; }
    void setBusRadix(int radix) { m_busRadix = radix; }
    int autoSave() const { return m_autoSave; }
    QTimer* autoSaveTimer() const { return m_autoSaveTimer; }
    bool showGuideline() const { return m_showGuideline; }
    void setShowGuideline(bool on) { m_showGuideline = on; }
    QList<Pattern*>& selection() { return m_sel.segments; }
    QList<Pattern*>& clipboard() { return m_sel.clipboard; }
    WaveData* activeWave() const { return m_sel.activeWave; }
    bool isReadOnly() const { return m_readOnly; }
    bool isZooming() const;
    QAction* action(int id) const { return m_actionMap.value(id); }
    const QMap<int, QAction*>& actionMap() const { return m_actionMap; }
    QUndoStack* undoStack() const { return m_undoStack; }
    QPrinter* printer() const { return m_printer; }
    PrintSettings& printSettings() { return m_print; }
    const PrintSettings& printSettings() const { return m_print; }
    // Draws one printed page and moves firstRow and pageStart on to the next.
    void paintPage(QPainter* painter, int page, int& firstRow, quint64& pageStart, quint64 end);

    WaveView* waveView() const { return m_waveView; }
    RulerView* rulerView() const { return m_ruler; }
    WaveLstView* waveList() const { return m_waveList; }
    QSplitter* splitter() const { return m_splitter; }
    QScrollBar* waveHBar() const { return m_waveHBar; }
    QScrollBar* waveVBar() const { return m_waveVBar; }
    QScrollBar* listHBar() const { return m_listHBar; }
    EditDlg* editDlg() const { return m_editDlg; }
    WaveDataDlg* waveDataDlg() const { return m_waveDataDlg; }
    PatternDlg* patternDlg() const { return m_patternDlg; }
    VokNavigator* navigator() const { return m_navigator; }
    BaseUsrSettings* usrSettings() const { return m_usrSettings.get(); }

    // The drawing colours, in settings order.
    QColor color_back, color_names, color_h, color_signal, color_bus, color_x, color_z;
    // As applyColors takes them; entry 0, which it skips, repeats the names colour.
    QList<QColor> colors() const;
    // The drawing colours, in settings order, that a palette suggests when
    // the user has chosen none.
    static QList<QColor> defaultColors(const QPalette& palette);

    // --- desktop comforts (shell/vokgui_comfort.cpp) ----------------------
    // Opens a document as File > Open does once its dialog has a name.
    void openFile(const QString& path);
    void openRecentFile(const QString& path);
    RecentFiles* recentFiles() const { return m_recentFiles.get(); }
    QMenu* recentFilesMenu() const { return m_recentMenu; }

    // --- navigation (view/vokgui_navigation.cpp) --------------------------
    void changeStep(quint64 s);
    void zoomIn();
    void zoomOut();
    void zoomRange(quint64 a, quint64 b);
    void changePointX(int x);
    void changeRange(double a, double b);
    quint64 getRangeStart() const;
    quint64 getRangeEnd() const;
    bool isMarked() const;
    void setRulerStartX(int x);

    // --- editing (edit/vokgui_edit.cpp) -----------------------------------
    void setActiveWave(WaveData* wave);
    void SetDirtyBit();
    void ResetDirtyBit();
    void setModeCursor();
    void addEditData(quint64 time);
    void addWave(WaveData* wave);
    void removeWave(WaveData* wave);
    // addWave and removeWave for many waves at once, with one refresh.
    void addWaves(const QList<WaveData*>& waves);
    void removeWaves(const QList<WaveData*>& waves);
    void insertWave(WaveData* wave, int index);
    void moveWave(WaveData* wave, int from, int to);
    void showWave(WaveData* wave);
    void hideWave(WaveData* wave);
    void resetForever(WaveData* wave);
    void mergeAfterEdit(WaveData* wave);
    void LoadEditData();
    void ChangeMode();
    void selectWave(int y);
    void DisplayData();
    bool isFromCut() const { return m_sel.fromCut; }
    // Deletes segments that an edit or an undo took out of a wave, after
    // forgetting them wherever the selection state still refers to them.
    void discardSegments(const QList<Pattern*>& segments);
    // Empties the clipboard; its segments are deleted unless a paste moved
    // them into a wave.
    void dropClipboard();
    // Ends an edge drag under the mouse before the keyboard edits the wave.
    void finishMouseEdit();

public Q_SLOTS:
    bool maybeSave() override;
    bool onSave() override;
    void onActivated() override;
    void onToolSwitched(bool on) override;
    void onAttached(bool attached, QWidget* frame) override;
    void onDefLayout() override;
    void onLoadLayout(QSettings* settings) override;
    void onSaveLayout(QSettings* settings) override;
    void helpTool();
    void helpAbout();
    void onHelpAbout() override { helpAbout(); }
    void onHelpHelp() override { helpTool(); }

    // Lifecycle (shell/vokgui_lifecycle.cpp).
    bool LoadFile();
    bool SaveFile();
    void NewFile();
    void ClearAll();
    void CloseFile();
    void Reload();
    void fileNew();
    void fileOpen();
    void fillRecentFilesMenu();
    void followPalette();
    void fileClose();
    bool fileSaveAs();
    bool CompareData() const;
    void titleChange();
    void askKeepDeletedFile(const QString& path);
    // Recovery copies and outside changes (shell/vokgui_recovery.cpp).
    void offerRecovery();
    bool restoreRecovered(const RecoveryCopy::Document& document);
    void changeReadonlyMode(bool readOnly);
    void onEditDataChanged();
    void fileExport();
    // A value change dump as a new document (shell/vokgui_vcd.cpp).
    void fileImportVcd();
    // File > Export Image...: asks for a .pdf, .svg or .png file name.
    void fileExportImage();
    // Writes the view's range as wdl render would; false after an error message.
    bool exportImage(const QString& path);
    void filePageSetup();
    void filePrintPreview();
    void filePrint();
    void PreviewPages(QPrinter* printer);

    // Editing.
    void undo();
    void redo();
    void cutData();
    void copyData();
    void pasteData();
    void clearData();
    void onUndoChanged(bool can);
    void onRedoChanged(bool can);
    void onChangeMode(bool edit);
    void newWave();
    void importWave();
    void dupWave();
    void showWave();
    void hideWave();
    void removeWave();
    void editTimeUnit();

    // Navigation.
    void Refresh();
    void setBar();
    void viewZoomin();
    void viewZoomout();
    void viewZoomfit();
    void viewZoomto();
    void onZooming(bool on);
    void placeMarker();
    void hideMarker();
    void JumptoNext();
    void JumptoMarker();
    void JumptoTime();
    void JumptoZero();
    void JumptoEnd();
    void JumptoLeft();
    void JumptoRight();
    void JumptoLeft10();
    void JumptoRight10();
    void onScrollWave_H();
    void onScrollWave_V();
    void onScrollLst_H();
    void doListHScrollChanged(int v);
    void doListVScrollChanged(int v);

    // Layout.
    void onChangeSplitter();
    void onToggleDataView(bool visible);
    void onTogglePropView(bool visible);
    void onTogglePatternView(bool visible);
    void onAutoSave();

    // Answers of the host's options dialog; its colour list's entry 0 is the
    // host's own and is skipped, entries 1 to 7 are ours in settings order.
    void applyOptions(int busRadix, int autoSave, bool guideline);
    void applyColors(QList<QColor> colors);

Q_SIGNALS:
    void fileChanged(bool);
    void alwaysAvailable(bool);
    void editAvailable(bool);
    void undoAvailable(bool);
    void redoAvailable(bool);
    void editdataChanged(bool);
    void pastedataChanged(bool);
    void sigOptionDialog();
    void activeWaveChanged(bool);
    void markChanged(bool);
    void busWaveSelected(bool);
    void viewmodeChanged(bool);
    void sigZoomarea(bool);
    void sigZoomAreaChecked(bool);
    void sigQuitZooming();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    // Construction steps (shell/vokgui.cpp, shell/vokgui_actions.cpp).
    void readColors();
    void createViews();
    void createScrollBars();
    void layoutCentralFrame();
    void createActions();
    void createDocks();
    void buildMenuLists();
    void initMyMenus();
    void initMyConnections();
    void connectShared(const char* name, const char* signal, const QObject* receiver, const char* slot);
    void enableShared(const char* name, const char* toolSignal);
    void wireTableActions();
    void takeFirstFile(const QStringList& files);
    void GetWinSettings();
    void SaveWinSettings();
    // At the first show the name list gets back the width the hidden splitter scaled.
    void restoreListWidth();
    void jumpTo(quint64 t);
    void restartAutoSave();
    // Lets go of everything that refers to a wave about to be deleted.
    void forgetWave(WaveData* wave);
    // Drops the segments for which gone holds from the selection and from the
    // wave view's drag and pick state, without deleting them.
    void forgetSegments(const std::function<bool(const Pattern*)>& gone);
    // mergeAfterEdit over the range an edit's undo copy covers, or over
    // segments [from, to): only pairs inside can merge.
    void mergeEditedRange(WaveData* wave, const SegmentRange& before);
    void mergeNeighbours(WaveData* wave, int from, int to);
    QString dialogFolder() const;
    // Shows the document just read or imported, fitted to the view.
    void showDocument();
    bool askToSave();
    void createComfort();
    void placeRecentFilesMenu();
    void noteRecentFile(const QString& path);
    // Reads the file into m_preloaded, which loadData then takes in place of
    // reading it again; false when the user cancelled the read.
    bool preload(const QString& path);
    // The drawing colours with their settings keys, in settings order.
    struct ColorSetting {
        QLatin1String key;
        QColor* color;
    };
    QList<ColorSetting> colorSettings();
    void setUpRecovery();
    void watchDocumentFile();
    bool changedOnDisk(const QString& path) const;
    bool overwriteAllowed(const QString& path);

    // Host contract state.
    QList<QAction*> m_menuItems[4];
    QList<QAction*> m_toolbarItems;
    QList<QAction*> m_viewActions;
    QList<QAction*> m_jumpActions;
    QMap<int, QAction*> m_actionMap;
    QList<Connection*> m_connections;
    QString m_toolTitle;
    QString m_fullFileName;
    QString m_lastFile;
    QString m_lastImportFile;
    std::unique_ptr<BaseUsrSettings> m_usrSettings;
    QStringList m_stdMenuNames[6];
    QStringList m_toolbarNames;
    QMenu* m_jumpMenu = nullptr;

    // The document and the widgets around it.
    QFrame* m_centralFrame = nullptr;
    WaveformData* m_data = nullptr;
    QPrinter* m_printer = nullptr;
    QUndoStack* m_undoStack = nullptr;
    QSplitter* m_splitter = nullptr;
    RulerView* m_ruler = nullptr;
    WaveView* m_waveView = nullptr;
    WaveLstView* m_waveList = nullptr;
    QScrollBar* m_listHBar = nullptr;
    QScrollBar* m_waveHBar = nullptr;
    QScrollBar* m_waveVBar = nullptr;
    EditDlg* m_editDlg = nullptr;
    WaveDataDlg* m_waveDataDlg = nullptr;
    PatternDlg* m_patternDlg = nullptr;
    bool m_patternViewShown = false;
    QDateTime m_lastModified;
    QTimer* m_autoSaveTimer = nullptr;
    RecoveryCopy* m_recovery = nullptr;
    DocumentFileWatch* m_fileWatch = nullptr;
    QDateTime m_diskTime;   // the file's time as last read or written here
    VokNavigator* m_navigator = nullptr;
    bool m_readOnly = false;
    QString m_unreadFile;   // the file the last load could not read completely
    bool m_checkingChange = false;
    bool m_modified = false;
    bool m_askingDeleted = false;
    bool m_shownOnce = false;

    // View and option state.
    Viewport m_viewport;
    Selection m_sel;
    quint64 m_viewEndTime = 0;
    int m_busRadix = 0;
    int m_autoSave = 0;
    PrintSettings m_print;
    bool m_showGuideline = false;
    int m_storedListWidth = 150;
    std::unique_ptr<QSettings> m_settings;
    std::unique_ptr<RecentFiles> m_recentFiles;
    QMenu* m_recentMenu = nullptr;
    std::unique_ptr<WaveformData> m_preloaded;
    QString m_preloadedPath;
    // The colours the palette suggested last: those still in use follow the next one.
    QList<QColor> m_paletteColors;

    static int m_untitleNum;
};

} // namespace kesu::toolvok
