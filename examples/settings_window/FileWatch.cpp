#include "FileWatch.h"

#include <QFileInfo>

#include <chrono>
#include <utility>

namespace Ui {

namespace {

/// A save makes several changes.
constexpr std::chrono::milliseconds pause(50);

/// @return the folder of a file or, while there is none, the next one above
QString folderOf(const QString& file) {
    QString folder = QFileInfo(file).absolutePath();
    while (!QFileInfo::exists(folder) && folder != QFileInfo(folder).absolutePath())
        folder = QFileInfo(folder).absolutePath();
    return folder;
}

} // namespace

FileWatch::FileWatch(const std::vector<Orvant::FileName>& files, std::function<void()> changed) {
    for (const Orvant::FileName& file : files)
        m_files << QString::fromStdString(file.toString());
    m_timer.setSingleShot(true);
    m_timer.setInterval(pause);
    QObject::connect(&m_watcher, &QFileSystemWatcher::fileChanged, &m_timer,
                     [this] { m_timer.start(); });
    QObject::connect(&m_watcher, &QFileSystemWatcher::directoryChanged, &m_timer,
                     [this] { m_timer.start(); });
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this, changed = std::move(changed)] {
        watch();
        changed();
    });
    watch();
}

/// Saves replace a file, which ends its watch: each change begins it anew.
void FileWatch::watch() {
    const QStringList watched = m_watcher.files() + m_watcher.directories();
    for (const QString& file : std::as_const(m_files))
        for (const QString& path : {file, folderOf(file)})
            if (!watched.contains(path) && QFileInfo::exists(path))
                m_watcher.addPath(path);
}

} // namespace Ui
