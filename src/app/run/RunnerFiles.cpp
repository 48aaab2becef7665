#include "app/run/Runner.h"
#include "app/run/Surface.h"
#include "common/Paths.h"
#include "config/AppConfig.h"
#include "config/SettingsTable.h"
#include "gcode/GCodeStore.h"
#include "zprofile/ZProfileFile.h"

#include <QDir>
#include <QSaveFile>

#include <cerrno>
#include <cstdio>
#include <cstring>

// Everything of a call that can be refused before a machine is there: folders, settings, files.

static constexpr qint64 MAX_STREAM = qint64(1) << 31;   // bytes from a pipe: more is not a program

// Empty, or why a file can't be read: said by the system that knows.
static QString WhyUnreadable(const QString& strPath)
{
    const QFileInfo info(strPath);
    if (info.isDir()) return strPath + QStringLiteral(": is a folder");
    QFile file(strPath);
    if (file.open(QIODevice::ReadOnly)) return {};
    return strPath + QStringLiteral(": ") + file.errorString();
}

bool CRunner::PrepareFolders()
{
    if (!m_Scratch.isValid()) return Fail(QStringLiteral("no temporary folder: ") + m_Scratch.errorString());
    const QString strHome = m_Options.strDataDir.isEmpty() ? m_Scratch.path() : m_Options.strDataDir;
    if (!QDir().mkpath(strHome)) return Fail(strHome + QStringLiteral(": the folder cannot be made"));
    CPaths::SetHomeFolder(strHome);
    CPaths::Establish();
    if (QFileInfo(CPaths::Map(WORKING_FOLDER)).isDir()) return true;
    return Fail(CPaths::Map(WORKING_FOLDER) + QStringLiteral(": the folder cannot be made"));
}

bool CRunner::PrepareSettings()
{
    QString strConfig = CPaths::Map(CONFIG_FILE);
    if (!m_Options.strConfig.isEmpty()) {
        // Read from a copy and with a home of its own: an older file would be brought up to date where it is loaded.
        if (const QString strWhy = WhyUnreadable(m_Options.strConfig); !strWhy.isEmpty()) return Fail(strWhy);
        strConfig = m_Scratch.filePath(QStringLiteral("config.dat"));
        if (!QFile::copy(m_Options.strConfig, strConfig))
            return Fail(m_Options.strConfig + QStringLiteral(": cannot be read"));
        QFile::setPermissions(strConfig, QFile::ReadOwner | QFile::WriteOwner);
        const QString strHome = CPaths::HomeFolder();
        CPaths::SetHomeFolder(m_Scratch.path());
        CPaths::Establish();
        const bool bLoaded = AppConfig::LoadConfig(strConfig);
        CPaths::SetHomeFolder(strHome);
        if (!bLoaded) return Fail(m_Options.strConfig + QStringLiteral(": is not a configuration file"));
    } else if (!AppConfig::LoadConfig(strConfig)) {
        return Fail(strConfig + QStringLiteral(": cannot be read"));
    }
    for (const QString& strAssignment : m_Options.lstSettings) {
        QString strWhy;
        if (!CSettingsTable::Set(strAssignment, strWhy))
            return Fail(QStringLiteral("--set %1: %2").arg(strAssignment, strWhy));
    }
    if (m_Options.bHoming) AppConfig::m_bHomeSensorsUsed = true;
    if (m_Options.bSimulation) AppConfig::m_bSimulationMode = true;
    CSettingsTable::ApplySettings();
    return true;
}

bool CRunner::PrepareJob()
{
    if (m_Options.strJob.isEmpty()) return true;
    QString strPath = m_Options.strJob;
    QFile input;
    if (strPath == QLatin1String("-")) {
        if (!input.open(stdin, QIODevice::ReadOnly) || !LoadFromStream(input, strPath))
            return Fail(QStringLiteral("-: standard input cannot be read"));
    } else if (const QString strWhy = WhyUnreadable(strPath); !strWhy.isEmpty()) {
        return Fail(strWhy);
    } else if (!QFileInfo(strPath).isFile()) {
        input.setFileName(strPath);   // a pipe can be read only once
        if (!input.open(QIODevice::ReadOnly) || !LoadFromStream(input, strPath))
            return Fail(strPath + QStringLiteral(": cannot be read to its end"));
    }
    CGCodeStore::m_bGCodeLoading = true;
    CGCodeStore::LoadGCode(strPath, nullptr);
    if (CGCodeStore::m_bGCodeLoading) return Fail(m_Options.strJob + QStringLiteral(": cannot be read"));
    if (m_pScreen->ToldCount() > 0 && CGCodeStore::m_lstOfGCodeLines.empty())
        return Fail(m_Options.strJob + QStringLiteral(": cannot be read to its end"));
    if (CGCodeStore::m_lstOfGCodeLines.empty()) return Fail(m_Options.strJob + QStringLiteral(": is empty"));
    CGCodeStore::m_bGCodeCompiling = true;
    CGCodeStore::m_CompilationErrors.clear();
    CGCodeStore::CompileGCode(nullptr);
    return true;
}

