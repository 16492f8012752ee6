// Draws the icons kept in the repository as PNG files. Run once after
// changing a drawing, from the source folder:
//   make_icons .
// It writes shell/images (the tool's icons) and host/images/22 and
// host/images/32 (the shared actions' icons) and desktop/icons/hicolor (the
// program's and its documents' icons at the desktop's sizes).
#include <QDir>
#include <QGuiApplication>

#include <cstdio>

bool drawToolIcons(const QString& dir);
bool drawHostIcons(const QString& dir);
bool drawDesktopIcons(const QString& dir);

int main(int argc, char** argv)
{
    QGuiApplication app(argc, argv);
    const QDir source(argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral("."));
    const bool ok = drawToolIcons(source.filePath(QStringLiteral("shell/images")))
        && drawHostIcons(source.filePath(QStringLiteral("host/images")))
        && drawDesktopIcons(source.filePath(QStringLiteral("desktop/icons/hicolor")));
    if (!ok)
        std::fprintf(stderr, "make_icons: could not write every icon under %s\n", qPrintable(source.absolutePath()));
    return ok ? 0 : 1;
}
