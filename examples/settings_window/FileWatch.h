#pragma once

#include <FileHandling/FileName.h>

#include <QFileSystemWatcher>
#include <QTimer>

#include <functional>
#include <vector>

namespace Ui {

/// Tells when something happens to files, which may be replaced, removed and made meanwhile.
class FileWatch {
public:
    /// @param files   what is watched, with the folders that they are in
    /// @param changed is called a moment after the last of several changes
    FileWatch(const std::vector<Orvant::FileName>& files, std::function<void()> changed);

private:
    void watch();

    QStringList m_files;
    QFileSystemWatcher m_watcher;
    QTimer m_timer;
};

} // namespace Ui
