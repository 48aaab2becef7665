#pragma once
#include <QSaveFile>

// A file that gets its name when it is whole. What is written lies beside the target, under a name that no file has,
// until Commit; whatever ends it before, a crash too, leaves the target as it was. A target that is no plain file (a
// folder, a device) or is write-protected is left alone: open fails. A link stays one. Any thread, one at a time.
class CFileWriter : public QSaveFile
{
public:
    explicit CFileWriter(const QString& strPath) : QSaveFile(strPath) {}

    bool Open() { return open(QIODevice::WriteOnly); }
    bool open(OpenMode mode) override;
    // False: what was written did not all reach the disk, or the name could not be taken. errorString says why.
    bool Commit();

private:
    bool ReachesDisk();
    using QSaveFile::commit;   // takes the target's place although a buffer could not be emptied
};

// All of it at once. False: the disk refuses.
bool ReplaceFile(const QString& strPath, const QByteArray& content);
