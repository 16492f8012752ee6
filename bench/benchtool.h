// The tool window the GUI benchmarks time: the application, settings kept
// out of the user's in a folder of their own, and one untitled document.
#pragma once

#include "generated_document.h"
#include "vokgui.h"

#include <QApplication>
#include <QTemporaryDir>

#include <memory>

class BenchTool
{
public:
    BenchTool(int& argc, char** argv)
    {
        kesu::toolvok::sandboxToolSettings(config_.path());
        app_ = std::make_unique<QApplication>(argc, argv);
        gui = std::make_unique<kesu::toolvok::VokGUI>(nullptr, QStringList{}, project_, true);
        gui->initialize();
    }
    kesu::toolvok::VokGUI* operator->() const { return gui.get(); }
    // A file beside the settings, gone with the benchmark.
    QString scratch(const QString& name) const { return config_.filePath(name); }

private:
    QTemporaryDir config_;
    QString project_;
    std::unique_ptr<QApplication> app_;

public:
    std::unique_ptr<kesu::toolvok::VokGUI> gui;
};
