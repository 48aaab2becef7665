#include "common/Paths.h"
#include "config/AppConfig.h"
#include "config/ConfigNotice.h"
#include "config/SettingsTable.h"
#include "run/Runner.h"
#include "zprofile/ZProfileFile.h"

#include <QDir>

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
    if (const QString strNotice = TakeConfigNotice(); !strNotice.isEmpty()) m_pScreen->Say(strNotice);
    for (const QString& strAssignment : m_Options.lstSettings) {
        QString strWhy;
        if (!CSettingsTable::Set(strAssignment, strWhy))
            return Fail(QStringLiteral("--set %1: %2").arg(strAssignment, strWhy));
    }
    const auto& inputs = m_Options.lstInputs;
    if (AppConfig::m_eVantorCtrl > VTR5_CTRL &&
        std::any_of(inputs.begin(), inputs.end(), [](const auto& input) { return input.eWhat == stTimedInput::INPUT; }))
        return Fail(QStringLiteral("--input: those of an SPI board are not there; name a pin as gpioN"));
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
    QString strWhy;
    m_pJob = MakeJobKind(m_Options);
    if (!m_Options.strToGCode.isEmpty() && !m_pJob->HasGCode())
        return Fail(m_Options.strJob + QStringLiteral(": --to-gcode: is a program already"));
    for (const QString& strAssignment : m_Options.lstJobFields)
        if (!SetJobField(*m_pJob, strAssignment, strWhy)) return Fail(QStringLiteral("--job ") + strWhy);
    if (!m_pJob->Load({strPath, m_Options.strJob, m_Scratch.path(), *m_pScreen}, strWhy))
        return Fail(m_Options.strJob + QStringLiteral(": ") + strWhy);
    if (m_Options.iStartLine == 1 || m_pJob->Lines() > 0) return true;
    return Fail(m_Options.strJob + QStringLiteral(": --start-line: has no lines"));
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

// One row would be followed by no move, without a word.
bool CRunner::LoadGrid(const QString& strPath)
{
    if (const QString strWhy = WhyUnreadable(strPath); !strWhy.isEmpty()) return Fail(strWhy);
    if (LoadZProfile(strPath) && HasZProfile() && AppConfig::m_ZProfileInfo.lstPoints.size() > 1) return true;
    return Fail(strPath + QStringLiteral(": is not a profile of at least 2 by 2 points"));
}

bool CRunner::LoadSurface()
{
    bool bFlat = true;
    m_fFlat = m_Options.strSurface.isEmpty() ? 0.0 : m_Options.strSurface.toDouble(&bFlat);
    if (bFlat) return qIsFinite(m_fFlat) || Fail(m_Options.strSurface + QStringLiteral(": is not a height"));
    if (!LoadGrid(m_Options.strSurface)) return false;
    m_Surface = CSurface(std::exchange(AppConfig::m_ZProfileInfo.lstPoints, {}));
    return true;
}

// Told in work coordinates as the run begins; the machine lives in its own.
void CRunner::PutSurfaceUnderTheProbe()
{
    const auto Zero = [](int axis) { return AppConfig::m_bHomeSensorsUsed ? AppConfig::m_fAxisWorkZero[axis] : 0.0; };
    if (m_Surface.IsEmpty()) return m_pMachine->SetFlatSurface(m_fFlat + Zero(Z_AXIS));
    m_pMachine->SetSurface([this, x = Zero(X_AXIS), y = Zero(Y_AXIS), z = Zero(Z_AXIS)](double fX, double fY) {
        return m_Surface.Height(fX - x, fY - y) + z;
    });
}

bool CRunner::LoadProfile()
{
    if (m_Options.strZProfile.isEmpty()) return true;
    if (!LoadGrid(m_Options.strZProfile)) return false;
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
    const QStringList outputs{m_Options.strMoves,   m_Options.strEdges,        m_Options.strPicture,
                              m_Options.strSummary, m_Options.strMakeZProfile, m_Options.strToGCode,
                              m_Options.strRelief};
    for (const QString& strPath : outputs) {
        if (!CheckOutput(strPath)) return false;
        if (!strPath.isEmpty() && outputs.count(strPath) > 1)
            return Fail(strPath + QStringLiteral(": is given for two results"));
    }
    return true;
}
