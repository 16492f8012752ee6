// savechild FILE SEGMENTS FAULT N: adds a wave of SEGMENTS segments to FILE and saves it as the editor
// does. FAULT: none (prints the steps taken), kill or remove (SIGKILL, or the folder removed, before step N:
// a write, flush, link or rename), limit (file size limit N). Exits 1 when the save reports failure.
#include "documentfile.h"
#include "saveedit.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {
QByteArray g_fault;   // none, kill, remove or limit
bool g_armed = false;
long g_steps = 0, g_at = 0;
QString g_folder;

void step()
{
    if (!g_armed || ++g_steps != g_at)
        return;
    if (g_fault == "kill")
        syscall(SYS_kill, getpid(), SIGKILL);
    if (g_fault == "remove") {
        g_armed = false;
        QDir(g_folder).removeRecursively();
        g_armed = true;
    }
}
} // namespace

// The system calls a save goes through, each counted as a step first.
extern "C" {
ssize_t write(int fd, const void* buffer, size_t size)
{
    if (fd > 2)
        step();
    return syscall(SYS_write, fd, buffer, size);
}
int fsync(int fd) { step(); return int(syscall(SYS_fsync, fd)); }
int fdatasync(int fd) { step(); return int(syscall(SYS_fdatasync, fd)); }
int rename(const char* from, const char* to) { step(); return int(syscall(SYS_rename, from, to)); }
int linkat(int fd, const char* from, int toFd, const char* to, int flags) { step(); return int(syscall(SYS_linkat, fd, from, toFd, to, flags)); }
int renameat2(int fd, const char* from, int toFd, const char* to, unsigned flags) { step(); return int(syscall(SYS_renameat2, fd, from, toFd, to, flags)); }
}

int main(int argc, char** argv)
{
    if (argc != 5)
        return 2;
    const QString path = QString::fromLocal8Bit(argv[1]);
    g_fault = argv[3];
    g_at = std::atol(argv[4]);
    g_folder = QFileInfo(path).absolutePath();
    kesu::toolvok::WaveformData document;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return 2;
    document.loadData(file);
    file.close();
    saveedit::addStressWave(document, std::atoi(argv[2]));

    if (g_fault == "limit") {
        std::signal(SIGXFSZ, SIG_IGN);   // a failing write, not a dead program
        const rlimit limit{rlim_t(g_at), rlim_t(g_at)};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    // The moment the save starts, for a parent that kills at a random time.
    std::puts("saving");
    std::fflush(stdout);
    g_armed = true;
    QString error;
    const bool saved = kesu::toolvok::saveWaveformFile(document, path, &error);
    g_armed = false;
    std::printf("steps %ld\n", g_steps);
    if (!saved)
        std::printf("failed: %s\n", qPrintable(error));
    return saved ? 0 : 1;
}