// Into a file of its own, whose path is put into strPath.
bool CRunner::LoadFromStream(QFile& file, QString& strPath)
{
    QFile copy(m_Scratch.filePath(QStringLiteral("job")));
    if (!copy.open(QIODevice::WriteOnly)) return false;
    QByteArray block(1 << 16, '\0');
    qint64 lAll = 0;
    for (qint64 lRead = file.read(block.data(), block.size()); lRead != 0;
         lRead = file.read(block.data(), block.size())) {
        lAll += lRead;
        if (lRead < 0 || lAll > MAX_STREAM || copy.write(block.constData(), lRead) != lRead) return false;
    }
    strPath = copy.fileName();
    return copy.flush();
}

bool CRunner::PrepareSurface()
{
    bool bFlat = true;
    double fHeight = m_Options.strSurface.isEmpty() ? 0.0 : m_Options.strSurface.toDouble(&bFlat);
    if (bFlat && !qIsFinite(fHeight)) return Fail(m_Options.strSurface + QStringLiteral(": is not a height"));
    // Told in work coordinates; the machine lives in its own.
    using A = AppConfig;
    const auto Zero = [](int axis) { return A::m_bHomeSensorsUsed ? A::m_fAxisWorkZero[axis] : 0.0; };
    if (bFlat) {
        m_pMachine->SetFlatSurface(fHeight + Zero(Z_AXIS));
        return true;
    }
    if (const QString strWhy = WhyUnreadable(m_Options.strSurface); !strWhy.isEmpty()) return Fail(strWhy);
    const bool bLoaded = LoadZProfile(m_Options.strSurface);
    const CSurface surface(std::exchange(A::m_ZProfileInfo.lstPoints, {}));
    if (!bLoaded || surface.IsEmpty()) return Fail(m_Options.strSurface + QStringLiteral(": is not a profile"));
    m_pMachine->SetSurface([surface, x = Zero(X_AXIS), y = Zero(Y_AXIS), z = Zero(Z_AXIS)](double fX, double fY) {
        return surface.Height(fX - x, fY - y) + z;
    });
    return true;
}

bool CRunner::PrepareProfile()
{
    if (m_Options.strZProfile.isEmpty()) return true;
    if (const QString strWhy = WhyUnreadable(m_Options.strZProfile); !strWhy.isEmpty()) return Fail(strWhy);
    if (!LoadZProfile(m_Options.strZProfile) || !HasZProfile())
        return Fail(m_Options.strZProfile + QStringLiteral(": is not a profile of at least 2 by 2 points"));
    AppConfig::m_bUseZProfile = true;
    return true;
}

// Before anything runs: hours of a run must not end in a folder that is not there.
bool CRunner::CheckOutput(const QString& strPath)
{
    if (strPath.isEmpty()) return true;
    const QFileInfo output(strPath);
    for (const QString& strInput : {m_Options.strJob, m_Options.strConfig, m_Options.strZProfile, m_Options.strSurface})
        if (!strInput.isEmpty() && output.exists() &&
            output.canonicalFilePath() == QFileInfo(strInput).canonicalFilePath())
            return Fail(strPath + QStringLiteral(": is read, and would be overwritten"));
    if (output.isDir()) return Fail(strPath + QStringLiteral(": is a folder"));
    QFile file(strPath);
    const bool bNew = !output.exists();
    if (!file.open(QIODevice::ReadWrite)) return Fail(strPath + QStringLiteral(": ") + file.errorString());
    file.close();
    if (bNew) file.remove();
    return true;
}

bool CRunner::PrepareOutputs()
{
    if (m_Options.bCheck) return true;
    const QStringList outputs{m_Options.strMoves, m_Options.strEdges, m_Options.strPicture, m_Options.strSummary,
                              m_Options.strMakeZProfile};
    for (const QString& strPath : outputs) {
        if (!CheckOutput(strPath)) return false;
        if (!strPath.isEmpty() && outputs.count(strPath) > 1)
            return Fail(strPath + QStringLiteral(": is given for two results"));
    }
    return true;
}
